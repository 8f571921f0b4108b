#include "ut/number.h"

#include <cstdlib>
#include <limits>
#include <string>

#include "ut/c_locale.h"
#include "ut/text.h"

std::int64_t ut_leading_integer(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size() && ut_is_space(text[at])) ++at;
  const bool negative = at < text.size() && text[at] == '-';
  if (negative || (at < text.size() && text[at] == '+')) ++at;
  std::int64_t value = 0;
  for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
    const int digit = negative ? '0' - text[at] : text[at] - '0';
    if (__builtin_mul_overflow(value, 10, &value) || __builtin_add_overflow(value, digit, &value))
      return negative ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
  }
  return value;
}

double ut_leading_decimal(std::string_view text) {
  const ut_c_locale_scope c_locale;
  return std::strtod(std::string(text).c_str(), nullptr);
}
