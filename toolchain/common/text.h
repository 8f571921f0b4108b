#pragma once

#include <string>
#include <string_view>

namespace toolchain {

/// printf into a string. The programs never set a locale, so numbers have a ".".
[[gnu::format(printf, 1, 2)]] std::string Format(const char* format, ...);

inline bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v';
}

inline bool IsBlank(std::string_view text) {
  for (const char c : text)
    if (!IsBlank(c)) return false;
  return true;
}

/// A text between double quotes, for messages.
inline std::string Quoted(std::string_view text) {
  return '"' + std::string(text) + '"';
}

/// Whether `pattern` stands for the whole `text`; "*" in it stands for any characters, none included.
bool Matches(std::string_view pattern, std::string_view text);

}  // namespace toolchain
