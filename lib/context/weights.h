#pragma once

#include <map>

#include "ut/strobj.h"

namespace orlo::vostrand_lib {

/// How much a preference counts: `weight` multiplies the time (ns) by which a run beats it, `penalty` the
/// time by which a run misses it.
struct WPValue {
  float weight = 0.0F;
  float penalty = 0.0F;
};

/// Holds the kind defaults under the kind names ("PERIOD") and the annotated preferences under their cleaned
/// names.
using WeightsMap = std::map<UT_STROBJ, WPValue>;

}  // namespace orlo::vostrand_lib
