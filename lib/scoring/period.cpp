#include "scoring/period.h"

#include <cstdint>
#include <string>

#include "ut/number.h"

namespace orlo::vostrand_lib {
namespace {

constexpr float no_frequency_period = 100000000.0F;

// The number in front of the last `unit_length` characters (the blank and the unit), as a count of
// thousandths over 1000. A text too short to lose so many characters keeps them all, as `left` does it.
float ThousandthsBefore(const UT_STROBJ& text, unsigned long unit_length) {
  const UT_STROBJ number = text.left(text.size() - unit_length);
  std::string whole(number.left(number.size() - 4).view());
  whole += number.right(3).view();
  const auto thousandths = static_cast<std::int32_t>(ut_leading_integer(whole));
  return static_cast<float>(thousandths) / 1000.0F;
}

}  // namespace

float GetStandardPeriod(const UT_STROBJ* text) {
  if (text->contains("ns")) return ThousandthsBefore(*text, 3);
  if (!text->contains("MHz")) return 0.0F;
  const float frequency = ThousandthsBefore(*text, 4);
  const auto wide = static_cast<double>(frequency);
  const bool counts_as_zero = wide >= -0.01 && wide <= 0.001;
  return counts_as_zero ? no_frequency_period : 1000.0F / frequency;
}

}  // namespace orlo::vostrand_lib
