#include "result/odds.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace vostrand;

static OddsReport Odds(std::size_t runs, std::size_t known, std::size_t met, std::vector<float> score = {}) {
  std::vector<Verdict> verdicts(runs);
  for (std::size_t i = 0; i < known; ++i) verdicts[i].met = i < met;
  for (std::size_t i = 0; i < score.size(); ++i) verdicts[i].score = score[i];
  return OddsOf(verdicts);
}

TEST(Odds, OfMeetingTimingHaveAUniformPrior) {
  EXPECT_TRUE(Odds(3, 0, 0, {1, 2}).chances.empty());
  for (const std::size_t known : {1u, 7u, 99u, 10000u}) {
    const OddsReport never = Odds(known + 2, known, 0), always = Odds(known, known, known);
    const double n = static_cast<double>(known);
    for (const OddsReport::Chance& chance : never.chances) {
      EXPECT_NEAR(chance.mean, chance.runs / (n + 1 + chance.runs), 1e-12);
      EXPECT_NEAR(chance.low, 1 - std::pow(0.975, chance.runs / (n + 1)), 1e-12);
      EXPECT_NEAR(chance.high, 1 - std::pow(0.025, chance.runs / (n + 1)), 1e-12);
    }
    EXPECT_NEAR(always.chances.at(3).low, 1 - std::pow(1 - std::pow(0.025, 1 / (n + 1)), 10), 1e-12);
    EXPECT_NEAR(Odds(known, known, 1).chances.front().mean, 2 / (n + 2), 1e-12);
  }
}

TEST(Odds, OfABetterScoreCountEveryDraw) {
  const std::vector<float> scores = {1.5f, -11.25f, 1.5f, -2, 0, -2, 4, HUGE_VALF, NAN};
  const OddsReport odds = Odds(9, 0, 0, scores);
  std::vector<double> sum(8), draws(8);
  for (unsigned set = 1; set < 1u << 7; ++set) {
    auto [best, n] = std::pair(-100.0f, std::size_t{0});
    for (std::size_t i = 0; i < 7; ++i)
      if (set >> i & 1) best = std::fmax(best, scores[i]), ++n;
    sum[n] += best, ++draws[n];
  }
  for (std::size_t n = 1; n <= 7; ++n) EXPECT_NEAR(odds.best.at(n - 1).score, sum[n] / draws[n], 1e-12) << n;
  EXPECT_NEAR(odds.gain, odds.best.back().score - odds.best[5].score, 1e-12);
  std::vector<float> many(10000, 0.1f);  // Equal but for a few: rounding must not undo what a run adds.
  many[0] = -1e6f, many[1] = 1;
  const OddsReport most = Odds(10000, 0, 0, many);
  for (std::size_t i = 1; i < most.best.size(); ++i) EXPECT_GT(most.best[i].score, most.best[i - 1].score);
  EXPECT_NEAR(most.best.back().score, 0.1 + 0.9 * 100 / 10000, 1e-6);  // Of 100 runs.
}

TEST(Odds, AreOneSentence) {
  EXPECT_EQ(Odds(0, 0, 0).Sentence(), "");
  EXPECT_EQ(Odds(1, 1, 1, {3}).Sentence(), "1 of 1 run met timing");
  EXPECT_EQ(Odds(12, 10, 5, {5, 5}).Sentence(),
            "5 of 10 runs met timing, 2 unknown; one more run is not expected to improve the best");
  const std::string start = "whether runs met timing is unknown; one more run improves the best by ";
  const float gains[] = {0.214f, 0.0996f, 0.0312f, 0.0012f, 0.0002f};
  const char* const texts[] = {"0.21", "0.10", "0.031", "0.0012", "less than 0.001"};
  for (std::size_t i = 0; i < 5; ++i)
    EXPECT_EQ(Odds(3, 0, 0, {0, 2 * gains[i]}).Sentence(), start + texts[i] + " on average");
}
