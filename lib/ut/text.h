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

/// True for the characters of `ut_trim_set`. Every line of every file is trimmed, so these five are compared
/// with directly; looking them up in a set costs a call for each character.
inline bool ut_in_trim_set(char c) {
  return c == ' ' || (c >= '\b' && c <= '\n') || c == '\r';
}

/// `text` without the characters of `ut_trim_set` at both ends.
inline std::string_view ut_trimmed(std::string_view text) {
  while (!text.empty() && ut_in_trim_set(text.back())) text.remove_suffix(1);
  while (!text.empty() && ut_in_trim_set(text.front())) text.remove_prefix(1);
  return text;
}

/// True for the six characters that separate tokens: blank, \t, \n, \v, \f and \r.
inline bool ut_is_space(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}
