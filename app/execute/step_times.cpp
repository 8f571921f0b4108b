#include "execute/step_times.h"

#include <algorithm>

namespace vostrand {

void StepTimes::Add(std::size_t step, double seconds) {
  if (sums_.size() <= step) sums_.resize(step + 1);
  sums_[step].seconds += seconds;
  ++sums_[step].count;
}

std::optional<double> StepTimes::Expected(std::size_t step) const {
  if (step >= sums_.size() || sums_[step].count == 0) return {};
  return sums_[step].seconds / sums_[step].count;
}

std::optional<double> StepTimes::Remaining(std::size_t step, double in_step, std::size_t step_count) const {
  const std::optional<double> expected = Expected(step);
  if (!expected) return {};
  double seconds = std::max(0.0, *expected - in_step);
  for (++step; step < step_count; ++step) seconds += Expected(step).value_or(0);
  return seconds;
}

}  // namespace vostrand
