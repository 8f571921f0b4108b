#include "observe/eta.h"

#include <algorithm>
#include <functional>
#include <queue>

namespace vostrand {

// Plays out what the executor will do: the waiting runs start in plan order, each in the slot that is free
// first. The mere sum divided by the jobs would leave out that slots stand idle beside the last runs, up to a
// whole run's time.
std::optional<double> SecondsLeft(const SweepState& state, double now) {
  if (state.Queued() > 0) return {};  // Only the scheduler knows.
  double whole = 0;
  for (std::size_t step = 0; step < state.steps; ++step) {
    const std::optional<double> expected = state.step_times.Expected(step);
    if (!expected) return {};
    whole += *expected;
  }
  double last = 0;
  std::priority_queue<double, std::vector<double>, std::greater<>> free_at;
  for (const SweepState::Running& run : state.running) {
    const double left = state.step_times.Remaining(run.step, now - run.step_since, state.steps).value_or(0);
    free_at.push(left);
    last = std::max(last, left);
  }
  while (free_at.size() < state.jobs) free_at.push(0);
  for (std::size_t i = state.stopping ? 0 : state.Waiting(); i > 0; --i) {
    const double end = free_at.top() + whole;
    free_at.pop();
    free_at.push(end);
    last = std::max(last, end);
  }
  return last;
}

}  // namespace vostrand
