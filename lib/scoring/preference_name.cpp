#include "scoring/preference_name.h"

#include <string>

namespace orlo::vostrand_lib {

UT_STROBJ GetPrfItemType(UT_STROBJ text) {
  for (const char* const kind : preference_kinds)
    if (text.contains(kind)) return kind;
  return {};
}

UT_STROBJ GetCleanedItemName(UT_STROBJ text) {
  std::string cleaned(text.view());
  std::erase_if(cleaned, [](char c) { return c == ' ' || c == '\t'; });
  return UT_STROBJ(cleaned);
}

UT_STROBJ GetRegularItemName(UT_STROBJ text) {
  const std::string_view all = text.view();
  std::string regular;
  regular.reserve(all.size());
  for (std::size_t i = 0; i < all.size(); ++i) {
    const bool blank_follows = i + 1 < all.size() && all[i + 1] == ' ';
    if (all[i] != '\t' && !(all[i] == ' ' && blank_follows)) regular += all[i];
  }
  return UT_STROBJ(regular);
}

}  // namespace orlo::vostrand_lib
