#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "ut/typed_arrays.h"

TEST(Arrays, GrowOneElementAtATime) {
  DARRAY_UT_STROBJ array;
  array.add("first");
  EXPECT_TRUE(!array.getaddr(2) && !array.getaddr(-1));
  for (long i = 1; i < 1000; ++i) EXPECT_EQ(array.add(array.data[0]), i);  // Its storage moves meanwhile.
  EXPECT_EQ(array.getaddr(1000), &array.data[1000]);
  EXPECT_TRUE(array.count == 1001 && array.data[1000].empty() && ut_element(array, 1001).empty());
  EXPECT_STREQ(array.data[999].getstring(), "first");
  EXPECT_EQ(array.intgetindex(&array.data[999]), 999);
  EXPECT_EQ(array.intgetindex(array.data + 1001), -1);
}

// Sorted by the first letter alone, so that equal elements can be told apart.
TEST(Arrays, SortSearchAndShiftStringsOfTheirOwn) {
  const auto by_letter = [](const void* a, const void* b) {
    return int{static_cast<const UT_STROBJ*>(a)->getstring()[0]} -
           static_cast<const UT_STROBJ*>(b)->getstring()[0];
  };
  DARRAY_UT_STROBJ array;
  const auto texts = [&] {
    std::string all;
    for (long i = 0; i < array.count; ++i) all.append(array.data[i].view()) += ' ';
    return all;
  };
  for (const char* const text : {"z0", "c1", "a1", "c2", "a2", "0"}) array.add(text);
  array.qsort(1, 4, by_letter);
  EXPECT_EQ(texts(), "z0 a1 a2 c1 c2 0 ");
  array.a_sort(by_letter, 0, 5);
  EXPECT_EQ(texts(), "0 a1 a2 c1 c2 z0 ");

  unsigned char added = 9;
  const UT_STROBJ a3("a3"), b("b");
  EXPECT_TRUE(array.a_sortadd(&a3, by_letter) == 3 && array.a_sortadd(&array.data[5], by_letter) == 6);
  EXPECT_TRUE(array.a_sortuadd(&a3, by_letter, &added) == 1 && added == 0);
  EXPECT_TRUE(array.a_bsearch(&b, by_letter) == -1 && array.a_sortuadd(&b, by_letter, &added) == 4 &&
              added == 1);
  EXPECT_EQ(texts(), "0 a1 a2 a3 b c1 c2 c2 z0 ");

  array.a_shift(8, 2);
  array.data[9] = "y";
  array.a_shift(1, -3);
  EXPECT_EQ(texts(), "0 b c1 c2 c2  y z0 ");
  array.a_shift(6, -9);
  array.a_resetnum(4), array.a_resetnum(6);
  EXPECT_EQ(texts(), "0 b c1 c2   ");
  const std::unique_ptr<void, decltype(&std::free)> copy(array.a_makearray(), &std::free);
  EXPECT_EQ(std::memcmp(copy.get(), array.data, 6 * sizeof(UT_STROBJ)), 0);
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
