#include "page/sections.h"

namespace vostrand {
namespace {

std::string BestRun(const RunResult& best, bool timing) {
  std::string text = "Best run " + best.record.name;
  if (best.score) text += " scores " + Decimals(static_cast<double>(*best.score));
  if (!best.has_row) return text + (best.score ? "; whether it meets timing is unknown" : "");
  text += best.score ? " and " : " ";
  if (best.timing_score == 0) return text + "meets timing";
  if (best.timing_score < 0) return text + "has no timing score";
  text += "misses timing by " + std::to_string(best.timing_score) + " ps";
  return timing ? text : text + " (ranked by place-and-route result alone)";
}

}  // namespace

void WriteVerdict(Html& page, const SweepResult& result) {
  page << "<header><p class=eyebrow>vostrand";
  for (const std::string& word : result.tool_arguments) page << " " << word;
  page << "</p><h1>"
       << (result.order.empty() ? "No run finished"
                                : BestRun(result.runs[result.order.front()], result.timing))
       << "<span>: " << result.Finished() << " of " << Count(result.runs.size(), "run") << " finished, "
       << result.Failed() << " failed, " << result.Cancelled() << " cancelled, in "
       << Duration(result.elapsed_seconds) << ".</span></h1>";
  if (!result.odds.Sentence().empty()) page << "<p class=lead>" << result.odds.Sentence() << ".</p>";
  if (!result.stopped_because.empty())
    page << "<p class=note>No further run was started: " << result.stopped_because << ".</p>";
  if (result.interrupted_by != 0)
    page << "<p class=note>Interrupted by signal " << result.interrupted_by << ".</p>";
  if (!result.missing.empty()) {
    page << "<div class=alarm><strong>Missing or not right</strong><ul>";
    for (const std::string& text : result.missing) page << "<li>" << text << "</li>";
    page << "</ul></div>";
  }
  page << "</header>";
}

void WriteOrigin(Html& page, const SweepResult& result) {
  page << "<section id=origin><h2>Made from</h2><p class=lead>vostrand " << result.program_version << " on "
       << result.host_name << ", started " << result.started << " in <code>" << result.work_dir
       << "</code></p>";
  OpenRegion(page, "Files");
  page << "<table><thead><tr><th scope=col>Role<th scope=col>File<th scope=col class=n>Bytes<th "
          "scope=col>SHA-256</thead><tbody>";
  const auto row = [&](const std::string& role, const std::string& path, std::int64_t size,
                       const std::string& hash) {
    page << "<tr><td>" << role << "<td><code>" << path << "</code><td class=n>";
    if (size >= 0) page << size;
    page << "<td title=\"" << hash << "\"><code>" << hash.substr(0, 12) << "</code>";
  };
  for (const FileRecord& file : result.inputs) row(file.role, file.path, file.size, file.sha256);
  for (const FileRecord& file : result.tools) row("tool " + file.role, file.path, file.size, file.sha256);
  constexpr const char* states[] = {"the best run's", "differs from the best run's", "missing", "unchecked"};
  for (const PromotedFile& file : result.promoted)
    row(std::string("promoted, ") + states[static_cast<int>(file.state)], file.path, file.size, file.sha256);
  page << "</tbody></table></div></section>";
}

}  // namespace vostrand
