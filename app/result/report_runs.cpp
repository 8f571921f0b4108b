#include "result/report_runs.h"

#include <optional>

#include "result/scores.h"

namespace vostrand {
namespace {

// By the final rows and scores, which the runs' own records take over.
OddsReport FinalOdds(SweepResult& result) {
  std::vector<Verdict> verdicts;
  for (const std::size_t index : result.order) {
    RunResult& run = result.runs[index];
    run.record.verdict = {run.has_row ? std::optional(run.timing_score == 0) : std::nullopt, run.score};
    verdicts.push_back(run.record.verdict);
  }
  OddsReport odds = OddsOf(verdicts);
  // A sweep that ended with the run it was after says little about the next one.
  const bool failed_fast = result.options.fail_fast && result.Failed() > 0;
  const bool stopped_by_timing =
      !result.stopped_because.empty() && result.interrupted_by == 0 && !failed_fast;
  odds.has_gain = odds.has_gain && !stopped_by_timing;
  return odds;
}

// The library does not say when it cannot move a run's files up, or only in part.
std::vector<std::string> NotGathered(const LibraryRun& library, const std::string& run) {
  std::vector<std::string> missing;
  if (!library.Info().multiRun) return missing;
  for (const char* const extension : {".ncd", ".par", ".twr", ".pad", ".dly", ".icf"}) {
    const std::string gathered = library.OutputPath() + "/" + run + extension;
    const std::string whole = WholeFile(library.OutputPath(), run, extension);
    if (whole != gathered) missing.push_back(gathered + " (whole only as " + whole + ")");
  }
  return missing;
}

}  // namespace

void ReportRuns(LibraryRun& library, const std::vector<PlannedRun>& plan, SweepResult& result) {
  for (std::size_t i = 0; i < plan.size(); ++i) {
    for (const PlannedStep& step : plan[i].steps) result.runs[i].steps.push_back(step.words);
    result.runs[i].output_file = plan[i].output_file;
  }
  Scores scores(library);
  library.Report();
  scores.Complete(result);
  result.odds = FinalOdds(result);
  const auto miss = [&](const std::vector<std::string>& paths) {
    result.missing.insert(result.missing.end(), paths.begin(), paths.end());
  };
  miss(scores.Unwritten(result));
  for (const std::size_t run : result.order) miss(NotGathered(library, plan[run].name));
}

Promotion PromotionOf(const LibraryRun& library, const SweepResult& result, std::int64_t old_ns) {
  const RunRecord& best = result.runs[result.order.front()].record;
  Promotion promotion;
  promotion.output_dir = library.OutputPath();
  promotion.multi_run = library.Info().multiRun;
  promotion.stem = promotion.multi_run ? library.PathOf(library.Info().outputName.getstring())
                                       : promotion.output_dir.substr(0, promotion.output_dir.size() - 4);
  promotion.best = best.name;
  promotion.timing = result.timing;
  promotion.old_ns = best.restored ? -1 : old_ns;
  return promotion;
}

}  // namespace vostrand
