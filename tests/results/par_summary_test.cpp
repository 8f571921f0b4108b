#include "results/par_summary.h"

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include "common/golden.h"
#include "common/scratch.h"
#include "common/tool_run.h"
#include "context/thread_context.h"
#include "results/par_ranking.h"
#include "results/par_report.h"

using namespace orlo::vostrand_lib;

namespace {

using ParSummaryTest = ScratchTest;

TEST_F(ParSummaryTest, WritesTheRowsInTheGivenOrder) {
  ParScoreVal results[3];
  results[0].line = ("  " + ParRow("5_1", "50%d")).c_str();
  results[2].line = ParRow("5_3", "0").c_str();
  int order[] = {2, 1, 0};
  const std::string path = Write("out.par", std::string(5000, 'x'));
  OutputParRpt(results, 3, order, path.c_str());
  ExpectGolden(Read("out.par"), "par_summary.par");

  ToolRun run(Root());
  StartRun(run.record);
  OutputParRpt(results, 3, order, Root().c_str());
  EXPECT_EQ(run.logger.out, "Unable to write summary par file \"" + Root() + "\".\n");
  EXPECT_EQ(run.logger.err, "");
}

TEST(ParRankingTest, OrdersAsAStableSortByUnsignedScore) {
  std::mt19937 random(1);
  for (int round = 0; round < 500; ++round) {
    std::vector<std::pair<bool, std::uint64_t>> keys(random() % 100);  // Without result; score.
    std::vector<ParScoreVal> results(keys.size());
    for (std::size_t i = 0; i < keys.size(); ++i) {
      const std::int64_t scores[] = {0, 1, 5, 99999999999, -1, -5};
      results[i].valid = random() % 4 != 0;
      results[i].score = scores[random() % std::size(scores)];
      keys[i] = {!results[i].valid, results[i].valid ? static_cast<std::uint64_t>(results[i].score) : 0};
    }
    std::vector<int> order(keys.size());
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), random);
    std::vector<int> expected = order;
    const auto key = [&](int i) { return keys[static_cast<std::size_t>(i)]; };
    std::stable_sort(expected.begin(), expected.end(), [&](int a, int b) { return key(a) < key(b); });
    sortscore(results.data(), static_cast<int>(order.size()), order.data());
    ASSERT_EQ(order, expected);
  }
}

}  // namespace
