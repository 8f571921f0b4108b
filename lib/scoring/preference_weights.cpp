#include "scoring/preference_weights.h"

namespace orlo::vostrand_lib {

WPValue GetWPByPrfName(const UT_STROBJ& name, const UT_STROBJ& type, WeightsMap& weights) {
  const auto own = weights.find(name);
  return own != weights.end() ? own->second : weights[type];
}

}  // namespace orlo::vostrand_lib
