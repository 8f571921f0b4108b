#include "scoring/performance_score.h"

#include <algorithm>
#include <numeric>
#include <random>
#include <tuple>

#include "common/scratch.h"

namespace orlo::vostrand_lib {
namespace {

class PerformanceScore : public ScratchTest {};

// Scored with a report that is missing, which leaves the map's records as they are.
PSScoreInfo Scored(ResultsMap& results, const WeightsMap& weights) {
  return GetPSScore("/nonexistent/a.twr", results, weights);
}

PrfResultVal Record(float constraint, float actual) {
  return {"PERIOD", "", "", "", "act", "(ns)", constraint, actual};
}

TEST_F(PerformanceScore, MultipliesSlackByWeightOrPenalty) {
  const struct {
    float constraint, actual;
    WPValue own;
    const char* shown;
  } cases[] = {{10, 8, {3, 4}, "|     3.000|        6.000\nact,        6.000,6.000"},
               {10, 12, {3, 4}, "|    -4.000|       -8.000\nact,       -8.000,-8.000"},
               {10, 10.0005F, {3, 4}, "|     0.000|        0.000\nact,        0.000,0.000"},
               {10, 9.9995F, {3, 4}, "|     0.000|        0.000\nact,        0.000,0.000"},
               // The band ends at 0.001, which the nearest 32-bit number exceeds.
               {0.001F, 0, {2000, 1}, "|  2000.000|        2.000\nact,        2.000,2.000"},
               {0, 0.001F, {1, 2000}, "| -2000.000|       -2.000\nact,       -2.000,-2.000"},
               {10, 9.999F, {2000, 1}, "|  2000.000|        2.001\nact,        2.001,2.001"},
               {10, 12, {3, 0}, "|    -0.000|       -0.000\nact,       -0.000,0.000"},
               {10, 1e8F, {3, 4}, "|    -4.000|-399999968.000\nact,-399999968.000,-399999968.000"}};
  for (const auto& c : cases) {
    ResultsMap results = {{"PERIODA", Record(c.constraint, c.actual)}};
    const PSScoreInfo run = Scored(results, {{"PERIODA", c.own}, {"PERIOD", {70, 70}}});
    EXPECT_STREQ((results["PERIODA"].reportRows + run.csvText).getstring(), c.shown);
    EXPECT_STREQ(run.timingScore.getstring(), "0");
  }
}

TEST_F(PerformanceScore, AddsUpIn32BitsInTheOrderOfTheKeys) {
  ResultsMap results = {
      {"B", Record(1, 0)}, {"A", Record(16777216, 0)}, {"C", Record(1, 0)}, {"D", Record(0, 2)}};
  results["D"].type = "FREQUENCY";
  EXPECT_STREQ(Scored(results, {{"PERIOD", {1, 1}}, {"FREQUENCY", {1, 3}}}).csvText.getstring(),
               "act, 16777216.000,act,        1.000,act,        1.000,act,       -6.000,16777210.000");
  results.clear();
  EXPECT_STREQ(Scored(results, {}).csvText.getstring(), "0.000");
}

TEST_F(PerformanceScore, CountsARecordThatTheReportNoLongerLists) {
  const std::string row_a = "PERIOD A;                               |    10.000 ns|     8.000 ns|     4";
  const std::string report = Write(
      "a.twr",
      "Preference                              |   Constraint|       Actual|Levels\n--\n" + row_a +
          "\n                                        |             |             |\n--\nScore:\t 12 \b\n");
  ResultsMap results = {{"PERIODA", Record(1, 2)}, {"PERIODB", Record(10, 11)}};
  for (const float penalty : {5.0F, 7.0F}) {
    const PSScoreInfo run = GetPSScore(report.c_str(), results, {{"PERIOD", {1, penalty}}});
    EXPECT_STREQ(run.timingScore.getstring(), "12");
    EXPECT_EQ(run.score, 2 - penalty);
  }
  EXPECT_EQ(results["PERIODA"].reportRows.view(), row_a + "|     1.000|        2.000\n");
  EXPECT_STREQ(results["PERIODB"].reportRows.getstring(),
               "|    -5.000|       -5.000\n|    -7.000|       -7.000\n");
}

TEST_F(PerformanceScore, OrdersRunsLikeAStableSort) {
  std::mt19937 random(7);
  for (int round = 0; round < 300; ++round) {
    constexpr int runs = 30;
    PSScoreInfo scores[runs];
    ParScoreVal results[runs];
    std::tuple<float, bool, std::uint64_t> keys[runs];  // Ascending in rank.
    for (int i = 0; i < runs; ++i) {
      const std::int64_t timing =
          static_cast<std::int64_t>(random() % 4) - 1;  // Unsigned, -1 is the greatest.
      scores[i].score = static_cast<float>(random() % 4) - 2.0F;
      results[i].score = timing;
      results[i].valid = random() % 3 != 0;
      keys[i] = {-scores[i].score, !results[i].valid,
                 results[i].valid ? static_cast<std::uint64_t>(timing) : 0};
    }
    std::vector<int> order(runs);
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), random);
    const int count = static_cast<int>(random() % (runs + 1));  // What is behind the count stays.
    std::vector<int> expected = order;
    std::stable_sort(expected.begin(), expected.begin() + count,
                     [&](int a, int b) { return keys[a] < keys[b]; });
    sortscore(scores, results, count, order.data());
    ASSERT_EQ(order, expected);
  }
}

TEST_F(PerformanceScore, MaximumIsTheFirstOfEquals) {
  PSScoreInfo scores[] = {{-5, "", ""}, {-2, "", ""}, {-2, "", ""}, {3, "", ""}};
  const int best[] = {0, 0, 1, 1, 3};
  for (int count = 0; count <= 4; ++count) EXPECT_EQ(FindMaxScore(scores, count), best[count]);
}

}  // namespace
}  // namespace orlo::vostrand_lib
