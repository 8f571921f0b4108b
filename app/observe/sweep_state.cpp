#include "observe/sweep_state.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vostrand {
namespace {

bool HasScore(const Verdict& verdict) {
  return verdict.score && std::isfinite(*verdict.score);
}

bool IsBetter(const Verdict& verdict, const Verdict& than) {
  if (!HasScore(verdict) || !HasScore(than)) return HasScore(verdict) && !HasScore(than);
  return *verdict.score > *than.score;
}

}  // namespace

SweepState::SweepState(std::vector<std::string> run_names, std::size_t most_steps, std::size_t most_jobs,
                       std::vector<std::string> step_programs)
    : names(std::move(run_names)),
      steps(most_steps),
      jobs(std::max<std::size_t>(most_jobs, 1)),
      programs(std::move(step_programs)) {}

std::size_t SweepState::Waiting() const {
  const std::size_t begun = Ended() + running.size();
  return names.size() - std::min(begun, names.size());
}

std::size_t SweepState::Queued() const {
  return static_cast<std::size_t>(
      std::count_if(running.begin(), running.end(), [](const Running& run) { return run.waits; }));
}

void SweepState::On(const Event& event) {
  if (event.kind == Event::Kind::stopping) {
    stopping = true;
    stopped_because = event.message;
  } else if (event.kind != Event::Kind::sweep_started && event.kind != Event::Kind::sweep_finished &&
             event.run < names.size() && event.step < std::max<std::size_t>(steps, 1)) {
    OnRun(event);
  }
}

void SweepState::OnRun(const Event& event) {
  const auto its = std::find_if(running.begin(), running.end(),
                                [&](const Running& candidate) { return candidate.run == event.run; });
  switch (event.kind) {
    case Event::Kind::run_started:
      running.push_back({event.run, event.slot, 0, 1, event.at_seconds, event.at_seconds, false, {}});
      return;
    case Event::Kind::step_started:
      if (its == running.end()) return;
      its->step = event.step;
      its->try_number = event.try_number;
      its->step_since = event.at_seconds;
      return;
    case Event::Kind::step_placed:
      if (its == running.end()) return;
      its->waits = event.node.empty();
      its->place = its->waits ? event.message : event.node;
      if (!its->waits) its->step_since = event.at_seconds;
      return;
    case Event::Kind::step_finished:
      if (its != running.end() && event.outcome.exit_code == 0 && !event.outcome.cancelled)
        step_times.Add(event.step, event.callback                    ? 0
                                   : event.outcome.queue_seconds > 0 ? event.outcome.elapsed_seconds
                                                                     : event.at_seconds - its->step_since);
      return;
    case Event::Kind::run_restored:
      ++restored;
      Finish(event);
      return;
    case Event::Kind::run_finished:
      if (its != running.end()) running.erase(its);
      if (event.status == 0)
        Finish(event);
      else
        ++(event.status == cancelled_status ? cancelled : failed);
      return;
    case Event::Kind::run_skipped:
      ++cancelled;
      return;
    default:
      return;
  }
}

void SweepState::Finish(const Event& event) {
  verdicts.push_back(event.verdict);
  if (!HasScore(event.verdict) && !event.verdict.met.value_or(false)) return;
  const bool is_equal = best && !IsBetter(best_verdict, event.verdict);
  if (best && !IsBetter(event.verdict, best_verdict) && !(is_equal && event.run < *best)) return;
  best = event.run;
  best_verdict = event.verdict;
}

}  // namespace vostrand
