#include "execute/executor.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vostrand {
namespace {

constexpr int cannot_begin = 126;           // Status of a run whose way could not be cleared.
constexpr double memory_check_seconds = 1;  // Memory is freed by others too, and nobody tells.
constexpr double settling_seconds = 10;     // Until a run has taken most of the memory that it needs.
constexpr int ended_by_others = 143;        // Status of a run whose tool was ended, but by none of us.

}  // namespace

Executor::Executor(std::vector<PlannedRun> plan, const Limits& limits, Launcher& launcher, Clock& clock,
                   Observer& observer, ExecutorHooks hooks)
    : plan_(std::move(plan)),
      limits_(limits),
      launcher_(launcher),
      clock_(clock),
      observer_(observer),
      hooks_(std::move(hooks)),
      statuses_(plan_.size(), cancelled_status) {}

void Executor::Start() {
  began_ = clock_.Now();
  started_ = true;
  Tell(Event(Event::Kind::sweep_started));
  TakeRestored();
  if (cancelled_) Stop("interrupted", nobody);
  StartRuns();
  FinishIfIdle();
}

void Executor::Cancel() {
  const bool again = cancelled_;
  cancelled_ = true;
  if (!started_) return;
  Stop("interrupted", nobody);
  // What has been asked to end already keeps its time to do so, until the user insists.
  for (auto& [run, running] : running_)
    if (!running.told_to_end || again) TellToEnd(running);
  FinishIfIdle();
}

// Their callbacks are called again: a stop that an earlier sweep found is found again. All of them are told
// before anything else is.
void Executor::TakeRestored() {
  std::vector<Verdict> verdicts;
  for (std::size_t run = 0; run < plan_.size(); ++run) {
    const PlannedRun& planned = plan_[run];
    if (!planned.restored) continue;
    statuses_[run] = 0;
    expected_peak_kib_ = std::max(expected_peak_kib_, planned.earlier_peak_kib);
    for (std::size_t step = 0; step < planned.steps.size(); ++step)
      if (planned.steps[step].IsCallback()) hooks_.call_back(run, step);
    Event event(Event::Kind::run_restored, run);
    // What ended while nobody looked has no verdict yet.
    event.verdict = planned.earlier_verdict.met ? planned.earlier_verdict : hooks_.judge(run);
    verdicts.push_back(event.verdict);
    Tell(event);
  }
  StopIfRequested(nobody);
  for (const Verdict& verdict : verdicts) Judged(verdict);
}

void Executor::StartRuns() {
  for (; next_ < plan_.size() && !Stopping(); ++next_) {
    if (plan_[next_].restored) continue;
    if (running_.size() >= static_cast<std::size_t>(limits_.jobs) || !HasMemory()) return;
    const std::size_t run = next_;
    Running started;
    started.run = run;
    started.slot = TakeSlot();
    started.began = clock_.Now();
    running_[run] = started;
    Tell(About(Event::Kind::run_started, started));
    const std::string failure = hooks_.before_run(plan_[run], false);
    if (failure.empty())
      StartStep(run, 0);
    else
      EndRun(run, cannot_begin, failure);
  }
}

// One run always may, or nothing would ever happen. The first runs alone, since nothing is known before.
bool Executor::HasMemory() {
  if (limits_.memory_kib == 0 || running_.empty()) return true;
  if (expected_peak_kib_ == 0) return false;
  const long of_ours = limits_.memory_kib - expected_peak_kib_ * static_cast<long>(running_.size());
  if (expected_peak_kib_ > of_ours) return false;
  const auto young = std::count_if(running_.begin(), running_.end(), [&](const auto& entry) {
    return clock_.Now() - entry.second.began < settling_seconds;
  });
  if (expected_peak_kib_ * (young + 1) <= hooks_.free_memory_kib()) return true;
  if (!waiting_for_memory_) {
    waiting_for_memory_ = true;
    Later(memory_check_seconds, [this] {
      waiting_for_memory_ = false;
      StartRuns();
      FinishIfIdle();
    });
  }
  return false;
}

// The lowest that is free.
std::size_t Executor::TakeSlot() {
  if (free_slots_.empty()) return slots_++;
  return free_slots_.extract(free_slots_.begin()).value();
}

void Executor::StartStep(std::size_t run, std::size_t step) {
  // Callbacks take no time and no job; the first command behind them is what the run waits for.
  for (; step < plan_[run].steps.size(); ++step) {
    Running& running = running_.at(run);
    running.step = step;
    running.try_number = 1;
    running.losses = 0;
    if (!plan_[run].steps[step].IsCallback()) {
      StartCommand(running);
      return;
    }
    Tell(About(Event::Kind::step_started, running));
    hooks_.call_back(run, step);
    Tell(About(Event::Kind::step_finished, running));
    StopIfRequested(run);
  }
  EndRun(run, 0);
}

void Executor::StartCommand(Running& running) {
  running.step_began = clock_.Now();
  Tell(About(Event::Kind::step_started, running));
  const std::size_t run = running.run;
  const PlannedRun& planned = plan_[run];
  StepRequest request{run, running.step, planned.steps[running.step].words, planned.output_file, {}, {}};
  for (std::size_t step = running.step + 1; step < planned.steps.size(); ++step)
    if (!planned.steps[step].IsCallback()) request.following.emplace_back(step, planned.steps[step].words);
  request.placed = [this, run](const Place& place) { StepPlaced(run, place); };
  launcher_.Start(request, [this, run](const step::Outcome& outcome) { StepEnded(run, outcome); });
}

void Executor::StepPlaced(std::size_t run, const Place& place) {
  Running& running = running_.at(run);
  running.waits = place.node.empty();
  if (!running.waits) running.step_began = clock_.Now();
  Event event = About(Event::Kind::step_placed, running);
  event.node = place.node;
  event.message = place.reason;
  Tell(event);
}

bool Executor::IsTriedAgain(Running& running, const step::Outcome& outcome) const {
  if (outcome.exit_code == 0 || outcome.cancelled || running.told_to_end || cancelled_) return false;
  if (outcome.lost) return ++running.losses <= limits_.requeues;
  return running.try_number - running.losses <= limits_.retries;
}

void Executor::StepEnded(std::size_t run, const step::Outcome& outcome) {
  Running& running = running_.at(run);
  const bool failed = outcome.exit_code != 0 && !outcome.cancelled;
  const bool has_more = running.step + 1 < plan_[run].steps.size();
  const bool retry = IsTriedAgain(running, outcome);
  Event event = About(Event::Kind::step_finished, running);
  event.outcome = outcome;
  event.will_retry = retry;
  Tell(event);
  const bool waited = outcome.queue_seconds > 0;
  if (!failed && !outcome.cancelled)
    step_times_.Add(running.step, waited ? outcome.elapsed_seconds : clock_.Now() - running.step_began);

  if (retry) {
    ++running.try_number;
    const std::string failure = running.step == 0 ? hooks_.before_run(plan_[run], true) : "";
    if (failure.empty())
      StartCommand(running);
    else
      EndRun(run, cannot_begin, failure);
    if (failure.empty() && Stopping() && run != wanted_) launcher_.Withdraw(run);
  } else if (running.told_to_end && (outcome.cancelled || has_more)) {
    EndRun(run, cancelled_status);
  } else if (outcome.exit_code != 0) {
    EndRun(run, outcome.exit_code);
  } else if (outcome.cancelled && !running.told_to_end) {
    EndRun(run, ended_by_others, "its tool was told to end");
  } else {
    running.peak_kib = std::max(running.peak_kib, outcome.peak_kib);
    StartStep(run, running.step + 1);
  }
  StartRuns();
  FinishIfIdle();
}

void Executor::EndRun(std::size_t run, int status, const std::string& message) {
  const Running ended = running_.extract(run).mapped();
  free_slots_.insert(ended.slot);
  Event event = About(Event::Kind::run_finished, ended);
  statuses_[run] = status;
  event.status = status;
  event.message = message;
  if (status == 0) {
    expected_peak_kib_ = std::max(expected_peak_kib_, ended.peak_kib);
    event.verdict = hooks_.judge(run);
  }
  Tell(event);
  if (status == 0) Judged(event.verdict);
  const bool failed = status != 0 && status != cancelled_status;
  if (failed && limits_.fail_fast) Stop("run " + plan_[run].name + " failed", nobody);
}

void Executor::Judged(const Verdict& verdict) {
  if (!verdict.met.value_or(false)) return;
  if (++met_ == limits_.until)
    Stop(std::to_string(met_) + (met_ == 1 ? " run meets" : " runs meet") + " timing", nobody);
}

void Executor::StopIfRequested(std::size_t by_run) {
  if (!Stopping() && hooks_.stop_requested()) Stop("a run meets timing", by_run);
}

// The run `but_not` asked for the stop: it goes on, since it is the one that is wanted.
void Executor::Stop(const std::string& why, std::size_t but_not) {
  if (Stopping()) return;
  stopped_because_ = why;
  wanted_ = but_not;
  Event event(Event::Kind::stopping);
  event.message = why;
  Tell(event);
  for (auto& [run, running] : running_)
    if (run != but_not) launcher_.Withdraw(run);
  if (!limits_.stop_now) return;
  for (auto& [run, running] : running_) {
    if (run == but_not) continue;
    const auto remaining =
        step_times_.Remaining(running.step, clock_.Now() - running.step_began, plan_[run].steps.size());
    if (!running.waits && remaining && *remaining < limits_.grace_seconds)
      EndWithin(run, limits_.grace_seconds);
    else
      TellToEnd(running);
  }
}

void Executor::EndWithin(std::size_t run, double seconds) {
  Later(seconds, [this, run] {
    const auto running = running_.find(run);
    if (running != running_.end() && !running->second.told_to_end) TellToEnd(running->second);
  });
}

// The clock, and the event loop, may go on when all runs have ended and this object is gone.
void Executor::Later(double seconds, std::function<void()> then) {
  clock_.After(seconds, [alive = std::weak_ptr(alive_), then = std::move(then)] {
    if (!alive.expired()) then();
  });
}

void Executor::TellToEnd(Running& running) {
  running.told_to_end = true;
  launcher_.Cancel(running.run);
}

void Executor::FinishIfIdle() {
  if (finished_ || !running_.empty() || (next_ < plan_.size() && !Stopping())) return;
  finished_ = true;
  for (; next_ < plan_.size(); ++next_) {
    if (plan_[next_].restored) continue;
    Event event(Event::Kind::run_skipped, next_);
    event.status = cancelled_status;
    Tell(event);
  }
  Tell(Event(Event::Kind::sweep_finished));
  hooks_.finished();
}

Event Executor::About(Event::Kind kind, const Running& running) const {
  Event event(kind, running.run);
  event.slot = running.slot;
  event.step = running.step;
  event.try_number = running.try_number;
  event.callback = plan_[running.run].steps[running.step].IsCallback();
  return event;
}

void Executor::Tell(Event event) {
  event.at_seconds = std::round((clock_.Now() - began_) * 1e6) / 1e6;  // Nobody reads more digits.
  observer_.On(event);
}

}  // namespace vostrand
