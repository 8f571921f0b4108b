#include "scoring/performance_score.h"

#include <vector>

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
               // The band ends at 0.001, which the nearest 32-bit number exceeds.
               {0.001F, 0, {2000, 1}, "|  2000.000|        2.000\nact,        2.000,2.000"},
               {0, 0.001F, {1, 2000}, "| -2000.000|       -2.000\nact,       -2.000,-2.000"},
               {10, 12, {3, 0}, "|    -0.000|       -0.000\nact,       -0.000,0.000"}};
  for (const auto& c : cases) {
    ResultsMap results = {{"PERIODA", Record(c.constraint, c.actual)}};
    const PSScoreInfo run = Scored(results, {{"PERIODA", c.own}, {"PERIOD", {70, 70}}});
    EXPECT_STREQ((results["PERIODA"].reportRows + run.csvText).getstring(), c.shown);
  }
}

TEST_F(PerformanceScore, OrdersRunsLikeAStableSort) {
  const std::pair<float, int> runs[] = {
      // Performance and timing score; -2: no result. Timing is unsigned.
      {1, -2}, {2, -1}, {1, 5}, {2, 7}, {-3, 0}, {1, -1}, {2, 7}, {1, 5}, {1, -2}, {9, 9}};
  PSScoreInfo scores[10];
  ParScoreVal results[10];
  for (int i = 0; i < 10; ++i) {
    scores[i].score = runs[i].first;
    results[i].score = runs[i].second;
    results[i].valid = runs[i].second != -2;
  }
  std::vector<int> order = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
  sortscore(scores, results, 9, order.data());  // What is behind the count stays.
  EXPECT_EQ(order, (std::vector<int>{3, 6, 1, 2, 7, 5, 0, 8, 4, 9}));
  sortscore(results, 9, order.data());  // Without the performance scores.
  EXPECT_EQ(order, (std::vector<int>{4, 2, 7, 3, 6, 1, 5, 0, 8, 9}));
}

}  // namespace
}  // namespace orlo::vostrand_lib
