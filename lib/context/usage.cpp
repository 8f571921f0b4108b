#include "context/usage.h"

#include "context/exit.h"
#include "context/globals.h"
#include "context/thread_context.h"

namespace orlo::vostrand_lib {
namespace {

constexpr const char* option_list[] = {
    "",
    "  -p <file>           Par command file",
    "  -tf <file>          Sorv command file",
    "  -log <file>         Log File",
    "  -rem                First remove the previous design.dir",
    "  -dissorv            Not run trace",
    "  -cst                Run cst",
    "  -o <file>           Report File",
    "  -pr <design.prf>    Preference file",
    "  -tpr <multipar.prf> Trace preference file",
    "  <design[.ncd]>      Design file on which to run par",
    "  <designout[.ncd]>   Output design file (.ncd) for par",
    "                      Multiple seeds will create designout.dir as well.",
    "  -gui                Used by Quarnel GUI to point to Properties dialog.",
    "  -h                  Help on usage",
    "",
};

}  // namespace

void kelusage() {
  kelusage(ThreadContext());
}

void kelusage(self_context* context) {
  if (!context) return;
  for (const char* const line : option_list) context->_ut_status(line);
}

bool RefuseCommandLine(const char* why, kelpn::mparrunner::VOSTRAND_CONTEXT* context) {
  context->selfContext->_ut_error(why);
  usage(context);
  return false;
}

void usage(kelpn::mparrunner::VOSTRAND_CONTEXT* context) {
  context->selfContext->_ut_status(UT_STROBJ().str_format("Usage: %s", cmdformat.getstring()).getstring(1));
  kelusage(context->selfContext);
  onExit(1, context, false);
}

}  // namespace orlo::vostrand_lib
