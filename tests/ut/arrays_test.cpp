#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <string>

#include "ut/typed_arrays.h"

namespace {

int ByFirstLetter(const void* a, const void* b) {
  return static_cast<const UT_STROBJ*>(a)->left(1).strcmp(static_cast<const UT_STROBJ*>(b)->left(1));
}

std::string Joined(const DARRAY_UT_STROBJ& array) {
  UT_STROBJ text;
  for (long i = 0; i < array.count; ++i) text += array.data[i] + ' ';
  return text.getstring();
}

}  // namespace

TEST(Arrays, GrowOneElementAtATime) {
  DARRAY_UT_STROBJ array;
  EXPECT_EQ(array.add("first"), 0);
  EXPECT_EQ(array.count, 1);
  EXPECT_TRUE(!array.getaddr(2) && !array.getaddr(-1));
  for (long i = 1; i < 1000; ++i) EXPECT_EQ(array.add(array.data[0]), i);  // Its storage moves meanwhile.
  EXPECT_EQ(array.getaddr(1000), &array.data[1000]);
  EXPECT_EQ(array.count, 1001);
  EXPECT_TRUE(array.data[1000].empty() && ut_element(array, 1001).empty());
  EXPECT_STREQ(array.data[999].getstring(), "first");
  EXPECT_EQ(array.intgetindex(&array.data[999]), 999);
  EXPECT_EQ(array.intgetindex(array.data + 1001), -1);
}

TEST(Arrays, SortSearchAndShift) {
  DARRAY_UT_STROBJ array;
  for (const char* text : {"z", "c1", "a1", "c2", "b1", "a2", "0"}) array.add(text);
  array.a_sort(ByFirstLetter, 1, 5);
  EXPECT_EQ(Joined(array), "z a1 a2 b1 c1 c2 0 ");
  array.qsort(0, 6, ByFirstLetter);
  const UT_STROBJ again("a3"), d("d1");
  EXPECT_EQ(array.a_sortuadd(&again, ByFirstLetter, nullptr), 1);
  EXPECT_EQ(array.a_sortuadd(&d, ByFirstLetter, nullptr), 6);
  EXPECT_EQ(array.a_sortadd(array.data + 1, ByFirstLetter), 3);  // Its storage moves meanwhile.
  array.a_shift(4, -3);
  array.a_shift(2, 1);
  EXPECT_EQ(Joined(array), "0 a1  a2 a1 d1 z ");
}

#ifdef __x86_64__
// Programs built against the header call an operation by its place in the table; a pointer to a virtual
// member holds that place, in bytes, plus one. The destructor takes places 10 and 11.
TEST(Arrays, KeepTheirTableOfOperations) {
  const auto place = [](auto member) { return (std::bit_cast<std::array<long, 2>>(member)[0] - 1) / 8; };
  using A = UT_DARRAY;
  const long places[] = {place(&A::clearmem),   place(&A::qsort),      place(&A::a_shift),
                         place(&A::a_sort),     place(&A::a_sortadd),  place(&A::a_sortuadd),
                         place(&A::a_bsearch),  place(&A::a_resetnum), place(&A::intgetindex),
                         place(&A::a_makearray)};
  for (long i = 0; i < 10; ++i) EXPECT_EQ(places[i], i);
  EXPECT_EQ(place(&A::getaddr), 12);
}
#endif
