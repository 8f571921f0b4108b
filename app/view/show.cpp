#include "view/show.h"

#include <algorithm>

#include "observe/progress_text.h"
#include "result/summary.h"

namespace vostrand {

SweepResult Printable(SweepResult result) {
  std::vector<std::string*> texts = {&result.stopped_because, &result.options.html_file};
  for (std::string& what : result.missing) texts.push_back(&what);
  for (PromotedFile& file : result.promoted) texts.push_back(&file.path);
  for (Preference& preference : result.preferences) texts.push_back(&preference.name);
  for (RunResult& run : result.runs) {
    texts.insert(texts.end(), {&run.record.name, &run.record.message});
    for (TryRecord& attempt : run.record.tries) texts.push_back(&attempt.outcome.message);
  }
  for (std::string* text : texts) *text = Shown(*text);
  return result;
}

std::string OutcomeText(const RunRecord& run) {
  std::string text = run.Outcome();
  if (text == "failed") text += " with " + std::to_string(run.status);
  const bool started = run.message.empty() && !run.tries.empty();
  const std::string& why = started ? run.tries.back().outcome.message : run.message;
  return why.empty() ? text : text + ": " + why;
}

std::string ShowText(SweepResult result, std::size_t width) {
  std::string unfinished;
  for (RunResult& run : result.runs) {
    if (run.record.status > 0) unfinished += run.record.name + " " + OutcomeText(run.record) + "\n";
    // Beside the names the ranking takes 33 characters; their column has 16 at least.
    if (width > 0) run.record.name = Shown(run.record.name, std::max<std::size_t>(width, 49) - 33);
  }
  return SummaryText(result) + (unfinished.empty() ? "" : "not finished:\n") + unfinished;
}

}  // namespace vostrand
