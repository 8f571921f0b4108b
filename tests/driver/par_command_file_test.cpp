#include "common/golden.h"
#include "common/scratch.h"
#include "common/tool_run.h"

namespace fs = std::filesystem;

namespace {

class ParCommandFileTest : public ScratchTest {
 protected:
  ParCommandFileTest() { Write("top_map.ncd", ""); }
};

TEST_F(ParCommandFileTest, RewritesTheFileAndItsCopies) {
  const std::string long_line = "-i " + std::string(251, '1') + " -n 2 -x " + std::string(740, 'y');
  std::string text;
  for (const char* const options :
       {"-l 5 -i 15 -n 3 -t 2 -s 1 -c 1 -stopzero\n",
        "-s 9 -i 15\r\n\r\n\n-n 2 -stopzero yes -e 1\r\n# kept 50%d\n-s 9\n-l my-level\n-s a-b",
        "-n -1 -t 7\n", long_line.c_str()}) {
    Write("top.p2t", options);
    ToolRun run(Root());
    ASSERT_EQ(run.Plan({"top", "-dissorv"}), 0);
    text += "==> top.p2t\n" + Read("top.p2t");
    for (std::size_t i = 0; i < run.record.seeds.size(); ++i)
      text += "==> " + run.record.seeds[i].name + "\n" + Read("top.p2t.tmp" + std::to_string(i));
    if (run.record.seeds.size() == 1) continue;
    const std::string once = Read("top.p2t");
    ASSERT_EQ(run.Plan({"top", "-dissorv"}), 0);
    EXPECT_EQ(Read("top.p2t"), once);
  }
  ExpectGolden(text, "par_command_files.txt");
}

TEST_F(ParCommandFileTest, RunCount) {
  const struct {
    const char* text;
    std::size_t runs;  // 0: refused.
    bool several = true;
  } cases[] = {
      {"-n 99", 99},      {"-n 100", 0},         {"-n 4294967297", 0}, {"-n 99999999999999999999", 0},
      {"-n 0", 1},        {"-n -3", 1},          {"-n 3abc", 3},       {"--n 2", 2},
      {"-n 4\n-n 2", 2},  {"-n 100\n-n 2\n", 0}, {"-n\t2", 1, false},  {"-t 1 -n", 1, false},
      {"-nx 2", 1, false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    for (const auto& entry : fs::directory_iterator(Root()))
      if (entry.path().filename() != "top_map.ncd") fs::remove_all(entry.path());
    Write("top.p2t", c.text);
    ToolRun run(Root());
    EXPECT_EQ(run.Plan({"top"}), c.runs ? 0 : 1);
    EXPECT_EQ(run.record.seeds.size(), c.runs);
    EXPECT_EQ(run.Info().multiRun, c.several);
    if (c.runs) continue;
    EXPECT_EQ(run.logger.out, "---- Vostrand Tool ----\n-n parameter should be 0-99.");
    EXPECT_EQ(run.logger.err, "");
    EXPECT_EQ(Read("top.p2t"), c.text);
    EXPECT_FALSE(Exists("top.dir") || Exists("top.p2t.tmp0"));
  }
}

TEST_F(ParCommandFileTest, ACopyThatCannotBeMadeIsFatal) {
  ToolRun missing(Root());
  EXPECT_EQ(missing.Plan({"top"}), 3);
  EXPECT_TRUE(missing.logger.out.starts_with(
      "---- Vostrand Tool ----\nTemp Par Command file does not exist. Using defaults\n"
      "par -l 5 -i 15 -n 1 -t 1 -s 1 -c 1 top_map.ncd top.ncd top.prf  \n"));
  EXPECT_EQ(missing.logger.err, "ERROR - vostrand: Cannot open temp Par command file top.p2t.tmp0\n");
  EXPECT_TRUE(missing.record.seeds.empty());

  Write("top.p2t.tmp0", "-c 1\n");  // What an earlier run left is used.
  ToolRun stale(Root());
  EXPECT_EQ(stale.Plan({"top"}), 0);
  EXPECT_EQ(Read("top.p2t.tmp0"), "-c 1\n-t 1\n");

  Write("top.p2t", "-n 3\n");
  Write("top.p2t.tmp1/inside", "");
  ToolRun blocked(Root());
  EXPECT_EQ(blocked.Plan({"top"}), 3);
  EXPECT_EQ(blocked.logger.err, "ERROR - vostrand: Cannot open temp Par command file top.p2t.tmp1\n");
  EXPECT_EQ(blocked.record.seeds.size(), 1U);
}

TEST_F(ParCommandFileTest, ALinkToTheUsersFileStaysALink) {
  Write("shared/options", "-n 2 -s 1\n");
  fs::permissions(Path("shared/options"), fs::perms{0640});
  fs::create_symlink("shared/options", Path("top.p2t"));
  ToolRun run(Root());
  ASSERT_EQ(run.Plan({"top"}), 0);
  EXPECT_TRUE(fs::is_symlink(Path("top.p2t")));
  EXPECT_EQ(Read("shared/options"), "-n 2 -s  2 \n");
  EXPECT_EQ(fs::status(Path("shared/options")).permissions(), fs::perms{0640});
  EXPECT_EQ(std::distance(fs::directory_iterator(Path("shared")), {}), 1);
}

}  // namespace
