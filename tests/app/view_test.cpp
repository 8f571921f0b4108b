// What vostrand-view says about results and journals.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include "common/scratch.h"
#include "view/explain.h"
#include "view/show.h"
#include "view/status.h"

using namespace vostrand;

// Slacks by preference, each of weight 1 and penalty 10; a preference that has 9 is unknown to the run.
static RunResult& Add(SweepResult& result, int status, const std::string& name,
                      const std::vector<float>& slacks) {
  RunResult& run = result.runs.emplace_back();
  run.record.name = name;
  run.record.status = status;
  run.has_row = status == 0;
  if (run.has_row) result.order.push_back(result.runs.size() - 1);
  run.score = 0.0F;
  for (std::size_t i = 0; i < slacks.size(); ++i) {
    if (slacks[i] == 9) continue;
    PreferenceScore& score = run.preferences.emplace_back();
    score.preference = i;
    score.slack_ns = slacks[i];
    score.factor = slacks[i] > 0.001F ? 1 : slacks[i] < -0.001F ? -10 : 0;
    score.contribution = slacks[i] * (score.factor < 0 ? 10 : score.factor);
    *run.score += score.contribution;
  }
  return run;
}

static SweepResult Result() {
  SweepResult result;
  for (const char* name : {"FREQUENCY NET \"clk\"", "PERIOD\x1b[2J\nPORT", "UNUSED", "OFFSET", "SETUP"})
    result.preferences.emplace_back().name = name;
  Add(result, 0, "5_1", {0.25F, -0.5F, 9, 9, 0.0004F});
  RunResult& second = Add(result, 0, "5_2", {0.5F, -1, 9, 0.125F, 0});
  second.timing_score = 318;
  second.preferences[1].carried_over = true;
  Add(result, 9, "6\n_1", {}).record.tries.emplace_back().outcome.message = "no\x07licence";
  Add(result, cancelled_status, "6_2", {});
  return Printable(result);
}

static std::string Explain(const SweepResult& result, const std::vector<std::string>& names = {},
                           std::size_t width = 0) {
  std::vector<std::size_t> runs;
  const std::string why = ChooseRuns(result, names, runs);
  return why.empty() ? ExplainText(result, runs, width) : why;
}

TEST(View, ExplainsWhyARunBeatsAnother) {
  const std::string text = Explain(Result(), {"5_2", "5_1"});
  EXPECT_EQ(text, R"(5_1 beats 5_2 by 4.625: PERIOD [2J PORT gives 5.000, the others take 0.375 back.

difference      5_1   slack     by      5_2   slack     by  preference
     5.000   -5.000  -0.500    p10  -10.000  -1.000*   p10  PERIOD [2J PORT
    -0.250    0.250   0.250     w1    0.500   0.500     w1  FREQUENCY NET "clk"
    -0.125        -       -      -    0.125   0.125     w1  OFFSET
     0.000    0.000   0.000      0    0.000   0.000      0  SETUP
     4.625   -4.750                  -9.375                 total

Under a run's name: what the preference adds to its score, the slack (ns) times the
weight (w) or, if negative, the penalty (p); nothing (0) within 0.001 ns.
* Not in the run's own report: an earlier run's values stand.
)");
  EXPECT_NE(Explain(Result(), {}, 76).find(" w1  FREQUE...T \"clk\"\n"), std::string::npos);
  EXPECT_TRUE(Explain(Result(), {"5_2"}).starts_with("5_2: score -9.375, rank 2 of 2, timing 318 ps.\n"));
}

TEST(View, SaysWhatElseDecided) {
  SweepResult result = Result();
  std::swap(result.order[0], result.order[1]);
  EXPECT_NE(Explain(result).find(" back.\nThe ranking has 5_2 first all the same.\n"), std::string::npos);
  result.runs[1].score = result.runs[0].score;
  EXPECT_TRUE(Explain(result, {"5_1", "5_2"})
                  .starts_with("5_2 beats 5_1. The score is the same, -4.750: the place-and-route result "
                               "decides, 318 ps against met.\n"));
  result.timing = false;
  result.runs[0].score = result.runs[1].score = {};
  result.runs[1].timing_score = 0;
  EXPECT_EQ(Explain(result),
            "5_2 beats 5_1. Without timing there are no scores: the place-and-route "
            "result is the same too (met), so the plan's order stands.\n");
  EXPECT_EQ(Explain(result, {"6\n_1"}), "run 6 _1 has no score: failed with 9: no licence");
  EXPECT_NE(ShowText(result, 0).find("\nnot finished:\n6 _1 failed with 9: no licence\n6_2 not started\n"),
            std::string::npos);
}

using Status = ScratchTest;
TEST_F(Status, IsReplayedFromAJournal) {
  std::string text = R"({"format":"vostrand-journal","version":1,"started":"1970-01-01T00:01:00Z","jobs":2,)"
                     R"("runs":["5_1","5_2","5_3"],"steps":1}
{"event":"run_started","at_seconds":1,"run":"5_1","index":0,"slot":0}
{"event":"run_started","at_seconds":2,"run":"x","index":7,"slot":0}
)";
  const std::string file = Write(".vostrand/0123/journal.jsonl", text + R"({"event":"stopping","at_sec)");
  EXPECT_EQ(FindJournal(Root()), file);
  const int lock = open(Write(".vostrand/0123/lock", "").c_str(), O_RDONLY);
  flock(lock, LOCK_EX);
  EXPECT_TRUE(IsLocked(file));
  close(lock);
  EXPECT_FALSE(IsLocked(file));
  EXPECT_EQ(StatusText(Read(".vostrand/0123/journal.jsonl"), true, 90, {}),
            "5_1  1/1  0:29\n0 finished, 1 running, 2 waiting | 0:30\nrunning\n");
  EXPECT_EQ(StatusText(text, false, 90, {}),
            "0 finished, 1 cancelled, 2 not started | stopping: interrupted | 0:02\n"
            "interrupted: vostrand --resume goes on\n");
  text += R"({"event":"sweep_finished","at_seconds":3})";
  EXPECT_TRUE(StatusText(text, false, 90, {}).ends_with("0:03\nfinished\n"));
  EXPECT_EQ(StatusText(text.substr(2), false, 90, {}), "");
  const std::string many = R"("jobs":2000000000)";
  EXPECT_EQ(StatusText(text.replace(text.find(R"("jobs":2)"), 8, many), true, 90, {}).substr(0, 3), "5_1");
}
