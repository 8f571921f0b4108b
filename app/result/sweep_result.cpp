#include "result/sweep_result.h"

#include <algorithm>
#include <cinttypes>
#include <csignal>
#include <cstdio>
#include <filesystem>

#include "execute/events.h"
#include "support/file_names.h"

namespace vostrand {
namespace {

std::string Format(const char* format, auto... values) {
  char text[256];
  std::snprintf(text, sizeof text, format, values...);
  return text;
}

std::string TimingText(const RankedRun& run) {
  if (!run.has_result) return "no result";
  if (run.timing_score == -1) return "not complete";
  return run.timing_score == 0 ? "met" : Format("%" PRId64 " ps", run.timing_score);
}

}  // namespace

std::size_t SweepResult::Count(bool (*wanted)(int status)) const {
  return static_cast<std::size_t>(
      std::count_if(runs.begin(), runs.end(), [=](const Run& run) { return wanted(run.status); }));
}

std::size_t SweepResult::Finished() const {
  return Count([](int status) { return status <= 0; });
}

std::size_t SweepResult::Cancelled() const {
  return Count([](int status) { return status == cancelled_status; });
}

std::size_t SweepResult::Failed() const {
  return runs.size() - Finished() - Cancelled();
}

int ExitCode(const SweepResult& result) {
  if (result.interrupted_by != 0) return 128 + result.interrupted_by;
  if (result.Finished() == 0) return 5;
  if (!result.missing.empty()) return 6;
  return result.Failed() > 0 ? 4 : 0;
}

void CheckFiles(const LibraryRun& library, std::filesystem::file_time_type began, SweepResult& result) {
  const auto& info = library.Info();
  const auto demand = [&](const std::string& file) {
    std::error_code error;
    const bool there = std::filesystem::is_regular_file(file, error) &&
                       std::filesystem::last_write_time(file, error) >= began;
    (there ? result.best_files : result.missing).push_back(file);
  };
  if (result.Finished() == 0) return;
  const std::string output = library.OutputPath();
  const std::string stem =
      info.multiRun ? library.PathOf(info.outputName.getstring()) : output.substr(0, output.size() - 4);
  demand(stem + ".ncd");
  if (info.multiRun) demand(stem + ".par");
  if (info.noTiming) return;
  demand(stem + ".twr");
  if (!library.HasReportFile()) result.missing.push_back(library.PathOf(info.reportFile.getstring()));
}

std::string SummaryText(const SweepResult& result) {
  std::size_t width = 16;
  for (const RankedRun& run : result.ranking) width = std::max(width, result.runs[run.run].name.size());
  const auto row = [&](std::string rank, std::string name, std::string score, const std::string& timing) {
    rank.insert(0, 4 - std::min<std::size_t>(4, rank.size()), ' ');
    name.resize(width, ' ');
    score.insert(0, 12 - std::min<std::size_t>(12, score.size()), ' ');
    return rank + "  " + name + " " + score + "  " + timing + "\n";
  };
  std::string text;
  if (!result.ranking.empty()) text += row("rank", "run", "score", "timing");
  int rank = 0;
  for (const RankedRun& run : result.ranking)
    text += row(std::to_string(++rank), result.runs[run.run].name,
                run.has_score ? Format("%.3f", static_cast<double>(run.score)) : "-", TimingText(run));
  text += Format("%zu finished, %zu failed, %zu cancelled\n", result.Finished(), result.Failed(),
                 result.Cancelled());
  if (!result.ranking.empty()) text += "best: " + result.runs[result.ranking.front().run].name + "\n";
  for (const std::string& file : result.best_files) text += "  " + file + "\n";
  for (const std::string& file : result.missing) text += "missing: " + file + "\n";
  return text;
}

}  // namespace vostrand
