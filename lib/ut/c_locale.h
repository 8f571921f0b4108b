#pragma once

#include <clocale>

/// While it lives, the calling thread formats and reads numbers, and matches patterns, as in the "C" locale,
/// whatever locale the host has set. Other threads are not affected.
class ut_c_locale_scope {
 public:
  ut_c_locale_scope();
  ~ut_c_locale_scope();
  ut_c_locale_scope(const ut_c_locale_scope&) = delete;
  ut_c_locale_scope& operator=(const ut_c_locale_scope&) = delete;

 private:
  locale_t previous_;
};
