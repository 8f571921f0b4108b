#pragma once

#include <string>
#include <vector>

#include "page/html.h"

namespace vostrand {

/// Where values lie on a line of a chart, between `from` and `to`. Values that are no numbers are left out.
class Axis {
 public:
  struct Tick {
    double value;
    std::string text;
  };
  /// With 0, or only where the values lie, or with 0 and so that one outlier does not press the rest
  /// together: linear near 0 and logarithmic beyond, when sizes differ that much.
  enum class Scale { with_zero, tight, outliers };

  Axis(const std::vector<double>& values, double from, double to, Scale scale = Scale::with_zero);
  double At(double value) const;
  /// Round values, at most about `most`.
  std::vector<Tick> Ticks(int most) const;
  /// Of an upright axis: horizontal lines with their values on the left.
  void WriteGrid(Html& page, double left, double right) const;

 private:
  double Bent(double value) const;

  double from_;
  double to_;
  double unit_ = 0;  // Below it the scale is linear; 0 when it is everywhere.
  double low_ = 0;
  double high_ = 0;
};

}  // namespace vostrand
