// Order, failures, limits, stops and cancel, on a launcher that runs nothing and a clock that stands still.
#include "execute/executor.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>

using namespace vostrand;

namespace {

// Keeps what was started until the test says how it ends.
class FakeLauncher final : public Launcher {
 public:
  void Start(const StepRequest& request, Done done) override { waiting[Name(request)] = std::move(done); }
  void Cancel(std::size_t run) override { cancels += std::to_string(run) + " "; }

  void End(const std::string& name, int exit_code = 0, bool cancelled_step = false, long peak_kib = 0) {
    step::Outcome outcome;
    outcome.exit_code = exit_code;
    outcome.cancelled = cancelled_step;
    outcome.peak_kib = peak_kib;
    const Done done = std::move(waiting.extract(name).mapped());
    done(outcome);
  }
  std::string Waiting() const {
    std::string names;
    for (const auto& [name, done] : waiting) names += name + " ";
    return names;
  }

  std::map<std::string, Done> waiting;
  std::string cancels;

 private:
  static std::string Name(const StepRequest& request) {
    return request.words[0] + std::to_string(request.run);
  }
};

class FakeClock final : public Clock {
 public:
  double Now() const override { return now; }
  void After(double seconds, std::function<void()> then) override { timers.emplace(now + seconds, then); }

  void Pass(double seconds) {
    for (const double end = now + seconds; !timers.empty() && timers.begin()->first <= end;) {
      now = timers.begin()->first;
      timers.extract(timers.begin()).mapped()();
    }
    now += seconds;
  }

  double now = 100;
  std::multimap<double, std::function<void()>> timers;
};

class EventNames final : public Observer {
 public:
  void On(const Event& event) override {
    constexpr const char* names[] = {"sweep",   "kept", "start", "step", "placed",
                                     "stepped", "end",  "skip",  "stop", "done"};
    text += names[static_cast<int>(event.kind)];
    const bool of_sweep = event.kind == Event::Kind::sweep_started || event.kind == Event::Kind::stopping ||
                          event.kind == Event::Kind::sweep_finished;
    if (!of_sweep) text += std::to_string(event.run);
    if (event.will_retry) text += "again";
    text += " ";
    if (event.kind == Event::Kind::run_started) slots += std::to_string(event.slot);
  }
  std::string text;
  std::string slots;
};

class ExecutorTest : public ::testing::Test {
 protected:
  ExecutorTest() { limits.jobs = 2; }

  // Runs of three steps: par, the check, sorv.
  Executor& Make(std::size_t runs, std::vector<std::size_t> restored = {}) {
    std::vector<PlannedRun> plan(runs);
    for (std::size_t run = 0; run < runs; ++run) {
      plan[run].name = std::to_string(run);
      plan[run].steps = {{{"par"}}, {}, {{"sorv"}}};
    }
    for (const std::size_t run : restored) {
      plan[run].restored = true;
      plan[run].earlier_verdict.met = met[run];
    }
    ExecutorHooks hooks;
    hooks.call_back = [this](std::size_t run, std::size_t) { stop = stop || run == stop_by; };
    hooks.stop_requested = [this] { return stop; };
    hooks.before_run = [this](const PlannedRun& run, bool once_more) {
      prepared += run.name + (once_more ? "again " : " ");
      return run.name == unprepared ? "no way" : std::string();
    };
    hooks.judge = [this](std::size_t run) {
      Verdict verdict;
      verdict.met = met[run];
      return verdict;
    };
    hooks.free_memory_kib = [this] { return free_memory_kib; };
    hooks.finished = [this] { ++finished; };
    executor = std::make_unique<Executor>(plan, limits, launcher, clock, events, hooks);
    executor->Start();
    return *executor;
  }
  void EndRun(const std::string& run) {
    launcher.End("par" + run);
    launcher.End("sorv" + run);
  }

  Limits limits;
  FakeLauncher launcher;
  FakeClock clock;
  EventNames events;
  std::unique_ptr<Executor> executor;
  std::map<std::size_t, bool> met;
  std::size_t stop_by = 99;
  bool stop = false;
  long free_memory_kib = 1'000'000;
  std::string unprepared;
  std::string prepared;
  int finished = 0;
};

constexpr int c = cancelled_status;

}  // namespace

TEST_F(ExecutorTest, StartsInPlanOrderAndKeepsToTheJobs) {
  Make(3);
  EXPECT_EQ(launcher.Waiting(), "par0 par1 ");
  launcher.End("par1");
  EXPECT_EQ(launcher.Waiting(), "par0 sorv1 ") << "a run's steps follow one another";
  launcher.End("sorv1");
  EXPECT_EQ(launcher.Waiting(), "par0 par2 ");
  EXPECT_EQ(prepared, "0 1 2 ");
  EXPECT_EQ(events.slots, "011") << "the slot that came free";
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
  limits.jobs = 1;
  unprepared = "2";
  Make(3);
  launcher.End("par0", 9);
  EXPECT_EQ(launcher.Waiting(), "par1 ");
  launcher.End("par1");
  launcher.End("sorv1", 139);
  EXPECT_EQ(executor->Statuses(), (std::vector<int>{9, 139, 126}));
  EXPECT_EQ(executor->StoppedBecause(), "");
  EXPECT_EQ(finished, 1);
}

TEST_F(ExecutorTest, TriesAFailedStepAgainButNotACancelledOne) {
  limits.retries = 2;
  Make(2);
  launcher.End("par0", 1);
  EXPECT_EQ(launcher.Waiting(), "par0 par1 ");
  EXPECT_EQ(prepared, "0 1 0again ") << "what the failed try left must not pass for a result";
  launcher.End("par0");
  launcher.End("sorv0", 1);
  launcher.End("sorv0", 1);
  EXPECT_EQ(prepared, "0 1 0again ") << "the timing step needs what place-and-route left";
  launcher.End("sorv0", 7);
  launcher.End("par1", 0, true);  // Ended by somebody else, though it took that well.
  EXPECT_EQ(executor->Statuses(), (std::vector<int>{7, 143}));
  EXPECT_EQ(events.text,
            "sweep start0 step0 start1 step1 stepped0again step0 stepped0 step0 stepped0 step0 stepped0again "
            "step0 stepped0again step0 stepped0 end0 stepped1 end1 done ");
}

TEST_F(ExecutorTest, AStopLetsWhatRunsGoOnAndStartsNothingMore) {
  stop_by = 1;
  Make(4);
  launcher.End("par1");
  EXPECT_EQ(launcher.Waiting(), "par0 sorv1 ") << "the run that asked still gets its timing";
  launcher.End("sorv1");
  EXPECT_EQ(launcher.Waiting(), "par0 ");
  EndRun("0");
  EXPECT_EQ(executor->Statuses(), (std::vector<int>{0, 0, c, c}));
  EXPECT_TRUE(events.text.ends_with("skip2 skip3 done ")) << events.text;
  EXPECT_EQ(executor->StoppedBecause(), "a run meets timing");
}

TEST_F(ExecutorTest, StopNowEndsTheOthersButThoseAboutToEnd) {
  stop_by = 1;
  limits.jobs = 4;
  limits.stop_now = true;
  limits.grace_seconds = 5;
  Make(5);
  clock.Pass(10);
  EndRun("0");  // Run 4 takes its place.
  clock.Pass(1);
  launcher.End("par1");
  EXPECT_EQ(launcher.cancels, "4 ") << "place-and-route takes 10.5 s: 2 and 3 must be about to end";
  clock.Pass(5);
  EXPECT_EQ(launcher.cancels, "4 2 3 ") << "what was let go on is ended when the grace is over";
}

TEST_F(ExecutorTest, MayBeGoneBeforeTheGraceIsOver) {
  stop_by = 1;
  limits.stop_now = true;
  limits.grace_seconds = 50;
  Make(3);
  clock.Pass(10);
  EndRun("0");
  launcher.End("par1");
  executor.reset();
  clock.Pass(100);
  EXPECT_EQ(launcher.cancels, "");
}

TEST_F(ExecutorTest, TheUsersFirstInterruptDoesNotCutShortWhatIsEnding) {
  stop_by = 1;
  limits.stop_now = true;
  Make(3);
  launcher.End("par1");
  executor->Cancel();
  EXPECT_EQ(launcher.cancels, "0 1 ");
  executor->Cancel();
  EXPECT_EQ(launcher.cancels, "0 1 0 1 ");
}

TEST_F(ExecutorTest, StopNowWithoutGraceSparesOnlyTheRunThatAsked) {
  stop_by = 1;
  limits.stop_now = true;
  Make(3);
  clock.Pass(4);
  launcher.End("par1");
  EXPECT_EQ(launcher.cancels, "0 ");
  launcher.End("par0", 143, true);
  launcher.End("sorv1");
  EXPECT_EQ(executor->Statuses(), (std::vector<int>{c, 0, c}));
}

TEST_F(ExecutorTest, StopsAfterSoManyMetRunsOrAtTheFirstFailure) {
  limits.jobs = 1;
  limits.until = 2;
  met = {{0, true}, {1, false}, {2, true}};
  Make(4, {0});
  EndRun("1");
  EndRun("2");
  EXPECT_EQ(finished, 1);
  EXPECT_EQ(executor->StoppedBecause(), "2 runs meet timing");
  EXPECT_EQ(executor->Statuses(), (std::vector<int>{0, 0, 0, c}));

  limits = Limits();
  limits.fail_fast = true;
  limits.retries = 1;
  Make(2);
  launcher.End("par0", 3);
  launcher.End("par0", 3);
  EXPECT_EQ(finished, 2);
  EXPECT_EQ(executor->StoppedBecause(), "run 0 failed");
}

TEST_F(ExecutorTest, RestoredRunsAreNotRunButCanStopTheSweep) {
  Make(3, {0, 2});
  EXPECT_EQ(launcher.Waiting(), "par1 ");
  EndRun("1");
  EXPECT_EQ(executor->Statuses(), (std::vector<int>{0, 0, 0}));
  EXPECT_TRUE(events.text.starts_with("sweep kept0 kept2 start1 ")) << events.text;

  stop_by = 2;
  Make(3, {2});
  EXPECT_EQ(finished, 2) << "the stop of the earlier sweep was found again";
  EXPECT_EQ(executor->Statuses(), (std::vector<int>{c, c, 0}));
}

TEST_F(ExecutorTest, StartsNoMoreThanFitsInMemory) {
  limits.jobs = 4;
  limits.memory_kib = 1000;
  Make(5);
  EXPECT_EQ(launcher.Waiting(), "par0 ") << "nothing is known before the first has finished";
  launcher.End("par0", 0, false, 400);
  launcher.End("sorv0", 0, false, 10);
  EXPECT_EQ(launcher.Waiting(), "par1 par2 ") << "two of 400 fit into 1000";
  free_memory_kib = 399;
  EndRun("1");
  EXPECT_EQ(launcher.Waiting(), "par2 ");
  clock.Pass(20);
  EXPECT_EQ(launcher.Waiting(), "par2 ");
  free_memory_kib = 799;
  clock.Pass(2);
  EXPECT_EQ(launcher.Waiting(), "par2 par3 ") << "others freed memory";
  EndRun("2");
  EXPECT_EQ(launcher.Waiting(), "par3 ") << "what has just started will want what is free now";
}

TEST_F(ExecutorTest, ACancelledSweepWaitsForWhatRunsAndKeepsWhatFinished) {
  limits.jobs = 3;
  limits.retries = 1;
  Make(4);
  EndRun("0");
  launcher.End("par1");
  executor->Cancel();
  EXPECT_EQ(launcher.cancels, "1 2 3 ");
  EXPECT_EQ(finished, 0);
  executor->Cancel();
  EXPECT_EQ(launcher.cancels, "1 2 3 1 2 3 ");
  launcher.End("sorv1");  // Came to its end all the same: it is finished.
  launcher.End("par2", 143, true);
  launcher.End("par3", 0);  // Its timing is never started.
  EXPECT_EQ(executor->Statuses(), (std::vector<int>{0, 0, c, c}));
  EXPECT_EQ(executor->StoppedBecause(), "interrupted");
  EXPECT_EQ(finished, 1);
}

TEST_F(ExecutorTest, AnEmptyPlanEndsAtOnce) {
  Make(0);
  EXPECT_EQ(finished, 1);
}
