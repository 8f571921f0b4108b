// vostrand_main: from the argument vector to the plan of runs.
#include "context/boundary.h"
#include "context/exit.h"
#include "context/run_log.h"
#include "context/thread_context.h"
#include "driver/command_line.h"
#include "driver/output_directory.h"
#include "driver/par_command_file.h"
#include "driver/run_plan.h"
#include "driver/settings.h"
#include "host/entry_points.h"
#include "scoring/default_weights.h"
#include "ut/foundry.h"

namespace orlo::vostrand_lib {
namespace {

using kelpn::mparrunner::VOSTRAND_CONTEXT;

void LoadDefaultWeights(self_context& run) {
  UT_STROBJ path;
  GetWPDefaultValFilePath(path);
  GetDefaultWPValueFromFile(path, run.runInfo.weights, &run);
}

// Everything that decides whether there will be a plan. Every step that can end the run has said why and
// recorded the exit code.
bool AcceptRun(int argc, const char** argv, VOSTRAND_CONTEXT& record, Settings& settings,
               ParOptions& options) {
  if (!ReadCommandLine(argc, argv, record, settings)) return false;
  if (!OpenLog(record, settings)) return false;
  if (!CheckSettings(record, settings)) return false;
  UT_FOUNDRY::instance();
  // The user's par command file is read and written back before the output name is looked at.
  return ReadParCommandFile(record, settings.parCommandFile, options) && FixOutputName(record);
}

void PlanRun(int argc, const char** argv, VOSTRAND_CONTEXT& record) {
  self_context& run = StartRun(record);
  LoadDefaultWeights(run);
  Settings settings;
  ParOptions options;
  if (!AcceptRun(argc, argv, record, settings, options)) {
    // Without a plan there is no output; a report must not take files of that name for it.
    run.runInfo.outputDir = "";
    return;
  }
  PrepareOutputDirectory(record, settings);
  AppendPlan(record, settings, options);
}

}  // namespace
}  // namespace orlo::vostrand_lib

int vostrand_main(int argc, const char** argv, orlo::kelpn::mparrunner::VOSTRAND_CONTEXT* context) {
  using namespace orlo::vostrand_lib;
  if (!context) return 1;
  GuardBoundary(
      [&] {
        PlanRun(argc, argv, *context);
        // Whoever watches the log sees it while the host executes the plan.
        RunLog(context->selfContext->runInfo.logStream).flush();
      },
      [&](const char* reason) {
        onExit(3, context, false);
        if (self_context* const run = RunContext(*context)) run->_ut_error(reason);
      });
  return context->exitCode;
}
