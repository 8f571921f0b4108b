// Many tool runs at once, started, ended and abandoned on all kinds of threads. Run under the thread
// sanitizer too.
#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <memory>
#include <thread>

#include "common/pretend_tools.h"
#include "common/scratch.h"
#include "common/tool_run.h"
#include "context/messages.h"
#include "context/thread_context.h"

using namespace orlo::vostrand_lib;

namespace {

void OnAnotherThread(const std::function<void()>& work) {
  std::thread(work).join();
}

// What names the process holds open, such as the runs' logs.
std::size_t OpenFiles() {
  const std::filesystem::directory_iterator files("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

class ThreadsTest : public ScratchTest {
 protected:
  // A folder in which "top" can be planned.
  std::string Design(const std::string& name) const {
    Write(name + "/top_map.ncd", "design");
    Write(name + "/top.p2t", "-n 2 -t 1 -s 1 -stopzero\n");
    Write(name + "/top.prf", "FREQUENCY NET \"clk_c\" 100.000000 MHz ; # w 2 p 3\n");
    return Path(name);
  }

  // A whole tool run of its own numbers, on the calling thread.
  void PlanAndReport(ToolRun& run, const std::string& name, int number) const {
    ASSERT_EQ(run.Plan({"top"}), 0);
    const double mhz = 110.0 + number;
    PretendedRun{"5_1", mhz, 4.0, number}.LeaveIn(Path(name + "/top.dir"));
    PretendedRun{"5_2", 90.0, 4.0, 50}.LeaveIn(Path(name + "/top.dir"));
    CheckStopAtZero(run);
    ASSERT_EQ(vostrand_report(&run.record), 0);
    EXPECT_EQ(run.record.stopRequested, number == 0);
    // The setup time has its kind's default weight, the clock weight 2.
    const float actual = 1000.0F / (static_cast<float>(110000 + 1000 * number) / 1000.0F);
    const float score = (10.0F - actual) * 2.0F + (5.0F - 4.0F);
    UT_STROBJ line;
    const std::string total =
        line.str_format("Total PSScore:%10.3f\n", static_cast<double>(score)).getstring();
    EXPECT_NE(run.logger.out.find(total), std::string::npos) << total << run.logger.out;
    EXPECT_EQ(run.logger.err, "");
    EXPECT_EQ(Read(name + "/top.ncd"), "design of 5_1\n");
  }

  enum class End { on_its_thread, on_another_thread, with_its_thread };

  void WholeRun(const std::string& name, int number, End end) const {
    ToolRun run(Design(name));
    const auto work = [&] { PlanAndReport(run, name, number); };
    if (end == End::with_its_thread)
      OnAnotherThread(work);
    else
      work();
    if (end == End::on_another_thread) OnAnotherThread([&] { vostrand_exit(0, &run.record); });
  }

  static void CheckStopAtZero(ToolRun& run) {
    for (const auto& seed : run.record.seeds)
      for (const auto& step : seed.steps)
        if (step.callback) step.callback(seed.name.c_str(), &run.record);
  }
};

}  // namespace

TEST_F(ThreadsTest, ManyWholeRunsAtOnceKeepToThemselvesHoweverTheyEnd) {
  const std::size_t open_files = OpenFiles();
  std::vector<std::thread> workers;
  for (int t = 0; t < 8; ++t)
    workers.emplace_back([this, t] {
      for (int i = 0; i < 8; ++i)
        WholeRun("d" + std::to_string(t), (t * 8 + i) % 20, static_cast<End>((t + i) % 3));
    });
  for (std::thread& worker : workers) worker.join();
  EXPECT_EQ(OpenFiles(), open_files) << "a log stayed open";
}

TEST_F(ThreadsTest, ARunMayBeEndedOnAnotherThreadThanItsOwn) {
  const std::string folder = Design("a");
  ToolRun run(folder);
  ASSERT_EQ(run.Plan({"top"}), 0);
  OnAnotherThread([&] {
    EXPECT_EQ(ThreadContext(), nullptr);
    vostrand_exit(0, &run.record);
  });
  EXPECT_EQ(run.record.selfContext, nullptr);
  EXPECT_EQ(ThreadContext(), nullptr) << "the storage still points to the released context";
  _ut_error("lost");
  EXPECT_EQ(run.logger.err, "");

  // The next runs on this thread must not release the old pointer, whoever has its memory by now.
  for (int i = 0; i < 3; ++i) {
    ToolRun next(folder);
    ASSERT_EQ(next.Plan({"top"}), 0);
    EXPECT_EQ(ThreadContext(), next.record.selfContext);
    OnAnotherThread([&] { vostrand_exit(0, &next.record); });
  }
}

TEST_F(ThreadsTest, AThreadMayEndBeforeItsRun) {
  const std::string folder = Design("a");
  auto abandoned = std::make_unique<ToolRun>(folder);
  OnAnotherThread([&] { ASSERT_EQ(abandoned->Plan({"top"}), 0); });
  EXPECT_EQ(Read("a/top.log"), "---- Vostrand Tool Log File ----\n") << "the thread's end closes the log";

  // A new run likely lies where the released one lay; ending the old record must leave it alone.
  ToolRun next(folder);
  std::promise<void> planned;
  std::promise<void> checked;
  std::thread worker([&] {
    ASSERT_EQ(next.Plan({"top"}), 0);
    planned.set_value();
    checked.get_future().wait();
    EXPECT_EQ(ThreadContext(), next.record.selfContext);
    EXPECT_EQ(vostrand_report(&next.record), 0);
    vostrand_exit(0, &next.record);
  });
  planned.get_future().wait();
  EXPECT_EQ(vostrand_report(&abandoned->record), 1);
  EXPECT_EQ(abandoned->record.seeds[0].steps[1].callback("5_1", &abandoned->record), 1);
  abandoned.reset();
  checked.set_value();
  worker.join();
}

TEST_F(ThreadsTest, TheNextRunOnAThreadReleasesTheOneBefore) {
  ToolRun first(Design("a"));
  ToolRun second(Design("b"));
  ASSERT_EQ(first.Plan({"top"}), 0);
  ASSERT_EQ(second.Plan({"top"}), 0);
  EXPECT_EQ(ThreadContext(), second.record.selfContext);
  EXPECT_EQ(vostrand_report(&first.record), 1);
  EXPECT_EQ(vostrand_report(&second.record), 0);
}
