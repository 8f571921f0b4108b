#include "common/golden.h"
#include "common/scratch.h"
#include "common/tool_run.h"

namespace {

class ParCommandFileTest : public ScratchTest {
 protected:
  ParCommandFileTest() { Write("top_map.ncd", ""); }
};

// The options as the tool leaves them, each run's copy of them, and the steps planned from them.
TEST_F(ParCommandFileTest, OptionsBecomeAPlan) {
  const std::string long_line = "-i " + std::string(251, '1') + " -n 2 -x " + std::string(740, 'y');
  std::string text;
  for (const char* const options :
       {"-l 5 -i 15 -n 3 -t 2 -s 1 -c 1 -stopzero\n",
        "-s 9 -i 15\r\n\r\n\n-n 2 -stopzero yes -e 1\r\n# kept 50%d\n-s 9\n-l my-level\n-s a-b",
        "-n -1 -t 7 -stopzero\n", "-n 2 -t 2147483647 -l \b50%d\t\n", "-c 1\n", long_line.c_str()}) {
    Write("top.p2t", options);
    ToolRun run(Root());
    run.record.exitCode = 5;  // Success leaves the host's own value alone.
    ASSERT_EQ(run.Plan({"top"}), 5);
    text += "==> top.p2t\n" + Read("top.p2t");
    for (std::size_t i = 0; i < run.record.seeds.size(); ++i) {
      text += "==> " + run.record.seeds[i].name + "\n" + Read("top.p2t.tmp" + std::to_string(i));
      for (const auto& step : run.record.seeds[i].steps)
        text += step.kind == 0 ? "  " + step.command + "\n" : step.callback ? "  check\n" : "  nothing\n";
    }
  }
  ExpectGolden(text, "par_command_files.txt");
}

TEST_F(ParCommandFileTest, RunCount) {
  const std::pair<const char*, std::size_t> cases[] = {// 0 runs: refused.
                                                       {"-n 99", 99}, {"-n 100", 0},     {"-n 4294967297", 0},
                                                       {"-n 0", 1},   {"-n -3", 1},      {"--n 2", 2},
                                                       {"-n\t2", 1},  {"-n 4\n-n 2", 2}, {"-n 100\n-n 2", 0}};
  for (const auto& [text, runs] : cases) {
    SCOPED_TRACE(text);
    Write("top.p2t", text);
    ToolRun run(Root());
    EXPECT_EQ(run.Plan({"top"}), runs ? 0 : 1);
    EXPECT_EQ(run.record.seeds.size(), runs);
    if (runs) continue;
    EXPECT_EQ(run.logger.out + run.logger.err, "---- Vostrand Tool ----\n-n parameter should be 0-99.");
    EXPECT_EQ(Read("top.p2t"), text);
  }
}

TEST_F(ParCommandFileTest, ACopyThatCannotBeMadeIsFatal) {
  ToolRun missing(Root());
  EXPECT_EQ(missing.Plan({"top"}), 3);
  EXPECT_TRUE(missing.logger.out.starts_with(
      "---- Vostrand Tool ----\nTemp Par Command file does not exist. Using defaults\n"
      "par -l 5 -i 15 -n 1 -t 1 -s 1 -c 1 top_map.ncd top.ncd top.prf  \n"));
  EXPECT_EQ(missing.logger.err, "ERROR - vostrand: Cannot open temp Par command file top.p2t.tmp0\n");

  Write("top.p2t.tmp0", "-c 1\n");  // What an earlier run left is used.
  ToolRun stale(Root());
  EXPECT_EQ(stale.Plan({"top"}), 0);
  EXPECT_EQ(Read("top.p2t.tmp0"), "-c 1\n-t 1\n");

  Write("top.p2t", "-n 3\n");
  Write("top.p2t.tmp1/inside", "");
  ToolRun blocked(Root());
  EXPECT_EQ(blocked.Plan({"top"}), 3);
  EXPECT_EQ(blocked.record.seeds.size(), 1U);
}

// What was read of it must not be written over it.
TEST_F(ParCommandFileTest, AFileThatCannotBeReadToItsEndIsFatal) {
  Write("top_map.ncd", "");
  ToolRun run(Root());
  EXPECT_EQ(run.Plan({"-p", "/proc/self/mem", "-log", "l", "-o", "o", "-pr", "a.prf", "top_map.ncd", "out"}),
            3);
  EXPECT_EQ(run.logger.err, "ERROR - vostrand: Cannot read Par command file /proc/self/mem\n");
}

}  // namespace
