#include "ut/number.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include "ut/format.h"
#include "ut/strobj.h"

TEST(Number, LeadingNumbers) {
  const std::pair<const char*, std::int64_t> integers[] = {
      {"", 0},       {" \t\n\v\f\r3 x", 3},
      {"-5abc", -5}, {"+7", 7},
      {"- 5", 0},    {"0x10", 0},
      {"\b1", 0},    {"9223372036854775808", INT64_MAX},
      {"007.9", 7},  {"-9223372036854775809", INT64_MIN}};
  for (const auto& [text, value] : integers) EXPECT_EQ(ut_leading_integer(text), value) << text;
  const std::pair<const char*, double> decimals[] = {
      {" \t-2.5e-1z", -0.25}, {".5x", 0.5}, {"1,5", 1}, {"1.5.5", 1.5}, {"", 0}, {"-", 0}, {"1e", 1}};
  for (const auto& [text, value] : decimals) EXPECT_EQ(ut_leading_decimal(text), value) << text;
  EXPECT_EQ(ut_leading_integer(std::string_view("123").substr(0, 2)), 12);
  EXPECT_EQ(ut_leading_decimal(std::string_view("1.25").substr(0, 3)), 1.2);
}

TEST(Number, FormattedTextMayComeFromItsOwnTarget) {
  const std::string locale = std::setlocale(LC_ALL, nullptr), name(5000, 'n');
  UT_STROBJ text("x");
  text.str_format("%s-%s", text.getstring(), text.getstring()).str_format("<%s>%%", text.getstring());
  EXPECT_STREQ(text.getstring(), "<x-x>%");
  EXPECT_EQ(text.str_format("%s.%.2f", name.c_str(), 1234.5).view(), name + ".1234.50");
  EXPECT_EQ(neoform("%s+%s", neoform("%.1f", -0.0), name.c_str()), "-0.0+" + name);
  const std::unique_ptr<char, decltype(&std::free)> copy(ut_strdup(text.getstring()), std::free);
  EXPECT_EQ(copy.get(), text.view());
  EXPECT_NE(copy.get(), text.getstring());
  EXPECT_EQ(std::setlocale(LC_ALL, nullptr), locale);
}
