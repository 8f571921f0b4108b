#include "results/stop_at_zero.h"

#include "context/boundary.h"
#include "context/thread_context.h"
#include "results/par_result.h"
#include "results/run_files.h"
#include "support/file_names.h"

namespace orlo::vostrand_lib {

using kelpn::mparrunner::VOSTRAND_CONTEXT;

namespace {

bool MetTiming(const char* runName, const VOSTRAND_CONTEXT& context, const MParRunInfo& runInfo) {
  ParScoreVal result;
  result.name = runName;
  const UT_STROBJ output_dir_path = GenerateFilePath(context.workDir, runInfo.outputDir);
  return GetParResult(RunFile(output_dir_path, runName, ".par"), result) && result.score == 0;
}

}  // namespace

int CheckStopAtZero(const char* runName, void* context) {
  auto* const record = static_cast<VOSTRAND_CONTEXT*>(context);
  const self_context* const run = record ? RunContext(*record) : nullptr;
  if (!run) return 1;
  if (!run->runInfo.multiRun || !run->runInfo.stopAtZero) return 0;
  GuardBoundary([&] {
    if (MetTiming(runName, *record, run->runInfo)) record->stopRequested = true;
  });
  return 0;
}

}  // namespace orlo::vostrand_lib
