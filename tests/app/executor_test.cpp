// Order, failures, stop and cancel, on a launcher that runs nothing.
#include "execute/executor.h"

#include <gtest/gtest.h>

#include <map>

using namespace vostrand;

namespace {

// Keeps what was started until the test says how it ends.
class FakeLauncher final : public Launcher {
 public:
  void Start(const StepRequest& request, Done done) override { waiting[Name(request)] = std::move(done); }
  void CancelAll() override { ++cancels; }

  void End(const std::string& name, int exit_code = 0, bool cancelled_step = false) {
    step::Outcome outcome;
    outcome.exit_code = exit_code;
    outcome.cancelled = cancelled_step;
    const Done done = std::move(waiting.extract(name).mapped());
    done(outcome);
  }
  std::string Waiting() const {
    std::string names;
    for (const auto& [name, done] : waiting) names += name + " ";
    return names;
  }

  std::map<std::string, Done> waiting;
  int cancels = 0;

 private:
  static std::string Name(const StepRequest& request) {
    return request.words[0] + std::to_string(request.run);
  }
};

class EventNames final : public Observer {
 public:
  void On(const Event& event) override {
    constexpr const char* names[] = {"sweep", "start", "step", "stepped", "end", "skip", "done"};
    text += names[static_cast<int>(event.kind)];
    const bool of_sweep =
        event.kind == Event::Kind::sweep_started || event.kind == Event::Kind::sweep_finished;
    if (!of_sweep) text += std::to_string(event.run);
    text += " ";
  }
  std::string text;
};

class ExecutorTest : public ::testing::Test {
 protected:
  // Runs of three steps: par, the check, sorv.
  Executor& Make(std::size_t runs, int jobs) {
    std::vector<PlannedRun> plan(runs);
    for (PlannedRun& run : plan) run.steps = {{{"par"}}, {}, {{"sorv"}}};
    ExecutorHooks hooks;
    hooks.call_back = [this](std::size_t run, std::size_t) { stop = stop || run == met_by; };
    hooks.stop_requested = [this] { return stop; };
    hooks.before_run = [this](const PlannedRun&) {
      ++prepared;
      return std::string();
    };
    hooks.finished = [this] { ++finished; };
    executor = std::make_unique<Executor>(plan, jobs, launcher, events, hooks);
    executor->Start();
    return *executor;
  }

  FakeLauncher launcher;
  EventNames events;
  std::unique_ptr<Executor> executor;
  std::size_t met_by = 99;
  bool stop = false;
  int prepared = 0;
  int finished = 0;
};

constexpr int c = cancelled_status;

}  // namespace

TEST_F(ExecutorTest, StartsInPlanOrderAndKeepsToTheJobs) {
  Make(3, 2);
  EXPECT_EQ(launcher.Waiting(), "par0 par1 ");
  launcher.End("par1");
  EXPECT_EQ(launcher.Waiting(), "par0 sorv1 ") << "a run's steps follow one another";
  launcher.End("sorv1");
  EXPECT_EQ(launcher.Waiting(), "par0 par2 ");
  EXPECT_EQ(prepared, 3);
  for (const char* name : {"par0", "sorv0", "par2"}) launcher.End(name);
  EXPECT_EQ(finished, 0);
  launcher.End("sorv2");
  EXPECT_EQ(finished, 1);
  EXPECT_EQ(executor->Statuses(), (std::vector<int>{0, 0, 0}));
  EXPECT_EQ(events.text,
            "sweep start0 step0 start1 step1 stepped1 step1 stepped1 step1 stepped1 end1 start2 step2 "
            "stepped0 step0 stepped0 step0 stepped0 end0 stepped2 step2 stepped2 step2 stepped2 end2 done ");
}

TEST_F(ExecutorTest, AFailedStepEndsItsRunAndNoOther) {
  Make(2, 1);
  launcher.End("par0", 9);
  EXPECT_EQ(launcher.Waiting(), "par1 ");
  launcher.End("par1");
  launcher.End("sorv1", 139);
  EXPECT_EQ(executor->Statuses(), (std::vector<int>{9, 139}));
  EXPECT_EQ(finished, 1);
}

TEST_F(ExecutorTest, AStopLetsWhatRunsGoOnAndStartsNothingMore) {
  met_by = 1;
  Make(4, 2);
  launcher.End("par1");
  EXPECT_EQ(launcher.Waiting(), "par0 sorv1 ") << "the run that asked still gets its timing";
  launcher.End("sorv1");
  EXPECT_EQ(launcher.Waiting(), "par0 ");
  launcher.End("par0");
  launcher.End("sorv0");
  EXPECT_EQ(executor->Statuses(), (std::vector<int>{0, 0, c, c}));
  EXPECT_TRUE(events.text.ends_with("skip2 skip3 done ")) << events.text;
}

TEST_F(ExecutorTest, ACancelledSweepWaitsForWhatRunsAndKeepsWhatFinished) {
  Make(4, 3);
  launcher.End("par0");
  launcher.End("sorv0");
  launcher.End("par1");
  executor->Cancel();
  EXPECT_EQ(launcher.cancels, 1);
  EXPECT_EQ(finished, 0);
  executor->Cancel();
  EXPECT_EQ(launcher.cancels, 2);
  launcher.End("sorv1");  // Came to its end all the same: it is finished.
  launcher.End("par2", 143, true);
  EXPECT_EQ(launcher.Waiting(), "par3 ") << "started when the first run ended";
  launcher.End("par3", 0);  // Its timing is never started.
  EXPECT_EQ(executor->Statuses(), (std::vector<int>{0, 0, c, c}));
  EXPECT_EQ(finished, 1);
}

TEST_F(ExecutorTest, AnEmptyPlanEndsAtOnce) {
  Make(0, 4);
  EXPECT_EQ(finished, 1);
}
