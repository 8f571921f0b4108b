#include "results/par_result.h"

#include <thread>

#include "common/scratch.h"
#include "common/tool_run.h"
#include "context/thread_context.h"
#include "results/stop_at_zero.h"

using namespace orlo::vostrand_lib;

namespace {

constexpr std::int64_t kLost = -77;  // Expected of a file in which no row counts.

std::string Row(const std::string& name, const std::string& score, const char* status = "Complete") {
  return name + "   *   0   0.150   " + score + "   0.286   0   02:13   " + status;
}

using ParResultTest = ScratchTest;

TEST_F(ParResultTest, ReadsTheFirstRowUnderTheHeadings) {
  const auto lines = [](int n) { return par_table_headings[n] + std::string("\n"); };
  const std::string h1 = lines(0), h2 = lines(1), h3 = lines(2), all = h1 + h2 + h3, met = Row("5_1", "0");
  const std::string blanks(300, ' ');
  const struct {
    const char* what;
    std::string file;
    std::int64_t score;
    std::string line;
  } cases[] = {
      {"missed", "x\n\n" + all + Row("5_1", "1234.9x"), 1234, Row("5_1", "1234.9x")},
      {"complete without a score", all + Row("5_1", "-"), 0, Row("5_1", "-")},
      {"incomplete without a score", all + Row("5_1", "-", "Partial"), -1, Row("5_1", "-", "Partial")},
      {"all white space separates", all + "\t5_1\v*\f0 1 7\t1 0 1 Done", 7, "\t5_1\v*\f0 1 7\t1 0 1 Done"},
      {"indented, CR LF", " \t" + h1 + "\b" + h2 + lines(2) + "  " + met + "\r\n", 0, "  " + met},
      {"long row", all + met + blanks, 0, (met + blanks).substr(0, 254)},
      {"first heading twice", h1 + all + met, kLost, ""},
      {"first heading twice, then a whole table", h1 + h1 + all + met, 0, met},
      {"blank line among the headings", h1 + h2 + "\n" + h3 + met, kLost, ""},
      {"blank line under the headings", all + "\n" + met, kLost, ""},
      {"name goes on", all + Row("5_10", "0"), kLost, ""},
      {"design not saved", all + "5_1 - 0 0.150 0 0.286 0 02:13 Complete", kLost, ""},
      {"eight tokens", all + "5_1 * 0 0.150 0 0.286 0 Complete", kLost, ""},
  };
  for (const auto& [what, file, score, line] : cases) {
    ParScoreVal result;
    result.name = "5_1";
    result.score = kLost;
    EXPECT_EQ(GetParResult(Write("5_1.par", file).c_str(), result), score != kLost) << what;
    EXPECT_TRUE(result.valid == (score != kLost) && result.score == score) << what << result.score;
    EXPECT_EQ(result.line.view(), line) << what;
  }
}

TEST_F(ParResultTest, AScoreOfZeroStopsOnlyWhereAskedTo) {
  const std::string headings = std::string(par_table_headings[0]) + "\n" + par_table_headings[1] + "\n";
  Write("out/5_1.par", headings + par_table_headings[2] + "\n" + Row("5_1", "0"));
  for (const auto& [several, wanted] : {std::pair(true, true), {true, false}, {false, true}}) {
    ToolRun run(Root());
    MParRunInfo& info = StartRun(run.record).runInfo;
    info.multiRun = several;
    info.stopAtZero = wanted;
    info.outputDir = "out";
    // The host may call on any thread. The second run has no result, which takes nothing back.
    std::thread([&] { EXPECT_EQ(CheckStopAtZero("5_1", &run.record), 0); }).join();
    EXPECT_EQ(CheckStopAtZero("5_9", &run.record), 0);
    EXPECT_EQ(run.record.stopRequested, several && wanted);
  }
}

}  // namespace
