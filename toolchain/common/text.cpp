#include "common/text.h"

#include <cstdarg>
#include <cstdio>

namespace toolchain {

std::string Format(const char* format, ...) {
  std::va_list values;
  va_start(values, format);
  std::va_list again;
  va_copy(again, values);
  const int size = std::vsnprintf(nullptr, 0, format, values);
  va_end(values);
  std::string text(static_cast<std::size_t>(size), '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  return text;
}

bool Matches(std::string_view pattern, std::string_view text) {
  std::size_t at = 0;
  std::size_t next = 0;
  std::size_t star = std::string_view::npos;  // The last "*" passed, and where its share of the text ends.
  std::size_t star_end = 0;
  while (next < text.size()) {
    if (at < pattern.size() && pattern[at] == '*') {
      star = at++;
      star_end = next;
    } else if (at < pattern.size() && pattern[at] == text[next]) {
      ++at;
      ++next;
    } else if (star != std::string_view::npos) {
      at = star + 1;
      next = ++star_end;
    } else {
      return false;
    }
  }
  while (at < pattern.size() && pattern[at] == '*') ++at;
  return at == pattern.size();
}

}  // namespace toolchain
