#include "sweep/run_sweep.h"

#include <sys/stat.h>

#include <QCoreApplication>
#include <QDateTime>
#include <algorithm>
#include <iostream>
#include <optional>

#include "observe/harmless.h"
#include "plan/file_guard.h"
#include "plan/planned_runs.h"
#include "records/write_records.h"
#include "result/file_hasher.h"
#include "result/modified.h"
#include "result/promotion_check.h"
#include "result/report_runs.h"
#include "result/retain.h"
#include "result/summary.h"
#include "signals.h"
#include "sweep/admission.h"
#include "sweep/execution.h"
#include "sweep/inputs.h"
#include "sweep/sweep.h"

namespace vostrand {
namespace {

constexpr int cannot_be_run = 2;

void TakeInLinkedFolders(Sweep& sweep) {
  for (std::size_t i = 0; i < sweep.plan.size(); ++i) {
    const int status = sweep.library.Seeds()[i].status;
    for (const std::string& lost :
         TakeInLinkedFolder(sweep.plan[i].leftover_folder, status != cancelled_status, status == 0))
      sweep.result.missing.push_back(lost);
  }
}

// The library does not say whether its copies succeeded.
void CheckPromotion(Sweep& sweep) {
  if (sweep.result.order.empty()) return;
  const Promotion promotion = PromotionOf(sweep.library, sweep.result, sweep.old_ns);
  PromotionReport report;
  FileHasher hasher;
  sweep.end_what_goes_on = [&] { hasher.Cancel(); };
  vostrand::CheckPromotion(hasher, promotion, [&](const PromotionReport& done) {
    report = done;
    QCoreApplication::quit();
  });
  QCoreApplication::exec();
  sweep.end_what_goes_on = nullptr;
  sweep.result.promoted = report.files;
  sweep.result.missing.insert(sweep.result.missing.end(), report.missing.begin(), report.missing.end());
  // Nothing is given up while it is not certain that the best run is the best, and its files are safe.
  if (!sweep.result.options.retain_best || sweep.result.interrupted_by != 0 || !sweep.result.missing.empty())
    return;
  std::vector<std::string> names;
  for (const PlannedRun& run : sweep.plan) names.push_back(run.name);
  for (const std::string& file : RetainBest(report, promotion, names)) sweep.Warn("cannot remove " + file);
  // Their links would keep the space taken; but a sweep that can be resumed needs them.
  if (sweep.result.Finished() == sweep.plan.size()) sweep.resumption.DropOthers(sweep.plan, promotion.best);
}

void Finish(Sweep& sweep) {
  sweep.result.elapsed_seconds = sweep.clock.Now() - sweep.began;
  WriteRecords(sweep.result);
  std::cout << Harmless(SummaryText(sweep.result));
}

// The exit code when nothing is to be run.
std::optional<int> Plan(Sweep& sweep) {
  const int planned = sweep.library.Plan(sweep.tool_arguments);
  if (planned != 0 || sweep.library.Seeds().empty()) {
    // Help that was asked for, or why not.
    sweep.library.Logger().ShowHeldBack(planned == 0 ? std::cout : std::cerr);
    return planned;
  }
  sweep.plan = PlannedRuns(sweep.library);
  std::string refusal = WhyPlanIsRefused(sweep.files, sweep.work_dir, sweep.library.Info().multiRun,
                                         sweep.library.Seeds()[0].name);
  if (refusal.empty()) refusal = WhyLeftoversAreRefused(sweep.files, sweep.plan, sweep.work_dir);
  if (!refusal.empty()) {
    sweep.Warn(refusal);
    return cannot_be_run;
  }
  sweep.result.runs.resize(sweep.plan.size());
  if (struct stat old; stat(sweep.library.OutputPath().c_str(), &old) == 0) sweep.old_ns = ModifiedNs(old);
  if (sweep.result.options.jobs == 0)
    sweep.result.options.jobs = std::max(1, static_cast<int>(sweep.plan.size()));
  return {};
}

int Run(Sweep& sweep) {
  const std::string refusal = WhyRefused(sweep);
  if (!refusal.empty()) {
    sweep.Warn(refusal);
    return sweep.result.interrupted_by == 0 ? cannot_be_run : 128 + sweep.result.interrupted_by;
  }
  sweep.result.started = QDateTime::currentDateTimeUtc().toString(Qt::ISODate).toStdString();
  sweep.began = sweep.clock.Now();
  if (const std::optional<int> exit_code = Plan(sweep)) return sweep.library.Exit(*exit_code);
  {
    // An interrupt ends the runs, never the report.
    const BlockedInterrupts blocked;
    const Signals interrupts([&](int signal) { sweep.Interrupt(signal); });
    LookAtInputs(sweep);
    Execute(sweep);
    TakeInLinkedFolders(sweep);
    ReportRuns(sweep.library, sweep.plan, sweep.result);
    CheckPromotion(sweep);
  }
  Finish(sweep);
  return sweep.library.Exit(sweep.result.exit_code);
}

}  // namespace

int RunSweep(const HostOptions& options, const std::vector<std::string>& tool_arguments,
             const std::string& own_folder) {
  Sweep sweep(options, tool_arguments, own_folder);
  return Run(sweep);
}

}  // namespace vostrand
