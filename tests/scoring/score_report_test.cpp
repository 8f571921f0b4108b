#include "scoring/score_report.h"

#include "common/golden.h"
#include "common/scratch.h"
#include "common/tool_run.h"
#include "context/thread_context.h"

namespace orlo::vostrand_lib {
namespace {

class ScoreReport : public ScratchTest {
 protected:
  ScoreReport() {
    for (const char* const label : {"5_1", "5_2", "5_3", "sub,dir/5_4%s"}) labels_.add(label);
    results_[3].valid = true;
  }
  // Returns the order afterwards.
  std::string Output(const std::string& path, int count) {
    int order[] = {0, 1, 2, 3};
    UT_STROBJ report(path.c_str());
    OutputReport(scores_, results_, count, order, report, labels_, prf_results_, weights_, 3);
    std::string shown;
    for (const int run : order) shown += std::to_string(run);
    return shown;
  }

  // Best first: 3 and 2, equal but for the place-and-route result; 1, which has no score; 0.
  PSScoreInfo scores_[4] = {
      {-2.5F, "12", "5_1,184.332,       -2.500,8.000,        0.000,-,        0.000,-2.500"},
      {0, "9", ""},
      {6, "0", "5_3,200.000,        6.000,8.000,        0.000,-,        0.000,6.000"},
      {6, "7, 8", "sub,dir/5_4%s,50,        1.000,8,        5.000,-,        0.000,6.000"}};
  ParScoreVal results_[4];
  DARRAY_UT_STROBJ labels_;
  const ResultsMap prf_results_ = {
      {"FREQUENCY\"c\"", {"FREQUENCY", "", "FREQUENCY  \"c\" ", "100.000 MHz", "184.332", "(MHz)"}},
      {"PERIOD\xe9", {"PERIOD", "", "PERIOD\t  \xe9 \t %d,5   ", "10.000 ns", "8.000", "(ns)"}},
      {"CLOCK_TO_OUT", {"CLOCK_TO_OUT", "", "CLOCK_TO_OUT", "", "-", ""}}};
  WeightsMap weights_ = {{"FREQUENCY\"c\"", {2, 1}}, {"PERIOD", {0.0625F, 1e6F}}};
};

TEST_F(ScoreReport, ListsPreferencesAndRunsBestFirst) {
  EXPECT_EQ(Output(Write("a.csv", std::string(5000, 'x')), 4), "3210");
  ExpectGolden(Read("a.csv"), "score_report.csv");
}

TEST_F(ScoreReport, WithoutFinishedRunsIsTheBannerAlone) {
  EXPECT_EQ(Output(Path("a.csv"), 0), "0123");
  EXPECT_EQ(Read("a.csv"), "---- Vostrand Report File ----\n");
}

TEST_F(ScoreReport, ThatCannotBeWrittenIsAStatusAndLeavesTheOrder) {
  ToolRun run(Root());
  StartRun(run.record);
  const std::string path = Path("missing/100%s.csv");
  EXPECT_EQ(Output(path, 4), "0123");
  EXPECT_EQ(run.logger.out + run.logger.err, "Unable to write report file \"" + path + "\".\n");
}

TEST_F(ScoreReport, NamesNoRunBeyondTheLabels) {
  labels_.a_resetnum(3);
  Output(Path("a.csv"), 4);
  EXPECT_TRUE(Read("a.csv").ends_with("-2.500,12\n\n is the best."));
}

}  // namespace
}  // namespace orlo::vostrand_lib
