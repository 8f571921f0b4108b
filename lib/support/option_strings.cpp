#include "support/option_strings.h"

namespace orlo::vostrand_lib {

UT_STROBJ GetOptionValue(const UT_STROBJ& options, const UT_STROBJ& option) {
  const auto at = static_cast<unsigned long>(options.find(option, 0));
  if (at >= options.size()) return {};
  const UT_STROBJ rest = options.cut(0, at + option.size());
  const unsigned long next_option = rest.find_char('-', 0);
  if (next_option >= rest.size()) return rest;
  return rest.left(next_option).trimmed();
}

void ReplaceOption(UT_STROBJ& options, const UT_STROBJ& option, const UT_STROBJ& value) {
  const auto at = static_cast<unsigned long>(options.find(option, 0));
  if (at >= options.size()) return;
  const UT_STROBJ rest = options.cut(0, at + option.size());
  const UT_STROBJ tail = rest.right_from(rest.find_char('-', 0));
  options = options.left(at) + option + ' ' + value + ' ' + tail;
}

}  // namespace orlo::vostrand_lib
