#pragma once

#include "export.h"
#include "ut/strobj.h"

namespace orlo::vostrand_lib {

/// The period in ns that a Constraint or Actual text of a timing report stands for, so that frequencies and
/// times can be compared alike: "5.425 ns" is 5.425, "100.000 MHz" is 1000 / 100 = 10. A text with neither
/// unit is 0; a frequency that counts as zero (-0.01 to 0.001 MHz) is 1e8. The number has exactly three
/// decimals: it is read as a whole count of thousandths, in 32-bit arithmetic.
VOSTRAND_API float GetStandardPeriod(const UT_STROBJ* text);

}  // namespace orlo::vostrand_lib
