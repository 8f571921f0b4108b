#pragma once

#include "export.h"
#include "ut/strobj.h"

namespace orlo::vostrand_lib {

/// The one-line synopsis of the command line, printed by `usage` and parsed by the command line's parser.
/// Shared by all threads: take its text with getstring, never copy it.
VOSTRAND_API extern UT_STROBJ cmdformat;

}  // namespace orlo::vostrand_lib
