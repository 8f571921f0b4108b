#include "page/axis.h"

#include <algorithm>
#include <cmath>

namespace vostrand {
namespace {

// The step of 1, 2 or 5 times a power of ten that gives at most `most` steps.
double RoundStep(double range, int most) {
  const double power = std::pow(10, std::floor(std::log10(range / most)));
  for (const double factor : {1.0, 2.0, 5.0})
    if (range / (power * factor) <= most) return power * factor;
  return power * 10;
}

Axis::Tick TickAt(double value, double step) {
  return {value, Decimals(value, step >= 1 ? 0 : static_cast<int>(std::ceil(-std::log10(step) - 1e-9)))};
}

}  // namespace

Axis::Axis(const std::vector<double>& values, double from, double to, Scale scale) : from_(from), to_(to) {
  std::vector<double> finite;
  for (const double value : values)
    if (std::isfinite(value)) finite.push_back(value);
  if (scale != Scale::tight || finite.empty()) finite.push_back(0);
  const auto [low, high] = std::minmax_element(finite.begin(), finite.end());
  low_ = *low;
  high_ = *high > low_ ? *high : low_ + std::max(1.0, std::abs(low_) * 1e-6);
  if (scale != Scale::outliers) return;
  for (double& value : finite) value = std::abs(value);
  std::sort(finite.begin(), finite.end());
  const double median = finite[finite.size() / 2];
  if (median > 0 && finite.back() > 20 * median) unit_ = std::pow(10, std::floor(std::log10(median)));
}

double Axis::Bent(double value) const {
  return unit_ > 0 ? std::asinh(value / unit_) : value;
}

double Axis::At(double value) const {
  const double share = (Bent(value) - Bent(low_)) / (Bent(high_) - Bent(low_));
  return from_ + (to_ - from_) * std::clamp(share, 0.0, 1.0);
}

std::vector<Axis::Tick> Axis::Ticks(int most) const {
  std::vector<Tick> ticks;
  if (unit_ == 0) {
    const double step = RoundStep(high_ - low_, most);
    const double first = std::ceil(low_ / step - 1e-9);
    for (int i = 0; i <= most && first + i <= high_ / step + 1e-9; ++i)
      ticks.push_back(TickAt((first + i) * step, step));
    return ticks;
  }
  ticks.push_back({0, "0"});
  const double size = std::max(high_, -low_);
  const double stride = std::pow(10, std::ceil(2 * (std::log10(size / unit_) + 1) / most));
  for (double value = unit_; value <= size; value *= stride) {
    if (value <= high_) ticks.push_back(TickAt(value, value));
    if (-value >= low_) ticks.push_back(TickAt(-value, value));
  }
  return ticks;
}

void Axis::WriteGrid(Html& page, double left, double right) const {
  for (const Tick& tick : Ticks(5))
    page << "<path class=" << std::string(tick.value == 0 ? "zero" : "grid") << " d='M" << left << " "
         << At(tick.value) << "H" << right << "'/><text class=end x=" << left - 8
         << " y=" << At(tick.value) + 4 << ">" << tick.text << "</text>";
}

}  // namespace vostrand
