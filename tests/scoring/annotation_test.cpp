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

// What the two expressions that define the form make of a statement.
std::optional<Annotation> Matched(const std::string& text) {
  const std::string form =
      "^[ \t]*([PERIOD|FREQUENCY|INPUT_SETUP|CLOCK_TO_OUT][^;]*);[ \t]*#[ \t]*([wp])[ \t]+([0-9\\.]+)[ \t]*"
      "([ \t]+([wp])[ \t]+([0-9\\.]+))?";
  static UT_REGEXP bare, with_text_behind;
  static const bool valid =
      bare.compile((form + "$").c_str()) && with_text_behind.compile((form + "[ \t].*$").c_str());
  EXPECT_TRUE(valid);
  UT_STRKEYS keys = bare.match(text, 0);
  if (keys.count == 0) keys = with_text_behind.match(text, 0);
  if (keys.count == 0) return std::nullopt;
  const auto group = [&](int n) {
    return std::string_view(text).substr(keys.keys[n].position, keys.keys[n].length);
  };
  Annotation matched = {group(1), {}, {}};
  if (keys.count == 7) (group(5) == "w" ? matched.weight : matched.penalty) = group(6);
  (group(2) == "w" ? matched.weight : matched.penalty) = group(3);
  return matched;
}

}  // namespace

TEST(Annotation, ReadsWhatTwoExpressionsMatch) {
  std::mt19937 random(1);
  const auto below = [&](std::size_t n) { return random() % n; };
  const std::string_view set = "PZ \t;#wp07.\\\"\b\n\xe9";
  int read = 0;
  for (int i = 0; i < 50'000; ++i) {
    std::string text = below(2) ? " PERIOD A ;\t# w 2\t p .5.\\1 x" : "TRACE;#p  2 \tw 3";
    // A statement of the form with up to four characters put in, replaced or taken out, and its end now and
    // then.
    for (std::size_t changes = below(5); changes > 0; --changes)
      text.replace(below(text.size()), below(2), below(2), set[below(set.size())]);
    if (below(4) == 0) text.resize(below(text.size()));
    const std::optional<Annotation> annotation = orlo::vostrand_lib::ReadAnnotation(text);
    ASSERT_EQ(Shown(annotation), Shown(Matched(text))) << testing::PrintToString(text);
    read += annotation.has_value();
  }
  EXPECT_TRUE(read > 10'000 && read < 40'000) << read << ": the comparison says little";
}
