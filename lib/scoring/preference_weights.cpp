#include "scoring/preference_weights.h"

namespace orlo::vostrand_lib {

WPValue GetWPByPrfName(const UT_STROBJ& name, const UT_STROBJ& type, WeightsMap& weights) {
  const auto own = weights.find(name);
  return own != weights.end() ? own->second : weights[type];
}

WPValue FindWeights(const UT_STROBJ& name, const UT_STROBJ& type, const WeightsMap& weights) {
  auto found = weights.find(name);
  if (found == weights.end()) found = weights.find(type);
  return found != weights.end() ? found->second : WPValue();
}

}  // namespace orlo::vostrand_lib
