#include "plan/planned_runs.h"

#include <filesystem>

#include "plan/command_words.h"
#include "plan/tool_files.h"
#include "support/file_names.h"

namespace vostrand {
namespace {

using orlo::kelpn::mparrunner::STEP;

PlannedRun WithFiles(const std::string& name, const LibraryRun& library) {
  PlannedRun run;
  run.name = name;
  // The tools' working directory is not the host's.
  const std::filesystem::path output = std::filesystem::absolute(library.OutputPath());
  const bool multi_run = library.Info().multiRun;
  const std::filesystem::path folder = multi_run ? output : output.parent_path();
  const std::string stem = multi_run ? name : output.stem().string();
  run.results_folder = folder;
  for (const char* const extension : result_extensions) run.results.push_back(stem + extension);
  run.output_file = folder / (stem + ".out");
  if (multi_run) {
    for (const std::string& result : run.results) run.leftovers.push_back(folder / result);
    run.results.push_back(stem + ".dir");
    run.leftover_folder = folder / (stem + ".dir");
  } else {
    run.leftovers = {run.output_file, folder / (stem + ".twr"), folder / (stem + ".par")};
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

std::string RemoveLeftovers(const PlannedRun& run, bool keep_output) {
  std::error_code error;
  for (const std::string& file : run.leftovers)
    if (!(keep_output && file == run.output_file) && !std::filesystem::remove(file, error) && error)
      return "cannot remove " + file + ": " + error.message();
  if (run.leftover_folder.empty()) return {};
  std::filesystem::remove_all(run.leftover_folder, error);
  return error ? "cannot remove " + run.leftover_folder + ": " + error.message() : "";
}

}  // namespace vostrand
