#include "results/stop_at_zero.h"

#include <thread>

#include "common/scratch.h"
#include "common/tool_run.h"
#include "context/thread_context.h"
#include "results/par_report.h"

using namespace orlo::vostrand_lib;

namespace {

using StopAtZeroTest = ScratchTest;

TEST_F(StopAtZeroTest, StopsAtAScoreOfZeroWhereAskedTo) {
  const struct {
    bool several, wanted;
    std::string row;
    bool stops;
  } cases[] = {
      {true, true, ParRow("5_1", "0"), true},   {true, true, ParRow("5_1", "-"), true},
      {true, true, ParRow("5_1", "1"), false},  {true, true, ParRow("5_1", "-", "Partial"), false},
      {true, true, ParRow("5_2", "0"), false},  {true, false, ParRow("5_1", "0"), false},
      {false, true, ParRow("5_1", "0"), false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.several << c.wanted << " " << c.row);
    ToolRun run(Root());
    MParRunInfo& info = StartRun(run.record).runInfo;
    info.multiRun = c.several;
    info.stopAtZero = c.wanted;
    info.outputDir = "top.dir";
    Write("top.dir/5_1.par", ParReport(c.row));
    // The host may call on any thread.
    std::thread([&] { EXPECT_EQ(CheckStopAtZero("5_1", &run.record), 0); }).join();
    EXPECT_EQ(run.record.stopRequested, c.stops);
    EXPECT_EQ(CheckStopAtZero("5_9", &run.record), 0);  // Has no result, which takes nothing back.
    EXPECT_EQ(run.record.stopRequested, c.stops);
    EXPECT_EQ(run.logger.out + run.logger.err, "");
  }
  orlo::kelpn::mparrunner::VOSTRAND_CONTEXT without_run;
  EXPECT_EQ(CheckStopAtZero("5_1", nullptr), 1);
  EXPECT_EQ(CheckStopAtZero("5_1", &without_run), 1);
}

}  // namespace
