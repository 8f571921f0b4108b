#include "ut/number.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>
#include <thread>
#include <utility>

#include "ut/format.h"
#include "ut/strobj.h"

TEST(Number, LeadingNumbers) {
  const std::pair<const char*, std::int64_t> integers[] = {{"", 0},
                                                           {" \t\n\v\f\r3 x", 3},
                                                           {"-5abc", -5},
                                                           {"+7", 7},
                                                           {"- 5", 0},

                                                           {"0x10", 0},
                                                           {"007.9", 7},
                                                           {"\b1", 0},

                                                           {"9223372036854775808", INT64_MAX},
                                                           {"99999999999999999999999", INT64_MAX},

                                                           {"-9223372036854775809", INT64_MIN}};
  for (const auto& [text, value] : integers) EXPECT_EQ(ut_leading_integer(text), value) << text;
  const std::pair<const char*, double> decimals[] = {{"0.5", 0.5},   {" \t-2.5e-1z", -0.25},
                                                     {".5x", 0.5},   {"5.", 5},
                                                     {"1,5", 1},     {"1e3", 1000},
                                                     {"1.5.5", 1.5}, {"", 0},
                                                     {".", 0},       {"ns", 0},
                                                     {"-", 0},       {"1e", 1}};
  for (const auto& [text, value] : decimals) EXPECT_EQ(ut_leading_decimal(text), value) << text;
  EXPECT_EQ(ut_leading_integer(std::string_view("123").substr(0, 2)), 12);
  EXPECT_EQ(ut_leading_decimal(std::string_view("1.25").substr(0, 3)), 1.2);
}

TEST(Number, FormattedTextMayComeFromItsOwnTarget) {
  const std::string locale = std::setlocale(LC_ALL, nullptr);
  UT_STROBJ text("x");
  text.str_format("%s-%s", text.getstring(), text.getstring()).str_format("<%s>%%", text.getstring());
  EXPECT_STREQ(text.getstring(), "<x-x>%");
  const std::string name(5000, 'n');
  EXPECT_EQ(text.str_format("%s.%.2f", name.c_str(), 1234.5).view(), name + ".1234.50");
  const char* const mine = neoform("%s+%s", neoform("%.1f", -0.0), name.c_str());
  std::thread([] { EXPECT_STREQ(neoform("%d", 5), "5"); }).join();
  EXPECT_EQ(mine, "-0.0+" + name);
  EXPECT_EQ(std::setlocale(LC_ALL, nullptr), locale);
}
