#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace vostrand {

/// How long steps take, learnt from those that have ended well. The same step of another run works on the
/// same design, so its mean is a fair guess.
class StepTimes {
 public:
  void Add(std::size_t step, double seconds);
  /// Mean of one step; nothing before one has ended.
  std::optional<double> Expected(std::size_t step) const;
  /// Expected seconds until a run ends that has `step_count` steps and is `in_step` seconds in step `step`;
  /// steps never seen count as nothing. Nothing when `step` itself was never seen.
  std::optional<double> Remaining(std::size_t step, double in_step, std::size_t step_count) const;

 private:
  struct Sum {
    double seconds = 0;
    int count = 0;
  };
  std::vector<Sum> sums_;
};

}  // namespace vostrand
