#include "result/scores.h"

#include <sys/mman.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include "plan/tool_files.h"
#include "results/par_ranking.h"
#include "results/par_summary.h"
#include "scoring/preference_file.h"
#include "scoring/preference_name.h"
#include "scoring/preference_weights.h"
#include "scoring/score_report.h"
#include "ut/filemanager.h"

namespace vostrand {

using namespace orlo::vostrand_lib;

namespace {

// What the library says while the host works something out a second time.
class Muted {
 public:
  explicit Muted(LibraryRun& library) : logger_(library.Logger()) { logger_.Mute(true); }
  ~Muted() { logger_.Mute(false); }
  Muted(const Muted&) = delete;
  Muted& operator=(const Muted&) = delete;

 private:
  HostLogger& logger_;
};

std::string ContentOf(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

// Whether that is all there is in the file. Not more of it is read: a best run's report behind a summary may
// have gigabytes.
bool Holds(const std::string& path, const std::string& text) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return false;  // A pipe would be waited for.
  std::string begin(text.size() + 1, '\0');
  std::ifstream file(path, std::ios::binary);
  file.read(begin.data(), static_cast<std::streamsize>(begin.size()));
  begin.resize(static_cast<std::size_t>(file.gcount()));
  return begin == text;
}

// What `write` writes into the file that it is given; nothing when there can be none.
std::string WrittenBy(const std::function<void(UT_STROBJ& path)>& write) {
  const int file = memfd_create("vostrand", MFD_CLOEXEC);
  if (file < 0) return {};
  UT_STROBJ path = ("/proc/self/fd/" + std::to_string(file)).c_str();
  write(path);
  const std::string text = ContentOf(path.getstring());
  close(file);
  return text;
}

std::string ReportOf(LibraryRun& library, std::size_t run) {
  return library.PathOf(ut_element(library.Info().twrFiles, run).getstring());
}

// The same sum that GetPSScore makes, term by term.
PreferenceScore Contribution(const PrfResultVal& listed, const WPValue& weights) {
  PreferenceScore part;
  part.actual = listed.actualText.getstring();
  part.unit = listed.unit.getstring();
  part.constraint_ns = listed.constraintPeriod;
  part.actual_ns = listed.actualPeriod;
  part.slack_ns = listed.constraintPeriod - listed.actualPeriod;
  const auto slack = static_cast<double>(part.slack_ns);
  if (slack > 0.001) {
    part.factor = weights.weight;
    part.contribution = part.slack_ns * weights.weight;
  } else if (slack < -0.001) {
    part.factor = -weights.penalty;
    part.contribution = part.slack_ns * weights.penalty;
  }
  return part;
}

}  // namespace

WeightsMap ReadWeights(LibraryRun& library) {
  const Muted muted(library);
  const MParRunInfo& info = library.Info();
  WeightsMap weights = info.weights;
  const std::string trace = library.PathOf(info.tracePrefFile.getstring());
  const bool has_trace = !trace.empty() && ut_file->canread(trace.c_str());
  if (!has_trace || GetWPFromPrf(trace.c_str(), weights) == 0)
    GetWPFromPrf(library.PathOf(info.prefFile.getstring()).c_str(), weights);
  return weights;
}

ParScoreVal ReadResultRow(LibraryRun& library, std::size_t run) {
  ParScoreVal row;
  row.name = library.Seeds()[run].name.c_str();
  const std::string output = library.OutputPath();
  // The library looks for no result of a single run; it is shown all the same.
  const std::string file = library.Info().multiRun ? output + "/" + library.Seeds()[run].name + ".par"
                                                   : output.substr(0, output.size() - 4) + ".par";
  row.valid = GetParResult(file.c_str(), row);
  return row;
}

Verdict Judge::operator()(std::size_t run) const {
  const Muted muted(library_);
  Verdict verdict;
  const ParScoreVal row = ReadResultRow(library_, run);
  if (row.valid) verdict.met = row.score == 0;
  if (library_.Info().noTiming) return verdict;
  const std::string report = ReportOf(library_, run);
  ResultsMap own;
  if (access(report.c_str(), R_OK) == 0) verdict.score = GetPSScore(report.c_str(), own, weights_).score;
  return verdict;
}

Scores::Scores(LibraryRun& library)
    : library_(library), defaults_(library.Info().weights), weights_(ReadWeights(library)) {
  for (std::size_t run = 0; run < library.Seeds().size(); ++run) rows_.push_back(ReadResultRow(library, run));
}

void Scores::TakeRows(SweepResult& result) const {
  for (std::size_t run = 0; run < rows_.size(); ++run) {
    result.runs[run].has_row = rows_[run].valid;
    if (!rows_[run].valid) continue;
    result.runs[run].timing_score = rows_[run].score;
    result.runs[run].row = rows_[run].line.getstring();
  }
}

std::vector<Scores::Named> Scores::ScoreRun(std::size_t run, PSScoreInfo& score) {
  // The reader sets this text of what a report lists; what stays without was carried over.
  for (auto& [name, listed] : preferences_) listed.prefText = "";
  score = GetPSScore(ReportOf(library_, run).c_str(), preferences_, weights_);
  std::vector<Named> parts;
  for (const auto& [name, listed] : preferences_) {
    Named part;
    part.name = name.getstring();
    part.score = Contribution(listed, GetWPByPrfName(name, listed.type, weights_));
    part.score.carried_over = listed.prefText.empty();
    if (!listed.prefText.empty()) texts_[part.name] = listed.prefText;
    parts.push_back(std::move(part));
  }
  return parts;
}

Preference Scores::About(const std::string& name, const PrfResultVal& listed) {
  Preference preference;
  preference.name = name;
  preference.text = GetRegularItemName(texts_[name]).trimmed().getstring();
  preference.kind = listed.type.getstring();
  preference.constraint = listed.constraintText.getstring();
  const WPValue own = GetWPByPrfName(name.c_str(), listed.type, weights_);
  const WPValue of_kind = defaults_[listed.type];
  preference.weight = own.weight;
  preference.penalty = own.penalty;
  preference.default_weight = of_kind.weight;
  preference.default_penalty = of_kind.penalty;
  return preference;
}

// The shared map knows every preference once all runs are scored.
void Scores::Index(SweepResult& result, const std::vector<std::vector<Named>>& scores) {
  std::map<std::string, std::size_t> index;
  for (const auto& [name, listed] : preferences_) {
    index[name.getstring()] = result.preferences.size();
    result.preferences.push_back(About(name.getstring(), listed));
  }
  for (std::size_t run = 0; run < scores.size(); ++run)
    for (const Named& part : scores[run]) {
      result.runs[run].preferences.push_back(part.score);
      result.runs[run].preferences.back().preference = index[part.name];
    }
}

void Scores::Complete(SweepResult& result) {
  const Muted muted(library_);
  const MParRunInfo& info = library_.Info();
  result.timing = !info.noTiming;
  TakeRows(result);
  scores_.assign(rows_.size(), {});
  std::vector<std::vector<Named>> parts(rows_.size());
  std::vector<int> order;
  for (std::size_t run = 0; run < rows_.size(); ++run) {
    if (result.runs[run].record.status > 0) continue;
    order.push_back(static_cast<int>(run));
    if (info.noTiming) continue;
    parts[run] = ScoreRun(run, scores_[run]);
    result.runs[run].score = scores_[run].score;
  }
  Index(result, parts);
  const int count = static_cast<int>(order.size());
  if (info.noTiming)
    sortscore(rows_.data(), count, order.data());
  else if (library_.HasReportFile())  // Without one the library keeps the plan's order.
    sortscore(scores_.data(), rows_.data(), count, order.data());
  for (const int run : order) result.order.push_back(static_cast<std::size_t>(run));
}

std::vector<std::string> Scores::Unwritten(const SweepResult& result) {
  const Muted muted(library_);
  const MParRunInfo& info = library_.Info();
  std::vector<std::string> paths;
  if (result.order.empty()) return paths;
  std::vector<int> order(result.order.begin(), result.order.end());
  const int count = static_cast<int>(order.size());
  const std::string report = library_.PathOf(info.reportFile.getstring());
  const std::string report_text = WrittenBy([&](UT_STROBJ& path) {
    if (info.noTiming || !library_.HasReportFile()) return;  // It would sort, which the library did not.
    for (auto& [name, listed] : preferences_) listed.prefText = texts_[name.getstring()];
    for (const std::size_t run : result.order)
      scores_[run].csvText = ut_element(info.csvLabels, run) + "," + scores_[run].csvText;
    OutputReport(scores_.data(), rows_.data(), count, order.data(), path, info.csvLabels, preferences_,
                 weights_, static_cast<int>(preferences_.size()));
  });
  if (result.timing && (!library_.HasReportFile() || !Holds(report, report_text))) paths.push_back(report);
  const std::string summary_text =
      WrittenBy([&](const UT_STROBJ& path) { OutputParRpt(rows_.data(), count, order.data(), path); });
  // The best run's own report is put behind it, once a copy is kept with the runs; an older one begins alike.
  const std::string output = library_.OutputPath();
  const std::string summary = output.substr(0, output.size() - 4) + ".par";
  const std::string kept = output + ("/" + info.outputName + ".par").getstring();
  if (info.multiRun &&
      (summary_text.empty() || (!Holds(summary, summary_text) && !Holds(kept, summary_text))))
    paths.push_back(summary);
  if (info.logStream && info.logStream->failed())
    paths.push_back(library_.PathOf(FilesOf(result.tool_arguments).log));
  return paths;
}

}  // namespace vostrand
