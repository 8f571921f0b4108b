// The library's three exported globals, in one file because one file builds its globals in the order of their
// lines and destroys them in reverse: the storage goes before anything that a context needs.
#include "context/globals.h"

#include "context/std_logger.h"
#include "context/thread_context.h"

namespace orlo::vostrand_lib {

IStdLogger stdlogger;

QThreadStorage<self_context*> thl_data;

namespace {

// Goes before the storage does. Other threads' runs stay: at the process's exit these may still be at work.
struct UnloadGuard {
  constexpr UnloadGuard() = default;
  ~UnloadGuard() { ReleaseAtUnload(); }
};
const UnloadGuard unload_guard;

}  // namespace

UT_STROBJ cmdformat(
    "vostrand {-p <file>} [-tf <file>] {-log <file>} [-rem] [-dissorv] [-cst] {-o <file>} {-pr <design.prf>} "
    "[-tpr <multipar.prf>] <design[.ncd]> <designout[.ncd]> [--gui] [--msg <msglogfile>] [--msgset "
    "<msgtypefile>]");

}  // namespace orlo::vostrand_lib
