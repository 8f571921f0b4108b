#include "page/axis.h"

#include <gtest/gtest.h>

#include <limits>

using namespace vostrand;

TEST(Axis, TicksAreFewWhateverTheValues) {
  constexpr double big = std::numeric_limits<float>::max();
  const std::vector<std::vector<double>> cases = {{},           {0, 0, 0},  {-1e18},   {-1e18, -1e18},
                                                  {1e16, 2e16}, {big, big}, {-big, 1}, {1e-30},
                                                  {3, 7},       {-5e-324}};
  for (const std::vector<double>& values : cases)
    for (const auto scale : {Axis::Scale::with_zero, Axis::Scale::tight, Axis::Scale::outliers}) {
      const Axis axis(values, 0, 100, scale);
      EXPECT_LE(axis.Ticks(5).size(), 12U) << testing::PrintToString(values);
      for (const double value : values) EXPECT_TRUE(axis.At(value) >= 0 && axis.At(value) <= 100) << value;
    }
}
