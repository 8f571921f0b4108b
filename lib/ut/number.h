#pragma once

#include <cstdint>
#include <string_view>

/// Numbers out of text, the same in every locale.

/// The decimal integer at the front of `text`: leading white space, an optional sign, digits up to the first
/// other character. No digits give 0; a number beyond 64 bits gives the nearest one that fits.
std::int64_t ut_leading_integer(std::string_view text);

/// The decimal floating-point number at the front of `text`, by its longest valid prefix; none gives 0.
double ut_leading_decimal(std::string_view text);
