#include "execute/executor.h"

#include <utility>

namespace vostrand {
namespace {

constexpr int cannot_begin = 126;  // Status of a run whose way could not be cleared.

}  // namespace

Executor::Executor(std::vector<PlannedRun> plan, int jobs, Launcher& launcher, Observer& observer,
                   ExecutorHooks hooks)
    : plan_(std::move(plan)),
      jobs_(static_cast<std::size_t>(jobs)),
      launcher_(launcher),
      observer_(observer),
      hooks_(std::move(hooks)),
      statuses_(plan_.size(), cancelled_status) {}

void Executor::Start() {
  Tell(Event::Kind::sweep_started);
  StartRuns();
  FinishIfIdle();
}

void Executor::Cancel() {
  cancelled_ = true;
  launcher_.CancelAll();
  FinishIfIdle();
}

void Executor::StartRuns() {
  while (running_ < jobs_ && next_ < plan_.size() && !cancelled_ && !hooks_.stop_requested()) {
    const std::size_t run = next_++;
    ++running_;
    Tell(Event::Kind::run_started, run);
    const std::string failure = hooks_.before_run(plan_[run]);
    if (failure.empty())
      StartStep(run, 0);
    else
      EndRun(run, cannot_begin, failure);
  }
}

void Executor::StartStep(std::size_t run, std::size_t step) {
  // Callbacks take no time and no job; the first command behind them is what the run waits for.
  for (; step < plan_[run].steps.size(); ++step) {
    const PlannedStep& planned = plan_[run].steps[step];
    Tell(Event::Kind::step_started, run, step);
    if (!planned.IsCallback()) {
      launcher_.Start({run, step, planned.words, plan_[run].output_file},
                      [this, run, step](const step::Outcome& outcome) { StepEnded(run, step, outcome); });
      return;
    }
    hooks_.call_back(run, step);
    Tell(Event::Kind::step_finished, run, step);
  }
  EndRun(run, 0);
}

void Executor::StepEnded(std::size_t run, std::size_t step, const step::Outcome& outcome) {
  Event event(Event::Kind::step_finished, run, step);
  event.outcome = outcome;
  observer_.On(event);
  const bool stopped = cancelled_ && (outcome.cancelled || step + 1 < plan_[run].steps.size());
  if (stopped)
    EndRun(run, cancelled_status);
  else if (outcome.exit_code != 0)
    EndRun(run, outcome.exit_code);
  else
    StartStep(run, step + 1);
  StartRuns();
  FinishIfIdle();
}

void Executor::EndRun(std::size_t run, int status, const std::string& message) {
  --running_;
  statuses_[run] = status;
  Event event(Event::Kind::run_finished, run, 0, status);
  event.message = message;
  observer_.On(event);
}

void Executor::FinishIfIdle() {
  if (finished_ || running_ > 0) return;
  finished_ = true;
  for (; next_ < plan_.size(); ++next_) Tell(Event::Kind::run_skipped, next_, 0, cancelled_status);
  Tell(Event::Kind::sweep_finished);
  hooks_.finished();
}

void Executor::Tell(Event::Kind kind, std::size_t run, std::size_t step, int status) {
  observer_.On(Event(kind, run, step, status));
}

}  // namespace vostrand
