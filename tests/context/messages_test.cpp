#include "context/messages.h"

#include <pthread.h>

#include <fstream>
#include <iostream>
#include <stdexcept>
#include <thread>

#include "common/golden.h"
#include "common/scratch.h"
#include "common/tool_run.h"
#include "context/exit.h"
#include "context/thread_context.h"
#include "context/usage.h"

using namespace orlo::vostrand_lib;
using orlo::kelpn::mparrunner::VOSTRAND_CONTEXT;

namespace {

TEST(MessagesTest, EveryFormSendsOneLine) {
  const std::pair<const char*, std::string> cases[] = {
      {"done", "done\n"}, {"two\n\n", "two\n\n"}, {"50%d%s%n", "50%d%s%n\n"}, {nullptr, "\n"}};
  for (const auto& [text, line] : cases) {
    ToolRun run("");
    StartRun(run.record);
    _ut_status(text, &run.record);
    _ut_status(text);
    EXPECT_EQ(run.logger.out, line + line);
    _ut_warning(text, &run.record);
    _ut_error(text, &run.record);
    _ut_error(text);
    EXPECT_EQ(run.record.exitCode, 0);
    _ut_userfatal(text, &run.record);
    EXPECT_EQ(run.record.exitCode, 3);
    const std::string error = "ERROR - vostrand: " + line;
    EXPECT_EQ(run.logger.err, "WARNING - vostrand: " + line + error + error + error);
    std::thread([] { _ut_status("lost"), _ut_error("lost"), kelusage(); }).join();  // Has no run.
    EXPECT_EQ(run.logger.out, line + line);
  }
}

TEST(MessagesTest, Usage) {
  ToolRun run("");
  StartRun(run.record);
  usage(&run.record);
  ExpectGolden(run.logger.out, "usage.txt");
  EXPECT_EQ(run.record.exitCode, 1);
}

TEST(ExitTest, RecordsTheLastCodeAndReleasesOnlyWhenTold) {
  ToolRun run("");
  self_context* const context = &StartRun(run.record);
  onExit(5, &run.record, false);
  onExit(4, &run.record, false);
  EXPECT_TRUE(run.record.exitCode == 4 && run.record.selfContext == context && ThreadContext() == context);
  for (const int code : {2, -1}) {  // The second one finds the run ended already.
    EXPECT_EQ(vostrand_exit(code, &run.record), code);
    EXPECT_TRUE(run.record.exitCode == code && !run.record.selfContext);
    EXPECT_FALSE(thl_data.hasLocalData() && thl_data.localData());
  }
}

using BoundaryTest = ScratchTest;

TEST_F(BoundaryTest, WithoutAHostLoggerEverythingGoesToTheStandardStreams) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  VOSTRAND_CONTEXT record;
  record.workDir = Root().c_str();
  const char* arguments[] = {"vostrand", "missing", nullptr};
  EXPECT_EQ(vostrand_main(2, arguments, &record), 3);
  vostrand_exit(7, &record);
  vostrand_exit(8, nullptr);
  EXPECT_EQ(
      testing::internal::GetCapturedStdout(),
      "---- Vostrand Tool ----\nExiting vostrand with exit code 7\nExiting vostrand with exit code 8\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "ERROR - vostrand: Design input file does not exist or is unreadable.\n");
}

struct ThrowingLogger final : orlo::kelpn::ILogger {
  void onStdout(const char*) override { throw std::runtime_error("disk full"); }
  void onStderr(const char*) override { throw 1; }
};

TEST_F(BoundaryTest, AStandardStreamThatThrowsDoesNotEndTheRun) {
  Write("top.p2t", "-n 2 -t 1\n");
  Write("top_map.ncd", "design");
  VOSTRAND_CONTEXT record;
  record.workDir = Root().c_str();
  const char* arguments[] = {"vostrand", "top", nullptr};
  const auto before = std::cout.exceptions();
  std::ofstream full("/dev/full");
  std::streambuf* const buffer = std::cout.rdbuf(full.rdbuf());
  full.rdbuf()->pubsetbuf(nullptr, 0);
  std::cout.exceptions(std::ios::badbit | std::ios::failbit);
  EXPECT_EQ(vostrand_main(2, arguments, &record), 0);
  EXPECT_EQ(record.seeds.size(), 2);
  vostrand_exit(0, &record);
  std::cout.exceptions(before);
  std::cout.rdbuf(buffer);
}

struct CancellingLogger final : orlo::kelpn::ILogger {
  void onStdout(const char*) override {
    pthread_cancel(pthread_self());
    pthread_testcancel();
  }
  void onStderr(const char*) override {}
};

TEST_F(BoundaryTest, ACancelledThreadComesBackFirst) {
  bool came_back = false;
  bool went_on = false;
  std::thread([&] {
    CancellingLogger logger;
    VOSTRAND_CONTEXT record;
    record.logger = &logger;
    record.workDir = Root().c_str();
    const char* arguments[] = {"vostrand", "top", nullptr};
    vostrand_main(2, arguments, &record);
    vostrand_exit(0, &record);
    came_back = true;
    pthread_testcancel();
    went_on = true;
  }).join();
  EXPECT_TRUE(came_back);
  EXPECT_FALSE(went_on);
}

TEST_F(BoundaryTest, KeepsTheLoggersExceptionsFromTheHost) {
  ThrowingLogger logger;
  VOSTRAND_CONTEXT record;
  record.logger = &logger;
  record.workDir = Root().c_str();
  const char* arguments[] = {"vostrand", "top", nullptr};
  EXPECT_EQ(vostrand_main(2, arguments, &record), 3);
  record.seeds.resize(1);
  vostrand_report(&record);
  EXPECT_EQ(vostrand_exit(9, &record), 9);
  EXPECT_TRUE(record.exitCode == 9 && !record.selfContext);
}

}  // namespace
