#include "result/summary.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>

namespace vostrand {
namespace {

std::string Format(const char* format, auto... values) {
  char text[256];
  std::snprintf(text, sizeof text, format, values...);
  return text;
}

// A column that grows with its text; numbers stand right.
std::string Right(std::string text, std::size_t width) {
  text.insert(0, width - std::min(width, text.size()), ' ');
  return text;
}

std::string Row(const std::string& rank, std::string name, std::size_t name_width, const std::string& score,
                const std::string& timing) {
  name.resize(std::max(name.size(), name_width), ' ');
  return Right(rank, 4) + "  " + name + " " + Right(score, 12) + "  " + timing + "\n";
}

std::string RankingText(const SweepResult& result) {
  if (result.order.empty()) return {};
  std::size_t width = 16;
  for (const std::size_t run : result.order) width = std::max(width, result.runs[run].record.name.size());
  std::string text = Row("rank", "run", width, "score", "timing");
  int rank = 0;
  for (const std::size_t index : result.order) {
    const RunResult& run = result.runs[index];
    text += Row(std::to_string(++rank), run.record.name, width,
                run.score ? Format("%.3f", static_cast<double>(*run.score)) : "-", TimingText(run));
  }
  return text;
}

std::string CountsText(const SweepResult& result) {
  const auto restored = std::count_if(result.runs.begin(), result.runs.end(),
                                      [](const RunResult& run) { return run.record.restored; });
  std::string text = Format("%zu finished", result.Finished());
  if (restored > 0) text += Format(" (%td kept from before)", restored);
  return text + Format(", %zu failed, %zu cancelled\n", result.Failed(), result.Cancelled());
}

}  // namespace

std::string TimingText(const RunResult& run) {
  if (!run.has_row) return "no result";
  if (run.timing_score == -1) return "not complete";
  return run.timing_score == 0 ? "met" : Format("%" PRId64 " ps", run.timing_score);
}

std::string SummaryText(const SweepResult& result) {
  std::string text = RankingText(result) + CountsText(result);
  if (!result.stopped_because.empty()) text += "stopped: " + result.stopped_because + "\n";
  const std::string odds = result.odds.Sentence();
  if (!odds.empty()) text += odds + "\n";
  if (!result.order.empty()) text += "best: " + result.runs[result.order.front()].record.name + "\n";
  using State = PromotedFile::State;
  for (const PromotedFile& file : result.promoted)
    if (file.state == State::equal) text += "  " + file.path + "\n";
  if (!result.options.html_file.empty()) text += "page: " + result.options.html_file + "\n";
  for (const std::string& what : result.missing) text += "missing: " + what + "\n";
  return text;
}

}  // namespace vostrand
