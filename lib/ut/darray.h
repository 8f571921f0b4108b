#pragma once

#include "export.h"

/// Order of two elements, as qsort takes it.
using ut_compare = int (*)(const void*, const void*);

/// The sorting and searching half of a growing array. Indices count from 0; ranges are [first, last], both
/// inside.
class VOSTRAND_API UT_BASE_ARRAY {
 public:
  /// Makes `bytes` bytes at `memory` zero, which is an empty element.
  virtual void clearmem(void* memory, unsigned long bytes);
  /// Sorts the elements first to last; equal elements keep their order.
  virtual void qsort(long first, long last, ut_compare compare);
  /// by > 0: opens a gap of `by` empty elements at `index`; by < 0: removes -by elements from `index` on.
  virtual void a_shift(long index, int by);
  /// The same as qsort, with the order's arguments first.
  virtual void a_sort(ut_compare compare, long first, long last);
  /// Inserts a copy of `*element` behind the elements of a sorted array that do not rank after it; returns
  /// its index.
  virtual long a_sortadd(const void* element, ut_compare compare);
  /// The same, unless an equal element is there; `*added` (may be null) tells, the result is the element's
  /// index.
  virtual long a_sortuadd(const void* element, ut_compare compare, unsigned char* added);
  /// Index of the first element of a sorted array that equals `*element`, or -1.
  virtual long a_bsearch(const void* element, ut_compare compare);

  /// The number of elements. Read it directly; only the array's operations change it.
  long count = 0;

 protected:
  UT_BASE_ARRAY(void** data_slot, int element_size);
  ~UT_BASE_ARRAY() = default;
  UT_BASE_ARRAY(const UT_BASE_ARRAY&) = delete;
  UT_BASE_ARRAY& operator=(const UT_BASE_ARRAY&) = delete;

  /// How a typed array copies into an empty element and releases one. Without it elements are plain bytes.
  struct element_operations {
    void (*copy)(void* empty, const void* from);
    void (*release)(void* element);
  };

  VOSTRAND_LOCAL void* at(long index) const;
  VOSTRAND_LOCAL void aim_at(void* storage);
  VOSTRAND_LOCAL long lower_bound(const void* element, ut_compare compare, bool behind_equal) const;
  VOSTRAND_LOCAL long insert(long index, const void* element);
  VOSTRAND_LOCAL void grow_to(long elements);
  VOSTRAND_LOCAL void release_from(long index, long elements);
  VOSTRAND_LOCAL void release_storage();

  void** data_slot_;
  void* storage_ = nullptr;
  long element_size_;
  long capacity_ = 0;
  element_operations operations_ = {nullptr, nullptr};
};

/// A growing array of fixed-size elements that lie one behind the other. The derived class's typed data
/// pointer is kept aimed at the first one, so callers index elements directly; a pointer to an element taken
/// before the array grows is not used after it. Elements move by their bytes, and zero bytes are an empty
/// element.
class VOSTRAND_API UT_DARRAY : public UT_BASE_ARRAY {
 public:
  /// `data_slot` is the address of the derived class's typed data pointer. The last two arguments are always
  /// 0 and 1.
  UT_DARRAY(void** data_slot, int element_size, int, unsigned char);

  /// Makes the array `elements` long: releases what is behind, or appends empty elements.
  virtual void a_resetnum(long elements);
  /// Index of the element at this address, or -1 for an address outside the array.
  virtual long intgetindex(void* element) const;
  /// A copy of the elements' bytes in memory of the caller's, to be released with free(); null for an empty
  /// array. Only bytes: a string among them is the array's own and goes with it.
  virtual void* a_makearray() const;
  virtual ~UT_DARRAY();
  /// Address of element `index`. `index` equal to `count` appends an empty element; any other index is null.
  virtual void* getaddr(long index);
};
