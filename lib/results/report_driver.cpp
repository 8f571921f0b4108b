// vostrand_report: what happens once all runs of the plan are over.
#include <vector>

#include "context/boundary.h"
#include "context/messages.h"
#include "context/run_log.h"
#include "context/thread_context.h"
#include "host/entry_points.h"
#include "results/par_ranking.h"
#include "results/par_summary.h"
#include "results/promotion.h"
#include "results/run_files.h"
#include "results/score_table.h"
#include "scoring/performance_score.h"
#include "scoring/preference_file.h"
#include "scoring/score_report.h"
#include "support/file_names.h"
#include "ut/filemanager.h"

namespace orlo::vostrand_lib {
namespace {

using kelpn::mparrunner::MPAR_SEED;
using kelpn::mparrunner::STEP;
using kelpn::mparrunner::VOSTRAND_CONTEXT;

// The report on one tool run. Its tables have an entry for every run of the plan; `finished_` holds the
// indices of the finished runs, in plan order until they are sorted.
class Report {
 public:
  Report(VOSTRAND_CONTEXT& record, self_context& run)
      : seeds_(record.seeds),
        run_(run),
        info_(run.runInfo),
        log_(run.runInfo.logStream),
        work_dir_(record.workDir),
        output_dir_path_(PathOf(info_.outputDir)),
        scores_(seeds_.size()),
        results_(seeds_.size()) {}

  std::size_t RunCount() const { return results_.size(); }
  // Weights from the trace preference file, or from the preference file where that one is missing or has
  // none.
  void ReadWeights();
  // Logs one run, reads its result, gathers its files and, when it finished, scores it.
  void TakeRun(std::size_t index);
  // Orders the finished runs and writes the report file.
  void OrderRuns();
  // Writes the summary and copies the best run's files up.
  void Promote();
  void FlushLog() { log_.flush(); }

 private:
  UT_STROBJ PathOf(const UT_STROBJ& name) const { return GenerateFilePath(work_dir_, name); }
  // Only an accepted plan has an output; the record may hold seeds of an earlier one beside a refused one.
  bool HasOutput() const { return !info_.outputDir.empty(); }
  int FinishedCount() const { return static_cast<int>(finished_.size()); }
  void LogCommands(const MPAR_SEED& seed);
  void Score(std::size_t index);

  const std::vector<MPAR_SEED> seeds_;  // A copy: the host may add seeds while it hears a message.
  self_context& run_;
  MParRunInfo& info_;
  RunLog log_;
  const UT_STROBJ work_dir_;
  const UT_STROBJ output_dir_path_;
  std::vector<PSScoreInfo> scores_;
  std::vector<ParScoreVal> results_;
  std::vector<int> finished_;
  ResultsMap preferences_;  // Shared by all runs: each one's scoring updates it.
};

void Report::ReadWeights() {
  const UT_STROBJ trace_path = PathOf(info_.tracePrefFile);
  // Tried first, since a missing trace preference file is nothing to complain about.
  const bool has_trace_file = ut_open_stream(trace_path.getstring(), UT_ACCESS_READ) != nullptr;
  if (!has_trace_file || GetWPFromPrf(trace_path, info_.weights) == 0)
    GetWPFromPrf(PathOf(info_.prefFile), info_.weights);
}

void Report::LogCommands(const MPAR_SEED& seed) {
  log_ << "iteration " << (info_.multiRun ? seed.name.c_str() : "1") << "\n\n";
  for (const STEP& step : seed.steps)
    if (step.kind == STEP::execute) log_ << step.command.c_str() << "\n";
}

void Report::TakeRun(std::size_t index) {
  const MPAR_SEED& seed = seeds_[index];
  LogCommands(seed);
  ParScoreVal& result = results_[index];
  result.name = UT_STROBJ(seed.name);
  if (HasOutput()) {
    // The result is read before the run's directory is gathered, which may bring another file of that name.
    result.valid = GetParResult(RunFile(output_dir_path_, result.name, ".par"), result);
    CopySeedResult(output_dir_path_, RunFile(output_dir_path_, result.name, ".dir"));
  }

  if (seed.status <= 0) {
    finished_.push_back(static_cast<int>(index));
    if (!info_.noTiming) Score(index);
  } else if (seed.status == MPAR_SEED::cancelled) {
    log_ << "Canceled by user.\n\n";
  } else {
    log_ << UT_STROBJ().str_format("Failed with error code %d.\n\n", seed.status).getstring();
  }
}

void Report::Score(std::size_t index) {
  WriteScoreTableTop(log_);
  PSScoreInfo& score = scores_[index];
  score = ScoreRun(PathOf(ut_element(info_.twrFiles, index)), preferences_, info_.weights);
  score.csvText = ut_element(info_.csvLabels, index) + "," + score.csvText;
  const UT_STROBJ total_line = TotalLine(score.score);
  WriteScoreTableRows(log_, preferences_, total_line);
  run_._ut_status(total_line.getstring(1));
}

void Report::OrderRuns() {
  if (info_.noTiming) {
    sortscore(results_.data(), FinishedCount(), finished_.data());
    return;
  }
  UT_STROBJ report_path = PathOf(info_.reportFile);
  OutputReport(scores_.data(), results_.data(), FinishedCount(), finished_.data(), report_path,
               info_.csvLabels, preferences_, info_.weights, static_cast<int>(preferences_.size()));
}

void Report::Promote() {
  if (!info_.multiRun || !HasOutput()) return;
  const UT_STROBJ summary_path = WithoutExtension(output_dir_path_) + ".par";
  OutputParRpt(results_.data(), FinishedCount(), finished_.data(), summary_path);
  if (finished_.empty()) return;
  const ParScoreVal& best = results_[static_cast<std::size_t>(finished_.front())];
  copybestup(best.name, info_.logStream, work_dir_, info_.outputName, output_dir_path_);
}

}  // namespace
}  // namespace orlo::vostrand_lib

int vostrand_report(orlo::kelpn::mparrunner::VOSTRAND_CONTEXT* context) {
  using namespace orlo::vostrand_lib;
  self_context* const run = context ? RunContext(*context) : nullptr;
  if (!run) return 1;
  const bool complete = GuardBoundary(
      [&] {
        Report report(*context, *run);
        report.ReadWeights();
        for (std::size_t i = 0; i < report.RunCount(); ++i) report.TakeRun(i);
        report.OrderRuns();
        report.Promote();
        report.FlushLog();
      },
      [&](const char* reason) { run->_ut_error(reason); });
  return complete ? 0 : 1;
}
