#pragma once

#include <string_view>

#include "export.h"
#include "ut/strobj.h"

/// How preferences are named and told apart. Pure functions, any thread.
namespace orlo::vostrand_lib {

/// The kinds of timing preferences, in the order in which a text is tested for them: a clock period (ns), a
/// clock frequency (MHz), an input setup time (ns), a clock-to-output time (ns).
inline constexpr const char* preference_kinds[] = {"PERIOD", "FREQUENCY", "INPUT_SETUP", "CLOCK_TO_OUT"};

/// The first kind that occurs anywhere in `text`, or "". A frequency on a net whose name holds "PERIOD" is a
/// PERIOD.
VOSTRAND_API UT_STROBJ GetPrfItemType(UT_STROBJ text);

/// `text` without any blank or tab: the name under which a preference's weights and its timing results meet,
/// however either file spaces it.
VOSTRAND_API UT_STROBJ GetCleanedItemName(UT_STROBJ text);

/// `text` for display: without tabs, and of every run of blanks only the last one.
VOSTRAND_API UT_STROBJ GetRegularItemName(UT_STROBJ text);

}  // namespace orlo::vostrand_lib
