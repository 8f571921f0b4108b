#include "ut/regexp.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>

TEST(Regexp, KeysReachToTheLastGroupThatTookPart) {
  const struct {
    const char *pattern, *text;
    unsigned long start;
    int count, key;
    const char* value;
  } cases[] = {{"^([^;]*);[^;]*$", "A;B", 0, 2, 1, "A"},
               {"^([^;]*);[^;]*$", "AB", 0, 0, 1, ""},
               {"(a)(b)(c)((d)(e))?", "xabc", 0, 4, 4, ""},
               {"(a)(b)(c)((d)(e))?", "abcde", 0, 7, 6, "e"},
               {"(x)?(y)", "y", 0, 3, 1, ""},
               {"b+", "abba abbba", 4, 1, 0, "bbb"},
               {"^a", "aa", 1, 0, 0, ""},
               {"a", "a", 2, 0, 0, ""},
               {"^$", "", 0, 1, 0, ""},
               {"[0-9\\.]+", "a1\\.5", 0, 1, 0, "1\\.5"},  // No escapes inside brackets.
               {"(", "(", 0, 0, 0, ""},                    // No valid expression.
               {"((((((((((((((((((a))))))))))))))))))", "a", 0, UT_STRKEYS::capacity, 15, "a"}};
  UT_REGEXP expression;
  EXPECT_EQ(UT_STROBJ().match_reg_exp(expression, 0).count, 0) << "nothing compiled";
  for (const auto& c : cases) {
    expression.compile(c.pattern);
    const UT_STROBJ text(c.text);
    const UT_STRKEYS keys = text.match_reg_exp(expression, c.start);
    EXPECT_EQ(keys.count, c.count) << c.pattern << " on " << c.text;
    EXPECT_STREQ(text.get_key(keys, c.key).getstring(), c.value) << c.pattern << " on " << c.text;
    EXPECT_TRUE(text.get_key(keys, -1).empty() && text.get_key(keys, 99).empty());
  }
  expression.compile("^([^;]*);$");
  const UT_STROBJ part = UT_STROBJ("xx;ab;yy").cut(0, 3).left(3);  // More text behind its last character.
  EXPECT_STREQ(part.get_key(part.match_reg_exp(expression, 0), 1).getstring(), "ab");
  const UT_STROBJ statement(std::string_view(std::string(200000, 'n') + ";"));
  EXPECT_EQ(statement.get_key(statement.match_reg_exp(expression, 0), 1).size(), 200000U);
}

TEST(Regexp, MatchesBytesWhereTheHostMatchesCharacters) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  ASSERT_TRUE(std::setlocale(LC_ALL, "C.UTF-8"));
  UT_REGEXP expression;
  expression.compile("^([^;]*);.$");
  const UT_STROBJ latin("n\xe4t;\xff"), utf8("a;\xc3\xa4");
  EXPECT_EQ(latin.match_reg_exp(expression, 0).count, 2);
  EXPECT_EQ(utf8.match_reg_exp(expression, 0).count, 0);  // One character, but two bytes.
  std::setlocale(LC_ALL, before.c_str());
}
