#include "ut/darray.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

UT_BASE_ARRAY::UT_BASE_ARRAY(void** data_slot, int element_size)
    : data_slot_(data_slot), element_size_(element_size) {}

void* UT_BASE_ARRAY::at(long index) const {
  return static_cast<char*>(storage_) + index * element_size_;
}

void UT_BASE_ARRAY::aim_at(void* storage) {
  storage_ = storage;
  // The slot's own type is known to the derived class only; copying bytes is the one way to write any
  // pointer.
  std::memcpy(static_cast<void*>(data_slot_), &storage_, sizeof storage_);
}

void UT_BASE_ARRAY::clearmem(void* memory, unsigned long bytes) {
  std::memset(memory, 0, bytes);
}

void UT_BASE_ARRAY::qsort(long first, long last, ut_compare compare) {
  if (first < 0 || last >= count || first >= last) return;
  const long elements = last - first + 1;
  std::vector<long> order(static_cast<std::size_t>(elements));
  for (long i = 0; i < elements; ++i) order[static_cast<std::size_t>(i)] = first + i;
  std::stable_sort(order.begin(), order.end(), [&](long a, long b) { return compare(at(a), at(b)) < 0; });

  const auto size = static_cast<std::size_t>(element_size_);
  std::vector<char> sorted(static_cast<std::size_t>(elements) * size);
  for (std::size_t i = 0; i < order.size(); ++i) std::memcpy(&sorted[i * size], at(order[i]), size);
  std::memcpy(at(first), sorted.data(), sorted.size());
}

void UT_BASE_ARRAY::a_sort(ut_compare compare, long first, long last) {
  qsort(first, last, compare);
}

void UT_BASE_ARRAY::a_shift(long index, int by) {
  if (index < 0 || index > count) return;
  const auto bytes = [this](long elements) { return static_cast<std::size_t>(elements * element_size_); };
  if (by > 0) {
    grow_to(count + by);
    std::memmove(at(index + by), at(index), bytes(count - index));
    clearmem(at(index), bytes(by));
    count += by;
  } else if (by < 0) {
    const long removed = std::min(-static_cast<long>(by), count - index);
    release_from(index, removed);
    if (removed > 0) std::memmove(at(index), at(index + removed), bytes(count - index - removed));
    count -= removed;
  }
}

long UT_BASE_ARRAY::lower_bound(const void* element, ut_compare compare, bool behind_equal) const {
  long low = 0;
  long high = count;
  while (low < high) {
    const long middle = low + (high - low) / 2;
    const int order = compare(at(middle), element);
    if (order < 0 || (behind_equal && order == 0))
      low = middle + 1;
    else
      high = middle;
  }
  return low;
}

long UT_BASE_ARRAY::insert(long index, const void* element) {
  // The element may be one of the array, which opening the gap moves.
  const auto size = static_cast<std::size_t>(element_size_);
  const std::vector<char> bytes(static_cast<const char*>(element), static_cast<const char*>(element) + size);
  a_shift(index, 1);
  if (operations_.copy)
    operations_.copy(at(index), bytes.data());
  else
    std::memcpy(at(index), bytes.data(), size);
  return index;
}

long UT_BASE_ARRAY::a_sortadd(const void* element, ut_compare compare) {
  return insert(lower_bound(element, compare, true), element);
}

long UT_BASE_ARRAY::a_sortuadd(const void* element, ut_compare compare, unsigned char* added) {
  const long found = a_bsearch(element, compare);
  if (added) *added = found < 0;
  return found >= 0 ? found : a_sortadd(element, compare);
}

long UT_BASE_ARRAY::a_bsearch(const void* element, ut_compare compare) {
  const long index = lower_bound(element, compare, false);
  return index < count && compare(at(index), element) == 0 ? index : -1;
}

void UT_BASE_ARRAY::grow_to(long elements) {
  if (elements <= capacity_) return;
  const long capacity = std::max({elements, 2 * capacity_, 8L});
  void* const moved = std::realloc(storage_, static_cast<std::size_t>(capacity * element_size_));
  if (!moved) throw std::bad_alloc();
  aim_at(moved);
  capacity_ = capacity;
}

void UT_BASE_ARRAY::release_from(long index, long elements) {
  if (!operations_.release) return;
  for (long i = index; i < index + elements; ++i) operations_.release(at(i));
}

void UT_BASE_ARRAY::release_storage() {
  release_from(0, count);
  std::free(storage_);
  storage_ = nullptr;
  count = capacity_ = 0;
}

UT_DARRAY::UT_DARRAY(void** data_slot, int element_size, int, unsigned char)
    : UT_BASE_ARRAY(data_slot, element_size) {}

UT_DARRAY::~UT_DARRAY() {
  release_storage();
}

void UT_DARRAY::a_resetnum(long elements) {
  if (elements < 0) return;
  if (elements < count) {
    release_from(elements, count - elements);
  } else {
    grow_to(elements);
    if (elements > count) clearmem(at(count), static_cast<unsigned long>((elements - count) * element_size_));
  }
  count = elements;
}

long UT_DARRAY::intgetindex(void* element) const {
  const auto first = reinterpret_cast<std::uintptr_t>(storage_);
  const auto address = reinterpret_cast<std::uintptr_t>(element);
  const auto size = static_cast<std::uintptr_t>(element_size_);
  if (address < first || address >= first + static_cast<std::uintptr_t>(count) * size) return -1;
  return static_cast<long>((address - first) / size);
}

void* UT_DARRAY::a_makearray() const {
  if (count == 0) return nullptr;
  const auto bytes = static_cast<std::size_t>(count * element_size_);
  void* const copy = std::malloc(bytes);
  if (!copy) throw std::bad_alloc();
  return std::memcpy(copy, storage_, bytes);
}

void* UT_DARRAY::getaddr(long index) {
  if (index < 0 || index > count) return nullptr;
  if (index == count) a_resetnum(count + 1);
  return at(index);
}
