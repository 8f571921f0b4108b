#pragma once

#include "export.h"
#include "ut/darray.h"
#include "ut/strobj.h"

/// A growing array of strings. Releases them when it is destroyed.
class VOSTRAND_API DARRAY_UT_STROBJ : public UT_DARRAY {
 public:
  DARRAY_UT_STROBJ();
  ~DARRAY_UT_STROBJ() override;

  /// Appends a copy of `text`; returns its index.
  long add(const UT_STROBJ& text);

  UT_STROBJ* data = nullptr;
};

/// A growing array of C strings, which it does not own.
class VOSTRAND_API DARRAY_NAME : public UT_DARRAY {
 public:
  DARRAY_NAME();
  ~DARRAY_NAME() override;

  char** data = nullptr;
};

/// The array's element `index`, or an empty string where it has none.
inline UT_STROBJ ut_element(const DARRAY_UT_STROBJ& array, unsigned long index) {
  return index < static_cast<unsigned long>(array.count) ? array.data[index] : UT_STROBJ();
}
