#pragma once

#include <cstddef>
#include <string_view>

/// Byte-wise helpers on text that somebody else owns. Nothing here consults the process's locale.

/// The characters that "trimmed" always means: blank, tab, backspace, line feed, carriage return.
inline constexpr const char* ut_trim_set = " \t\b\n\r";

/// `text` without the leading characters that occur in `set`.
inline std::string_view ut_trimmed_front(std::string_view text, std::string_view set) {
  const std::size_t first = text.find_first_not_of(set);
  return first == std::string_view::npos ? std::string_view{} : text.substr(first);
}

/// `text` without the trailing characters that occur in `set`.
inline std::string_view ut_trimmed_back(std::string_view text, std::string_view set) {
  const std::size_t last = text.find_last_not_of(set);
  return last == std::string_view::npos ? std::string_view{} : text.substr(0, last + 1);
}

/// `text` without the characters of `ut_trim_set` at both ends.
inline std::string_view ut_trimmed(std::string_view text) {
  return ut_trimmed_front(ut_trimmed_back(text, ut_trim_set), ut_trim_set);
}

/// True for the six characters that separate tokens: blank, \t, \n, \v, \f and \r.
inline bool ut_is_space(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}
