#include <tuple>
#include <vector>

#include "common/golden.h"
#include "common/scratch.h"
#include "common/tool_run.h"
#include "results/par_report.h"

namespace {

using Strings = std::vector<std::string>;

const Strings kFullForm = {"-p",      "top.p2t", "-log",    "top.log", "-o",
                           "top.csv", "-pr",     "top.prf", "map.ncd", "out"};

class ReportTest : public ScratchTest {
 protected:
  ReportTest() {
    Write("map.ncd", "");
    Write("top.p2t", "-l 5 -n 2 -t 1 -s 1 -stopzero\n");
    Write("top.prf", "FREQUENCY NET \"clk\" 100.000000 MHz ; # w 3 p 4\n");
  }

  static Strings With(Strings more) {
    more.insert(more.end(), kFullForm.begin(), kFullForm.end());
    return more;
  }
  // What a run leaves behind; `actual` is its achieved frequency, "%11s" of it.
  void Leave(const std::string& name, const std::string& actual, const std::string& score) const {
    const std::string blank = std::string(40, ' ') + "|             |             |\n";
    const std::string rule = std::string(75, '-') + "\n";
    Write("out.dir/" + name + ".dir/" + name + ".ncd", "design " + name);
    Write("out.dir/" + name + ".par", ParReport(ParRow(name, score)));
    Write("out.dir/" + name + ".twr",
          "Preference                              |   Constraint|       Actual|Levels\n" + rule + blank +
              "FREQUENCY NET \"clk\" 100.000000 MHz ;    |  100.000 MHz|" + actual + " MHz|     4\n" + blank +
              "INPUT_SETUP PORT \"a\" 5.000 ns ;         |     5.000 ns|            -|     0\n" + blank +
              rule + "Timing Score: " + score + "\n");
  }
  std::string Log(ToolRun& run) {
    vostrand_exit(0, &run.record);
    return Read("top.log");
  }
};

TEST_F(ReportTest, SeveralRuns) {
  Write("top.p2t", "-l 5 -n 5 -t 1 -s 1 -stopzero\n");
  ToolRun run(Root());
  ASSERT_EQ(run.Plan(kFullForm), 0);
  Leave("5_1", "   80.000", "20");
  Leave("5_2", "  125.000", "10");
  Write("out.dir/5_2.dir/5_2.par", "newer report\n");  // Gathered, but only after the result was read.
  Leave("5_3", "  200.000", "0");  // Was cancelled: takes no part, but its files are gathered.
  const int statuses[] = {0, -7, 65280, 65281, 0};
  for (std::size_t i = 0; i < 5; ++i) run.record.seeds.at(i).status = statuses[i];
  run.logger.out.clear();
  EXPECT_EQ(vostrand_report(&run.record), 0);
  EXPECT_EQ(run.logger.out, "Total PSScore:    -5.000\nTotal PSScore:    11.000\nTotal PSScore:    11.000\n");
  EXPECT_EQ(run.logger.err,
            "ERROR - vostrand: Unable to open twr file \"" + Path("out.dir/5_5.twr") + "\".\n");
  ExpectGolden(Log(run), "report.log");
  ExpectGolden(Read("top.csv"), "report.csv");
  const std::string summary = Read("out.par");
  EXPECT_LT(summary.find(ParRow("5_2", "10")), summary.find(ParRow("5_1", "20")));
  EXPECT_EQ(summary.find("5_3"), std::string::npos);
  EXPECT_TRUE(summary.ends_with("par done!\nnewer report\n")) << summary;
  EXPECT_EQ(Read("out.ncd"), "design 5_2");
  EXPECT_EQ(Read("out.dir/5_3.ncd"), "design 5_3");
  EXPECT_FALSE(Exists("out.dir/5_1.dir"));
}

TEST_F(ReportTest, WhoIsPromoted) {
  const struct {
    const char* options;
    Strings switches;
    int status;
    bool report_file;
    const char* promoted;
  } cases[] = {
      {"-n 3", {}, 0, true, "design 5_2"},             // By performance score,
      {"-n 3", {"-dissorv"}, 0, false, "design 5_3"},  // by place-and-route result,
      {"-n 3", {}, 0, false, "design 5_1"},            // or the first of the plan.
      {"-n 3", {}, 65280, true, "older"},
      {"-t 1", {"-dissorv"}, 3, false, "older"},
  };
  std::string logs;
  for (const auto& c : cases) {
    Write("top.p2t", c.options);
    Write("out.ncd", "older");
    std::filesystem::remove_all(Path("top.csv"));
    ToolRun run(Root());
    ASSERT_EQ(run.Plan(With(c.switches)), 0);
    if (!c.report_file) Write("top.csv/inside", "");
    Leave("5_1", "  100.000", "15");
    Leave("5_2", "  125.000", "20");
    Leave("5_3", "   80.000", "10");
    for (auto& seed : run.record.seeds) seed.status = c.status;
    std::filesystem::remove(Path("out.par"));
    run.logger.out.clear();
    EXPECT_EQ(vostrand_report(&run.record), 0);
    EXPECT_EQ(Read("out.ncd"), c.promoted);
    EXPECT_EQ(Exists("out.par"), run.Info().multiRun);
    const bool complains =
        run.logger.out.ends_with("Unable to write report file \"" + Path("top.csv") + "\".\n");
    EXPECT_EQ(complains, !c.report_file && !run.Info().noTiming);
    if (c.status != 0 || run.Info().noTiming) logs += Log(run);
  }
  ExpectGolden(logs, "report_without_scores.log");
}

TEST_F(ReportTest, WeightsComeFromTheFirstFileThatHasSome) {
  const std::string missing =
      "ERROR - vostrand: Unable to open preference file \"" + Path("top.prf") + "\".\n";
  const std::string seven = "PERIOD A ; # w 7\n", three = "PERIOD A ; # w 3\n", none = "PERIOD A ;\n";
  const std::tuple<std::string, std::string, float> cases[] = {
      // An empty text: no such file.
      {seven, three, 7}, {seven, "", 7}, {none, three, 3}, {none, "", 0}, {"", three, 3}, {"", "", 0}};
  Write("top.p2t", "-n 0\n");
  for (const auto& [trace, preferences, weight] : cases) {
    SCOPED_TRACE(trace + "/" + preferences);
    std::filesystem::remove(Path("trace.prf"));
    std::filesystem::remove(Path("top.prf"));
    if (!trace.empty()) Write("trace.prf", trace);
    if (!preferences.empty()) Write("top.prf", preferences);
    ToolRun run(Root());
    ASSERT_EQ(run.Plan(With({"-tpr", "trace.prf"})), 0);
    run.record.seeds.clear();
    EXPECT_EQ(vostrand_report(&run.record), 0);
    EXPECT_EQ(run.Info().weights["PERIODA"].weight, weight);
    EXPECT_EQ(run.logger.err, weight == 0 ? missing : "");
  }
}

TEST_F(ReportTest, ASecondPlanLeavesRunsWithoutATimingReport) {
  ToolRun run(Root());
  Write("top.p2t", "-n 99\n");
  ASSERT_EQ(run.Plan(kFullForm), 0);
  ASSERT_EQ(run.Plan(kFullForm), 0);
  ASSERT_EQ(run.record.seeds.size(), 198U);
  EXPECT_EQ(vostrand_report(&run.record), 0);
  EXPECT_TRUE(run.logger.err.ends_with("vostrand: Unable to open twr file \"\".\n"));
  EXPECT_NE(Read("top.csv").find("\n198,,0.000,0\n"), std::string::npos);
}

TEST_F(ReportTest, AfterHelpOrExitThereIsNothingToReport) {
  ToolRun run(Root());
  EXPECT_EQ(run.Plan({"-h", "a", "b"}), 0);
  run.logger.out.clear();
  EXPECT_EQ(vostrand_report(&run.record), 0);
  EXPECT_EQ(run.logger.err, "ERROR - vostrand: Unable to open preference file \"\".\n");
  EXPECT_EQ(run.logger.out, "Unable to write report file \"\".\n");
  vostrand_exit(0, &run.record);
  EXPECT_EQ(vostrand_report(&run.record), 1);
  EXPECT_EQ(vostrand_report(nullptr), 1);
}

}  // namespace
