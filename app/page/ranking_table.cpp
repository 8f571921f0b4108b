#include <algorithm>
#include <cmath>

#include "page/axis.h"
#include "page/sections.h"

namespace vostrand {
namespace {

std::string TimingText(const RunResult& run) {
  if (!run.has_row || run.timing_score < 0) return "unknown";
  return run.timing_score == 0 ? "met" : std::to_string(run.timing_score) + " ps";
}

std::string OutcomeText(const RunRecord& record) {
  std::string text = record.Outcome();
  if (record.status > 0 && record.status != cancelled_status)
    text += " with " + std::to_string(record.status);
  if (record.restored) text += ", kept from before";
  if (!record.message.empty()) text += ": " + record.message;
  return text;
}

// A bar on both sides of 0, which lies in one place in every row.
void WriteBar(Html& page, const Axis& axis, double value) {
  const double zero = axis.At(0);
  const double end = axis.At(value);
  const double width = std::max(std::abs(end - zero), 0.6);
  page
      << "<svg class=bar viewBox='0 0 100 10' preserveAspectRatio=none aria-hidden=true><path class=zero d='M"
      << zero << " 0v10'/><rect class=" << std::string(value < 0 ? "below" : "above") << " x='"
      << (value < 0 ? zero - width : zero) << "' y=1 width='" << width << "' height=8 /></svg>";
}

void WriteRow(Html& page, const SweepResult& result, std::size_t index, std::size_t place, const Axis& axis) {
  const RunResult& run = result.runs[index];
  const RunRecord& record = run.record;
  const bool ranked = place > 0;
  page << "<tr data-run=" << index;
  if (place == 1) page << " class=best";
  page << "><td class=n data-v=" << (ranked ? place : result.runs.size() + index + 1) << ">"
       << (ranked ? std::to_string(place) : "–") << "<th scope=row data-v=" << index << ">" << record.name;
  if (place == 1) page << " <span class=tag>best</span>";
  if (result.timing) {
    page << "<td class=n data-v='" << (run.score ? std::to_string(*run.score) : "") << "'>"
         << (run.score ? Decimals(static_cast<double>(*run.score)) : "–") << "<td class=barcell>";
    if (run.score) WriteBar(page, axis, static_cast<double>(*run.score));
  }
  const bool known = run.has_row && run.timing_score >= 0;
  page << "<td class='n "
       << std::string(!known                  ? ""
                      : run.timing_score == 0 ? "good"
                                              : "bad")
       << "' data-v='" << (known ? std::to_string(run.timing_score) : "") << "'>"
       << (ranked ? TimingText(run) : "–");
  page << "<td class=n data-v=" << record.ElapsedSeconds() << ">"
       << (record.started ? Duration(record.ElapsedSeconds()) : "–")
       << "<td class=n data-v=" << record.PeakKib() << ">"
       << (record.started ? Memory(static_cast<double>(record.PeakKib())) : "–") << "<td class='wrap"
       << std::string(record.status > 0 ? " bad" : "") << "'>" << OutcomeText(record);
}

}  // namespace

void WriteRanking(Html& page, const SweepResult& result) {
  if (result.runs.empty()) return;
  std::vector<double> scores;
  for (const RunResult& run : result.runs)
    if (run.score) scores.push_back(static_cast<double>(*run.score));
  const Axis axis(scores, 0, 100, Axis::Scale::outliers);
  page << "<section id=ranking><h2>Ranking</h2><div class='scroll tall' tabindex=0 role=region "
          "aria-label=Ranking>"
          "<table class=sortable><thead><tr><th scope=col class=n>Rank<th scope=col>Run";
  if (result.timing) page << "<th scope=col class=n data-first=down>Score<td class=barcell>";
  page << "<th scope=col class=n>Timing<th scope=col class=n>Time<th scope=col class=n>Memory<th "
          "scope=col>Outcome"
          "</thead><tbody>";
  std::vector<bool> written(result.runs.size());
  std::size_t place = 0;
  for (const std::size_t index : result.order) {
    WriteRow(page, result, index, ++place, axis);
    written[index] = true;
  }
  for (std::size_t index = 0; index < result.runs.size(); ++index)
    if (!written[index]) WriteRow(page, result, index, 0, axis);
  page << "</tbody></table></div></section>";
}

}  // namespace vostrand
