#pragma once

#include "context/weights.h"
#include "export.h"
#include "ut/strobj.h"

namespace orlo::vostrand_lib {

/// The weights of the preference `name` (cleaned), or of its kind `type` when it has no entry of its own; a
/// kind without an entry gets one of zeros.
VOSTRAND_API WPValue GetWPByPrfName(const UT_STROBJ& name, const UT_STROBJ& type, WeightsMap& weights);

/// The same, without making an entry for the kind.
WPValue FindWeights(const UT_STROBJ& name, const UT_STROBJ& type, const WeightsMap& weights);

}  // namespace orlo::vostrand_lib
