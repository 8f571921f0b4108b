#include "sweep/execution.h"

#include <QCoreApplication>
#include <algorithm>

#include "execute/executor.h"
#include "launch/free_memory.h"
#include "observe/fan_out.h"
#include "observe/run_records.h"
#include "plan/planned_runs.h"
#include "result/scores.h"
#include "resume/left_files.h"
#include "sweep/inputs.h"

namespace vostrand {
namespace {

constexpr int files_changed = 125;  // Status of a run whose files are not the ones that it left.

EventHeader HeaderOf(const Sweep& sweep) {
  EventHeader header;
  header.started = sweep.result.started;
  header.jobs = sweep.result.options.jobs;
  for (const PlannedRun& run : sweep.plan) {
    header.runs.push_back(run.name);
    header.steps = std::max(header.steps, run.steps.size());
  }
  return header;
}

ExecutorHooks HooksOf(Sweep& sweep, const Judge& judge) {
  ExecutorHooks hooks;
  hooks.call_back = [&sweep](std::size_t run, std::size_t step) { sweep.library.CallBack(run, step); };
  hooks.stop_requested = [&sweep] { return sweep.library.StopRequested(); };
  hooks.before_run = RemoveLeftovers;
  hooks.judge = [&judge](std::size_t run) { return judge(run); };
  hooks.free_memory_kib = FreeMemoryKib;
  hooks.finished = [] { QCoreApplication::quit(); };
  return hooks;
}

Limits LimitsOf(const HostOptions& options) {
  Limits limits;
  limits.jobs = options.jobs;
  limits.retries = options.retries;
  limits.requeues = options.requeues;
  limits.memory_kib = static_cast<long>((options.memory_bytes + 1023) / 1024);
  limits.until = options.until;
  limits.fail_fast = options.fail_fast;
  limits.stop_now = options.stop_now;
  limits.grace_seconds = options.grace_seconds;
  return limits;
}

// Something that nobody could end, on a machine that was lost, may still have written.
void FailChanged(Sweep& sweep, const LeftFiles& left) {
  for (const std::size_t run : left.Changed()) {
    RunRecord& record = sweep.result.runs[run].record;
    sweep.library.Seeds()[run].status = record.status = files_changed;
    record.message = "its files changed after it had ended";
    sweep.Warn("run " + record.name + ": " + record.message);
  }
}

}  // namespace

void Execute(Sweep& sweep) {
  RunRecords records(sweep.resumption.Records(sweep.plan));
  const auto keep = [&](std::size_t run) {
    KeptRun kept = sweep.resumption.Keep(run, sweep.plan[run], records.Records()[run]);
    if (!sweep.plan[run].restored && HaveInputsChanged(sweep))
      kept.identity.clear();  // Nobody knows what it is made from.
    return kept;
  };
  FanOut observers;
  observers.Add(records);
  std::optional<Journal> journal;
  // Who interrupted the look at the inputs keeps what the earlier sweep has finished.
  const bool keeps = !sweep.resumption.JournalFile().empty() && sweep.result.interrupted_by == 0;
  if (keeps) journal.emplace(sweep.resumption.JournalFile(), HeaderOf(sweep), keep);
  if (journal) observers.Add(*journal);
  if (sweep.event_log) sweep.event_log->Begin(HeaderOf(sweep));
  if (sweep.event_log) observers.Add(*sweep.event_log);
  LeftFiles left(sweep.plan);
  observers.Add(left);
  Progress progress(sweep.plan, ProgressOptionsOf(sweep.result.options));
  observers.Add(progress);
  sweep.progress = &progress;
  sweep.library.Logger().PrintThrough([&](const std::string& text) { progress.Print(text); });

  const Judge judge(sweep.library);
  Launcher& launcher = sweep.slurm ? static_cast<Launcher&>(*sweep.slurm) : sweep.launcher;
  Executor executor(sweep.plan, LimitsOf(sweep.result.options), launcher, sweep.clock, observers,
                    HooksOf(sweep, judge));
  sweep.end_what_goes_on = [&] { executor.Cancel(); };
  if (sweep.result.interrupted_by != 0) executor.Cancel();
  QMetaObject::invokeMethod(
      qApp, [&] { executor.Start(); }, Qt::QueuedConnection);
  QCoreApplication::exec();
  sweep.end_what_goes_on = nullptr;
  sweep.progress = nullptr;
  sweep.library.Logger().PrintThrough(nullptr);

  sweep.result.stopped_because = executor.StoppedBecause();
  for (std::size_t i = 0; i < sweep.plan.size(); ++i) {
    sweep.library.Seeds()[i].status = executor.Statuses()[i];
    sweep.result.runs[i].record = records.Records()[i];
  }
  FailChanged(sweep, left);
  if (const std::string why = journal ? journal->Error() : ""; !why.empty()) sweep.Warn(why);
  if (sweep.event_log && sweep.event_log->Failed())
    sweep.result.missing.push_back(sweep.event_log->Message());
}

}  // namespace vostrand
