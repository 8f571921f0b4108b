#include "result/ranking.h"

#include "results/par_ranking.h"
#include "scoring/performance_score.h"
#include "scoring/preference_file.h"
#include "ut/filemanager.h"

namespace vostrand {

using namespace orlo::vostrand_lib;

Ranking::Ranking(LibraryRun& library)
    : library_(library), weights_(library.Info().weights), results_(library.Seeds().size()) {
  for (std::size_t i = 0; i < results_.size(); ++i) {
    results_[i].name = library.Seeds()[i].name.c_str();
    const std::string output = library.OutputPath();
    // The library looks for no result of a single run; it is shown all the same.
    const std::string file = library.Info().multiRun ? output + "/" + library.Seeds()[i].name + ".par"
                                                     : output.substr(0, output.size() - 4) + ".par";
    results_[i].valid = GetParResult(file.c_str(), results_[i]);
  }
}

std::vector<RankedRun> Ranking::Ordered() {
  library_.Logger().Mute(true);  // The report has said all this once.
  const MParRunInfo& info = library_.Info();
  std::vector<PSScoreInfo> scores(results_.size());
  std::vector<int> order;
  ResultsMap preferences;
  const std::string trace = library_.PathOf(info.tracePrefFile.getstring());
  const bool has_trace = !trace.empty() && ut_file->canread(trace.c_str());
  if (!has_trace || GetWPFromPrf(trace.c_str(), weights_) == 0)
    GetWPFromPrf(library_.PathOf(info.prefFile.getstring()).c_str(), weights_);

  for (std::size_t i = 0; i < results_.size(); ++i) {
    if (library_.Seeds()[i].status > 0) continue;
    order.push_back(static_cast<int>(i));
    const std::string report = library_.PathOf(ut_element(info.twrFiles, i).getstring());
    if (!info.noTiming) scores[i] = GetPSScore(report.c_str(), preferences, weights_);
  }
  library_.Logger().Mute(false);

  const int count = static_cast<int>(order.size());
  if (info.noTiming)
    sortscore(results_.data(), count, order.data());
  else if (library_.HasReportFile())  // Without one the library keeps the plan's order.
    sortscore(scores.data(), results_.data(), count, order.data());

  std::vector<RankedRun> ranked;
  for (const int i : order) {
    const auto run = static_cast<std::size_t>(i);
    const ParScoreVal& result = results_[run];
    ranked.push_back({run, result.valid, result.score, !info.noTiming, scores[run].score});
  }
  return ranked;
}

}  // namespace vostrand
