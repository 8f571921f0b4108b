#include "scoring/default_weights.h"

#include "profile/profile_file.h"
#include "scoring/preference_name.h"

namespace orlo::vostrand_lib {

int GetWPDefaultValFilePath(UT_STROBJ&) {
  return 0;
}

void GetDefaultWPValueFromFile(UT_STROBJ iniPath, WeightsMap& weights, self_context* context) {
  const char* const file = iniPath.getstring();
  context->defaultWeight = GetPrivateProfileInt("default", "w", 1, file);
  context->defaultPenalty = GetPrivateProfileInt("default", "p", 1, file);
  for (const char* const kind : preference_kinds) {
    WPValue& value = weights[kind];
    value.weight = static_cast<float>(GetPrivateProfileInt(kind, "w", context->defaultWeight, file));
    value.penalty = static_cast<float>(GetPrivateProfileInt(kind, "p", context->defaultPenalty, file));
  }
}

}  // namespace orlo::vostrand_lib
