#include "ut/format.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "ut/c_locale.h"

std::string ut_vformat(const char* format, va_list arguments) {
  const ut_c_locale_scope c_locale;
  va_list again;
  va_copy(again, arguments);
  // Formatting numbers is most of a report's work: nearly every text is done at the first attempt.
  char first_attempt[512];
  const int length = std::vsnprintf(first_attempt, sizeof first_attempt, format, again);
  va_end(again);
  if (length < static_cast<int>(sizeof first_attempt))
    return {first_attempt, first_attempt + std::max(length, 0)};
  std::string text(static_cast<std::size_t>(length), '\0');
  // std::string keeps room for the closing NUL behind its last character.
  std::vsnprintf(text.data(), text.size() + 1, format, arguments);
  return text;
}

namespace {

std::string& text_of_this_thread() {
  thread_local std::string text;
  return text;
}

}  // namespace

char* neoform(const char* format, ...) {
  std::string& text = text_of_this_thread();
  va_list arguments;
  va_start(arguments, format);
  text = ut_vformat(format, arguments);
  va_end(arguments);
  return text.data();
}

char* ut_strdup(const char* text) {
  return ::strdup(text);
}
