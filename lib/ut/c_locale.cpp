#include "ut/c_locale.h"

namespace {

// The C library hands out one built-in object for "C" and never frees it, so nothing is owned here.
locale_t built_in_c_locale() {
  return newlocale(LC_ALL_MASK, "C", nullptr);
}

}  // namespace

ut_c_locale_scope::ut_c_locale_scope() : previous_(uselocale(built_in_c_locale())) {}

ut_c_locale_scope::~ut_c_locale_scope() {
  uselocale(previous_);
}
