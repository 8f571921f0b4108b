// The smallest host: plans the runs, performs them one after the other, and reports on them.
#include "host/entry_points.h"

#include <sys/wait.h>

#include <cstdlib>

using namespace orlo::kelpn::mparrunner;

// Performs a run's steps in order, up to a command that fails. Returns the run's outcome, 0 for success.
static int Perform(const MPAR_SEED& seed, VOSTRAND_CONTEXT& run) {
  for (const STEP& step : seed.steps) {
    if (step.kind == STEP::call_callback) {
      step.callback(seed.name.c_str(), &run);
    } else if (const int ended = std::system(step.command.c_str()); ended != 0) {
      return WIFEXITED(ended) ? WEXITSTATUS(ended) : 1;
    }
  }
  return 0;
}

int main(int argc, char** argv) {
  VOSTRAND_CONTEXT run;  // No logger: standard output and error. No workDir: the current directory.
  int code = vostrand_main(argc, const_cast<const char**>(argv), &run);
  if (code == 0 && !run.seeds.empty()) {  // A request for help plans nothing.
    for (MPAR_SEED& seed : run.seeds)
      seed.status = run.stopRequested ? MPAR_SEED::cancelled : Perform(seed, run);
    code = vostrand_report(&run);
  }
  return vostrand_exit(code, &run);
}
