#pragma once

#include "export.h"
#include "ut/strobj.h"

/// One option inside a line of options such as "-l 5 -i 15 -n 1". An option is found by its text anywhere in
/// the line (callers give it with its blank, "-n "), and its value reaches to the next "-" of any kind. Pure
/// functions, any thread.
namespace orlo::vostrand_lib {

/// The value behind the first `option`: trimmed when another "-" follows, otherwise the rest as it is. Empty
/// when the line has no such option.
VOSTRAND_API UT_STROBJ GetOptionValue(const UT_STROBJ& options, const UT_STROBJ& option);

/// Puts `value` in place of the first `option`'s value: option, blank, value, blank, and the rest from the
/// next "-" on. A line without the option stays as it is.
VOSTRAND_API void ReplaceOption(UT_STROBJ& options, const UT_STROBJ& option, const UT_STROBJ& value);

}  // namespace orlo::vostrand_lib
