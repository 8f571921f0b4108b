#include "ut/strobj.h"

#include <gtest/gtest.h>

TEST(Strobj, SearchesReturnTheLengthWhenNothingIsFound) {
  EXPECT_EQ(UT_STROBJ("abc").find("x", 0), 3);
}
