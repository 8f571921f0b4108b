#include "scoring/period.h"

#include <gtest/gtest.h>

#include <sstream>

#include "ut/c_locale.h"

// Floats compare exactly: the last bit tells 32-bit arithmetic from wider. Cutting more characters than a
// text holds cuts none.
TEST(Period, OfAColumnText) {
  std::istringstream cases(
      "10.000 ns=10,5.425 ns=5.425,-1.250 ns=-1.25,16777.219 ns=0x1.0624e2p+14,4294967.297 ns=0.001,"
      "1 ns=0.011,10 ns=1.010,1000 ns=0,10.5 ns=0,ns=0,100.000 MHz=10,-50.000 MHz=-20,10 MHz=990.098999,"
      "5.000 MHz ns=0.005,0.000 MHz=1e8,0.001 MHz=999999.938,-0.010 MHz=1e8,-0.011 MHz=-90909.0938,"
      "-=0,5.425 NS=0,=0");
  for (std::string column, period; std::getline(cases, column, '=') && std::getline(cases, period, ',');) {
    const UT_STROBJ text(column.c_str());
    const auto expected = [&] {
      const ut_c_locale_scope c_locale;
      return std::stof(period);
    };
    EXPECT_EQ(orlo::vostrand_lib::GetStandardPeriod(&text), expected()) << column;
  }
}
