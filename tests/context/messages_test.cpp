#include "context/messages.h"

#include <cstdio>
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
  const std::pair<const char*, std::string> cases[] = {{"done", "done\n"},         {"done\n", "done\n"},
                                                       {"two\n\n", "two\n\n"},     {"", "\n"},
                                                       {"50%d%s%n", "50%d%s%n\n"}, {nullptr, "\n"}};
  for (const auto& [text, line] : cases) {
    ToolRun run("");
    self_context& context = StartRun(run.record);
    _ut_status(text, &run.record);
    _ut_status(text);
    context._ut_status(text);
    EXPECT_EQ(run.logger.out, line + line + line);
    _ut_warning(text, &run.record);
    context._ut_warning(text);
    _ut_error(text, &run.record);
    _ut_error(text);
    context._ut_error(text);
    EXPECT_EQ(run.record.exitCode, 0);
    _ut_userfatal(text, &run.record);
    EXPECT_EQ(run.record.exitCode, 3);
    const std::string warning = "WARNING - vostrand: " + line, error = "ERROR - vostrand: " + line;
    EXPECT_EQ(run.logger.err, warning + warning + error + error + error + error);
  }
}

TEST(MessagesTest, AThreadWithoutARunIsSilent) {
  ToolRun run("");
  StartRun(run.record);
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  std::thread([] {
    _ut_status("lost");
    _ut_error("lost");
    kelusage();
  }).join();
  EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(run.logger.out + run.logger.err, "");
}

TEST(MessagesTest, Usage) {
  ToolRun run("");
  StartRun(run.record);
  usage(&run.record);
  ExpectGolden(run.logger.out, "usage.txt");
  EXPECT_EQ(run.record.exitCode, 1);
  const std::string option_list = run.logger.out.substr(run.logger.out.find('\n') + 1);
  run.logger.out.clear();
  kelusage();
  EXPECT_EQ(run.logger.out, option_list);
}

TEST(ExitTest, RecordsTheLastCodeAndReleasesOnlyWhenTold) {
  ToolRun run("");
  self_context* const context = &StartRun(run.record);
  onExit(5, &run.record, false);
  onExit(4, &run.record, false);
  onExit(6, nullptr, true);
  EXPECT_EQ(run.record.exitCode, 4);
  EXPECT_EQ(run.record.selfContext, context);
  EXPECT_EQ(ThreadContext(), context);
  for (const int code : {2, -1}) {  // The second one finds the run ended already.
    EXPECT_EQ(vostrand_exit(code, &run.record), code);
    EXPECT_EQ(run.record.exitCode, code);
    EXPECT_EQ(run.record.selfContext, nullptr);
    EXPECT_FALSE(thl_data.hasLocalData() && thl_data.localData());
  }
  EXPECT_EQ(run.logger.out, "Exiting vostrand with exit code 2\nExiting vostrand with exit code -1\n");
}

TEST(ExitTest, WithoutAHostLoggerEverythingGoesToTheStandardStreams) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  VOSTRAND_CONTEXT record;
  const std::string base = testing::TempDir() + "no-such-design";
  const char* arguments[] = {"vostrand", base.c_str(), nullptr};
  EXPECT_EQ(vostrand_main(2, arguments, &record), 3);
  vostrand_exit(7, &record);
  vostrand_exit(8, nullptr);
  std::remove((base + ".log").c_str());
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

using BoundaryTest = ScratchTest;

TEST_F(BoundaryTest, KeepsTheLoggersExceptionsFromTheHost) {
  ThrowingLogger logger;
  VOSTRAND_CONTEXT record;
  record.logger = &logger;
  record.workDir = Root().c_str();
  const char* arguments[] = {"vostrand", "top", nullptr};
  EXPECT_EQ(vostrand_main(2, arguments, &record), 3);
  EXPECT_TRUE(record.seeds.empty());
  record.seeds.resize(1);
  vostrand_report(&record);
  EXPECT_EQ(vostrand_exit(9, &record), 9);
  EXPECT_EQ(record.exitCode, 9);
  EXPECT_EQ(record.selfContext, nullptr);
}

}  // namespace
