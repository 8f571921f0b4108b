#include "plan/planned_runs.h"

#include <filesystem>

#include "plan/command_words.h"
#include "support/file_names.h"

namespace vostrand {
namespace {

using orlo::kelpn::mparrunner::STEP;

PlannedRun WithFiles(const std::string& name, const LibraryRun& library) {
  PlannedRun run;
  run.name = name;
  // The tools' working directory is not the host's.
  const std::string output = std::filesystem::absolute(library.OutputPath());
  if (library.Info().multiRun) {
    const std::string stem = output + "/" + name;
    run.output_file = stem + ".out";
    run.leftovers = {run.output_file, stem + ".dir", stem + ".par", stem + ".twr"};
  } else {
    const std::string stem = output.substr(0, output.size() - 4);
    run.output_file = stem + ".out";
    run.leftovers = {run.output_file, stem + ".twr"};
  }
  return run;
}

}  // namespace

std::vector<PlannedRun> PlannedRuns(LibraryRun& library, std::string& refusal) {
  std::vector<PlannedRun> runs;
  for (const auto& seed : library.Seeds()) {
    if (!FitsCommandLine(seed.name) || seed.name.find('/') != std::string::npos) {
      refusal =
          "the plan names a run \"" + seed.name + "\": a name with blanks, quotes or \"/\" cannot be run";
      return {};
    }
    PlannedRun run = WithFiles(seed.name, library);
    for (const STEP& step : seed.steps)
      run.steps.push_back(
          {step.kind == STEP::execute ? SplitCommand(step.command) : std::vector<std::string>()});
    runs.push_back(std::move(run));
  }
  return runs;
}

void RemoveLeftovers(const PlannedRun& run) {
  for (const std::string& leftover : run.leftovers) {
    std::error_code ignored;  // What cannot be removed makes the tool fail, which says why.
    std::filesystem::remove_all(leftover, ignored);
  }
}

}  // namespace vostrand
