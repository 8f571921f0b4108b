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
    for (const char* const extension : {".out", ".par", ".twr", ".ncd", ".pad", ".dly", ".icf"})
      run.leftovers.push_back(stem + extension);
    run.leftover_folder = stem + ".dir";
  } else {
    const std::string stem = output.substr(0, output.size() - 4);
    run.output_file = stem + ".out";
    run.leftovers = {run.output_file, stem + ".twr"};
  }
  return run;
}

}  // namespace

std::vector<PlannedRun> PlannedRuns(LibraryRun& library) {
  std::vector<PlannedRun> runs;
  for (const auto& seed : library.Seeds()) {
    PlannedRun run = WithFiles(seed.name, library);
    for (const STEP& step : seed.steps)
      run.steps.push_back(
          {step.kind == STEP::execute ? SplitCommand(step.command) : std::vector<std::string>()});
    runs.push_back(std::move(run));
  }
  return runs;
}

std::string RemoveLeftovers(const PlannedRun& run) {
  std::error_code error;
  for (const std::string& file : run.leftovers)
    if (!std::filesystem::remove(file, error) && error)
      return "cannot remove " + file + ": " + error.message();
  if (run.leftover_folder.empty()) return {};
  std::filesystem::remove_all(run.leftover_folder, error);
  return error ? "cannot remove " + run.leftover_folder + ": " + error.message() : "";
}

}  // namespace vostrand
