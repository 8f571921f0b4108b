#include "context/exit.h"

#include "context/boundary.h"
#include "context/std_logger.h"
#include "context/thread_context.h"
#include "host/entry_points.h"

namespace orlo::vostrand_lib {

using kelpn::mparrunner::VOSTRAND_CONTEXT;

void onExit(int code, VOSTRAND_CONTEXT* context, bool release) {
  if (!context) return;
  context->exitCode = code;
  if (release) ReleaseRun(*context);
}

namespace {

// The run's context is gone by now, so the line goes straight to the logger, with its own line end.
void WriteExitLine(int code, VOSTRAND_CONTEXT* context) {
  kelpn::ILogger& logger = context && context->logger ? *context->logger : stdlogger;
  logger.onStdout(UT_STROBJ().str_format("Exiting vostrand with exit code %d\n", code).getstring(1));
}

}  // namespace
}  // namespace orlo::vostrand_lib

int vostrand_exit(int code, orlo::kelpn::mparrunner::VOSTRAND_CONTEXT* context) {
  using namespace orlo::vostrand_lib;
  GuardBoundary([&] { onExit(code, context, true); });
  GuardBoundary([&] { WriteExitLine(code, context); });
  return code;
}
