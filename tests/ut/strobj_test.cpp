#include "ut/strobj.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <random>
#include <string>

#include "ut/regexp.h"

TEST(Strobj, EdgesOfCutsSearchesAndOrder) {
  const UT_STROBJ abc("abc"), null(static_cast<const char*>(nullptr));
  EXPECT_STREQ(abc.left(2 - abc.size()).getstring(), "abc");  // A count that wrapped.
  EXPECT_STREQ((null + (UT_STROBJ("x") = nullptr) + UT_STROBJ("  ").trim_front(" ")).getstring(), "");
  EXPECT_EQ(abc.reverse_find_char('a', 0xffffffffUL), 0U);
  EXPECT_GT(UT_STROBJ("\xe4").strcmp("z"), 0);  // Unsigned bytes.
  EXPECT_TRUE(abc.left(1) < abc && UT_STROBJ("B") < abc && !(abc < abc) && abc.left(2).strcmp("ab") == 0);
}

TEST(Strobj, ExpressionsFindKeysFromAPositionOn) {
  UT_REGEXP pair;
  EXPECT_FALSE(pair.compile("(") || UT_STROBJ("(").match_reg_exp(pair, 0).count);
  ASSERT_TRUE(pair.compile("([a-z]+)(!)?=([0-9]*)"));
  const UT_STROBJ text("a=1 bc=23");
  const UT_STRKEYS keys = text.match_reg_exp(pair, 1);
  for (int n = -1; n < 5; ++n)
    EXPECT_STREQ(text.get_key(keys, n).getstring(), n == 0 ? "bc=23" : n == 1 ? "bc" : n == 3 ? "23" : "");
  EXPECT_EQ(text.match_reg_exp(pair, text.size() + 1).count, 0);
}

// The same random operations on strings, which share storage all the time, and on a model of them.
TEST(Strobj, BehavesAsAValueWhateverSharesItsStorage) {
  std::mt19937 random(20240229);
  const auto below = [&](std::size_t n) { return random() % n; };
  std::array<UT_STROBJ, 5> strings;
  std::array<std::string, 5> models;
  for (int step = 0; step < 8000; ++step) {
    UT_STROBJ& s = strings[below(5)];
    std::string& m = models[static_cast<std::size_t>(&s - strings.data())];
    const std::size_t other = below(5);
    const UT_STROBJ& s2 = strings[other];  // Often the same string.
    const std::string m2 = models[other], old = m;
    const bool shared = below(2);
    const UT_STROBJ copy = shared ? s : UT_STROBJ();
    const char* const asked = below(2) ? copy.getstring() : nullptr;
    const std::size_t pos = below(old.size() + 3), from = std::min(pos, old.size());
    const std::size_t n = below(8) ? below(old.size() + 3) : ~0UL - below(9);
    const char c = "ab -"[below(4)];
    const std::function<void()> operations[] = {
        [&] { s += s2, m += m2; },
        [&] { s += s.getstring() + from, m += old.substr(from); },
        [&] { s.append(s.view().substr(from)), m += old.substr(from); },
        [&] { s += c, m += c; },
        [&] { s = s.left(n), m = old.substr(0, n); },
        [&] { s = s.right(n), m = old.substr(old.size() - std::min(n, old.size())); },
        [&] { s = s.cut(pos, n), m.erase(from, n); },
        [&] { s.chop_before(pos), m = old.substr(from); },
        [&] { s = s.trim_front("a "), m.erase(0, m.find_first_not_of("a ")); },
        [&] { s = s.trim_back("b-"), m.erase(m.find_last_not_of("b-") + 1); },
        [&] { s = s2, m = m2; },
        [&] { s = s2 + s + c + "ab-", m = m2 + old + c + "ab-"; },
        [&] { s.str_format("%s%c", s.getstring(), c), m += c; },
        [&] { EXPECT_EQ(s.find(s2.left(2), pos), int(std::min(m.find(m2.substr(0, 2), from), m.size()))); },
        [&] { EXPECT_EQ(s.find_char(c, pos), std::min(m.find(c, pos), m.size())); },
        [&] { EXPECT_EQ(s.reverse_find_char(c, pos), std::min(m.rfind(c, pos), m.size())); }};
    const std::size_t operation = below(std::size(operations));
    SCOPED_TRACE("step " + std::to_string(step) + ", operation " + std::to_string(operation));
    operations[operation]();
    if (m.size() > 300) s = s.left(40), m.resize(40);
    ASSERT_EQ(copy.view(), shared ? old : "") << "its copy";
    ASSERT_STREQ(asked ? asked : "", asked && shared ? old.c_str() : "") << "its copy's text, taken before";
    for (std::size_t i = 0; i < strings.size(); ++i) ASSERT_EQ(strings[i].view(), models[i]);
    if (below(2)) continue;  // Asking for the text may change where it lies, so do not always ask.
    ASSERT_STREQ(s.getstring(1), m.c_str());
  }
}
