#include "ut/typed_arrays.h"

// The base keeps the typed pointers aimed at the storage through their addresses, before it knows their
// types.
DARRAY_UT_STROBJ::DARRAY_UT_STROBJ() : UT_DARRAY(reinterpret_cast<void**>(&data), sizeof(UT_STROBJ), 0, 1) {
  operations_ = {
      [](void* empty, const void* from) {
        *static_cast<UT_STROBJ*>(empty) = *static_cast<const UT_STROBJ*>(from);
      },
      [](void* element) { static_cast<UT_STROBJ*>(element)->~UT_STROBJ(); },
  };
}

DARRAY_UT_STROBJ::~DARRAY_UT_STROBJ() = default;

long DARRAY_UT_STROBJ::add(const UT_STROBJ& text) {
  const UT_STROBJ copy(text);  // The text may be an element, which growing moves.
  const long index = count;
  *static_cast<UT_STROBJ*>(getaddr(index)) = copy;
  return index;
}

DARRAY_NAME::DARRAY_NAME() : UT_DARRAY(reinterpret_cast<void**>(&data), sizeof(char*), 0, 1) {}

DARRAY_NAME::~DARRAY_NAME() = default;
