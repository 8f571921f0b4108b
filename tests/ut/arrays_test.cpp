#include <gtest/gtest.h>

#include <array>
#include <bit>

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
