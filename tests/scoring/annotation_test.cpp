#include "scoring/annotation.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "ut/regexp.h"

namespace {

using orlo::vostrand_lib::Annotation;

std::string Shown(const std::optional<Annotation>& read) {
  if (!read) return "none";
  return std::string(read->preference) + "|" + std::string(read->weight.value_or("-")) + "|" +
         std::string(read->penalty.value_or("-"));
}

TEST(Annotation, ReadsItsForm) {
  using orlo::vostrand_lib::ReadAnnotation;
  EXPECT_EQ(Shown(ReadAnnotation("PERIOD A ; # w 2 p 3")), "PERIOD A |2|3");
  EXPECT_EQ(Shown(ReadAnnotation("TRACE;#p\t2\tw .5.\\1")), "TRACE|.5.\\1|2");
  EXPECT_EQ(Shown(ReadAnnotation("P; # w 2 w 5")), "P|2|-");
  EXPECT_EQ(Shown(ReadAnnotation("P # B ;# p 2 w 3x ;")), "P # B |-|2");
  for (const char* const none : {"P; # w 2;", "P; # w2", "P; # w 2x", "P; ; # w 2", "WIDTH A ; # w 2", ""})
    EXPECT_EQ(Shown(ReadAnnotation(none)), "none") << none;
}

// A statement near the form: its slots in order, each now and then left out, led by something else or cut
// off.
std::string RandomStatement(std::mt19937& random) {
  const auto one_of = [&](std::string_view set) { return set[random() % set.size()]; };
  const auto any = [&] { return one_of("PF|_xZW \t;#wp07.\\-\"\r\b\n\xe9\xff"); };
  std::string statement;
  for (const char slot : std::string_view("bPt;b#bwBnbwBnb")) {
    if (random() % 24 == 0) statement += any();
    if (random() % 40 == 0) continue;
    if (slot == 'B') statement += one_of(" \t");
    if (slot == 'b' || slot == 'B') statement.append(random() % 3, one_of(" \t"));
    if (slot == 'P') statement += one_of("PERIODFQUNCY_TSLK|");
    if (slot == 't')
      while (random() % 3 != 0) statement += any();
    if (slot == 'w') statement += one_of("wp");
    if (slot == 'n') statement += one_of("9.\\");
    if (slot == ';' || slot == '#') statement += slot;
  }
  while (random() % 3 == 0) statement += any();
  return random() % 8 == 0 ? statement.substr(0, random() % (statement.size() + 1)) : statement;
}

TEST(Annotation, ReadsWhatTwoExpressionsMatch) {
  const std::string form =
      "^[ \t]*([PERIOD|FREQUENCY|INPUT_SETUP|CLOCK_TO_OUT][^;]*);[ \t]*#[ \t]*([wp])[ \t]+([0-9\\.]+)[ \t]*"
      "([ \t]+([wp])[ \t]+([0-9\\.]+))?";
  UT_REGEXP bare;
  UT_REGEXP with_text_behind;
  ASSERT_TRUE(bare.compile((form + "$").c_str()) && with_text_behind.compile((form + "[ \t].*$").c_str()));
  std::mt19937 random(1);
  constexpr int rounds = 200'000;
  int one = 0;
  int both = 0;
  for (int i = 0; i < rounds; ++i) {
    const std::string text = RandomStatement(random);
    UT_STRKEYS keys = bare.match(text, 0);
    if (keys.count == 0) keys = with_text_behind.match(text, 0);
    const auto group = [&](int n) {
      return std::string_view(text).substr(keys.keys[n].position, keys.keys[n].length);
    };
    std::optional<Annotation> expected;
    if (keys.count > 0) {
      expected.emplace(Annotation{group(1), {}, {}});
      if (keys.count == 7) (group(5) == "w" ? expected->weight : expected->penalty) = group(6);
      (group(2) == "w" ? expected->weight : expected->penalty) = group(3);
      ++(expected->weight && expected->penalty ? both : one);
    }
    ASSERT_EQ(Shown(orlo::vostrand_lib::ReadAnnotation(text)), Shown(expected))
        << testing::PrintToString(text);
  }
  // Every outcome came up in numbers, or the comparison would say little.
  EXPECT_GT(both, rounds / 16);
  EXPECT_GT(one, rounds / 8);
  EXPECT_GT(rounds - one - both, rounds / 8);
}

}  // namespace
