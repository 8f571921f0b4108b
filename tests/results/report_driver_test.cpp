#include <tuple>
#include <vector>

#include "common/golden.h"
#include "common/pretend_tools.h"
#include "common/scratch.h"
#include "common/tool_run.h"

namespace {

using Strings = std::vector<std::string>;

const Strings kFullForm = {"-p",      "top.p2t", "-log",    "top.log", "-o",
                           "top.csv", "-pr",     "top.prf", "map.ncd", "out"};

class ReportTest : public ScratchTest {
 protected:
  ReportTest() {
    Write("map.ncd", "");
    Write("top.p2t", "-l 5 -n 2 -t 1 -s 1 -stopzero\n");
    Write("top.prf", "FREQUENCY NET \"clk_c\" 100.000000 MHz ; # w 3 p 4\n");
  }

  static Strings With(Strings more) {
    more.insert(more.end(), kFullForm.begin(), kFullForm.end());
    return more;
  }
  void Leave(const char* name, double mhz, long timing_score) const {
    PretendedRun{name, mhz, 4.0, timing_score}.LeaveIn(Path("out.dir"));
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
  Leave("5_1", 80, 20);
  Leave("5_2", 125, 10);
  Write("out.dir/5_2.dir/5_2.par", "newer report\n");  // Gathered, but only after the result was read.
  Leave("5_3", 200, 0);  // Was cancelled: takes no part, but its files are gathered.
  const int statuses[] = {0, -7, 65280, 65281, 0};
  for (std::size_t i = 0; i < 5; ++i) run.record.seeds.at(i).status = statuses[i];
  EXPECT_EQ(vostrand_report(&run.record), 0);
  EXPECT_EQ(run.logger.err,
            "ERROR - vostrand: Unable to open twr file \"" + Path("out.dir/5_5.twr") + "\".\n");
  ExpectGolden(Log(run), "report.log");
  ExpectGolden(Read("top.csv"), "report.csv");
  ExpectGolden(Read("out.par"), "report.par");
  EXPECT_EQ(Read("out.ncd"), "design of 5_2\n");
  EXPECT_TRUE(Exists("out.dir/5_3.ncd") && !Exists("out.dir/5_1.dir"));
}

TEST_F(ReportTest, WhoIsPromoted) {
  const struct {
    const char* options;
    Strings switches;
    int status;
    bool files;  // The report's file and the summary can be written.
    const char* promoted;
  } cases[] = {
      {"-n 3", {}, 0, true, "design of 5_2\n"},            // By performance score,
      {"-n 3", {"-dissorv"}, 0, true, "design of 5_3\n"},  // by place-and-route result,
      {"-n 3", {}, 0, false, "design of 5_1\n"},           // or the first of the plan.
      {"-n 3", {}, 65280, true, "older"},
      {"-t 1", {"-dissorv"}, 3, true, "older"},
  };
  std::string logs;
  for (const auto& c : cases) {
    Write("top.p2t", c.options);
    Write("out.ncd", "older");
    for (const char* const name : {"top.csv", "out.par"}) {
      std::filesystem::remove_all(Path(name));
      if (!c.files) Write(std::string(name) + "/inside", "");
    }
    ToolRun run(Root());
    ASSERT_EQ(run.Plan(With(c.switches)), 0);
    Leave("5_1", 100, 15);
    Leave("5_2", 125, 20);
    Leave("5_3", 80, 10);
    for (auto& seed : run.record.seeds) seed.status = c.status;
    EXPECT_EQ(vostrand_report(&run.record), 0);
    EXPECT_EQ(Read("out.ncd"), c.promoted);
    EXPECT_EQ(Exists("out.par"), run.Info().multiRun);
    EXPECT_EQ(run.logger.out.ends_with("Unable to write report file \"" + Path("top.csv") + "\".\n" +
                                       "Unable to write summary par file \"" + Path("out.par") + "\".\n"),
              !c.files);
    if (c.status != 0 || run.Info().noTiming) logs += Log(run);
  }
  ExpectGolden(logs, "report_without_scores.log");
}

TEST_F(ReportTest, WeightsComeFromTheFirstFileThatHasSome) {
  const std::string missing =
      "ERROR - vostrand: Unable to open preference file \"" + Path("top.prf") + "\".\n";
  const std::string seven = "PERIOD A ; # w 7\n", three = "PERIOD A ; # w 3\n", none = "PERIOD A ;\n";
  const std::tuple<std::string, std::string, float> cases[] = {// An empty text: no such file.
                                                               {seven, three, 7},
                                                               {seven, "", 7},
                                                               {none, three, 3},
                                                               {none, "", 0},
                                                               {"", three, 3}};
  Write("top.p2t", "-n 0\n");
  for (const auto& [trace, preferences, weight] : cases) {
    SCOPED_TRACE(trace + "/" + preferences);
    for (const char* const name : {"trace.prf", "top.prf"}) std::filesystem::remove(Path(name));
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

TEST_F(ReportTest, WhatEarlierPlansLeft) {
  ToolRun run(Root());
  ASSERT_EQ(run.Plan(kFullForm), 0);
  ASSERT_EQ(run.Plan(kFullForm), 0);
  EXPECT_EQ(vostrand_report(&run.record), 0);
  EXPECT_TRUE(run.logger.err.ends_with("vostrand: Unable to open twr file \"\".\n"));
  std::filesystem::remove(Path("out.par"));
  Strings refused = kFullForm;
  refused.back() = "out.dir";
  EXPECT_EQ(run.Plan(refused), 3);
  EXPECT_EQ(vostrand_report(&run.record), 0);
  EXPECT_FALSE(Exists("out.par")) << "the earlier plans' runs are not the refused one's";
  vostrand_exit(0, &run.record);
  EXPECT_EQ(vostrand_report(&run.record), 1);
}

}  // namespace
