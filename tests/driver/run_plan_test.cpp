#include <vector>

#include "common/scratch.h"
#include "common/tool_run.h"
#include "common/unprivileged.h"

namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;

Strings FullForm(const char* output, const Strings& more) {
  Strings all = {"-p",      "top.p2t", "-log",    "top.log",     "-o",
                 "top.csv", "-pr",     "top.prf", "top_map.ncd", output};
  all.insert(all.end(), more.begin(), more.end());
  return all;
}

class RunPlanTest : public ScratchTest {
 protected:
  RunPlanTest() { Write("top_map.ncd", ""); }
};

TEST_F(RunPlanTest, OutputName) {
  const char* const refusal = "ERROR - vostrand: Output filename <top.dir> must have a \".ncd\" extension.\n";
  const struct {
    const char *given, *one, *several;  // The final name and its stem, or what is said.
  } cases[] = {{"top", "top.ncd top", "top.dir top"},
               {"top.NCD", "top.NCD.ncd top.NCD", "top.NCD.dir top.NCD"},
               {"./b/c.ncd", "./b/c.ncd c", "./b/c.dir c"},
               {"top.dir", refusal, refusal}};
  for (const auto& c : cases) {
    for (const bool several : {false, true}) {
      Write("top.p2t", several ? "-n 2 -s 1\n" : "-s 9\n");
      ToolRun run(Root());
      const bool refused = run.Plan(FullForm(c.given, {})) == 3;
      const std::string name = run.Info().outputDir.getstring(), stem = run.Info().outputName.getstring();
      EXPECT_EQ(refused ? run.logger.err : name + " " + stem, several ? c.several : c.one);
      EXPECT_EQ(run.record.seeds.empty(), refused);
      // Written back before the name is looked at.
      EXPECT_EQ(Read("top.p2t"), several ? "-n 2 -s  2 \n" : "-s  1 \n");
      if (refused) continue;
      const std::string label = run.Info().csvLabels.data[0].getstring();
      EXPECT_EQ(label, several ? "1" : name.substr(0, name.size() - 4));
    }
  }
}

TEST_F(RunPlanTest, OldOutputIsRemovedOnlyWhereAskedTo) {
  Write("top.p2t", "-n 2\n");
  const auto plan = [&](bool removes) {
    ToolRun run(Root());
    EXPECT_EQ(run.Plan(FullForm("top", removes ? Strings{"-rem"} : Strings{})), 0);
    return run.logger.err;
  };
  Write("top.dir/5_1.ncd", "");
  Write("top.dir/5_1.dir/5_1.ncd", "");
  fs::create_symlink(Write("kept", ""), Path("top.dir/.link"));
  fs::create_directory(Path("top.dir/50%d"));
  EXPECT_EQ(plan(false), "");
  EXPECT_TRUE(Exists("top.dir/5_1.ncd"));
  EXPECT_EQ(plan(true),
            "WARNING - vostrand: Unable to remove design directory file: 50%d\n"
            "WARNING - vostrand: Unable to remove design directory file: 5_1.dir\n");
  EXPECT_TRUE(Exists("top.dir/5_1.dir/5_1.ncd") && Exists("kept") && !Exists("top.dir/5_1.ncd") &&
              !Exists("top.dir/.link"));
  for (const char* const target : {"elsewhere", "nowhere"}) {  // A link, and one that leads nowhere.
    Write("elsewhere/precious", "");
    fs::remove_all(Path("top.dir"));
    fs::create_symlink(target, Path("top.dir"));
    EXPECT_EQ(plan(true), "");
    EXPECT_TRUE(Exists("elsewhere/precious"));
    EXPECT_EQ(fs::symlink_status(Path("top.dir")).type(), fs::file_type::directory);
  }
}

// Each thing that a user may not write is named, and what is in it stays.
TEST_F(RunPlanTest, SaysWhatMayNotBeWritten) {
  const std::string options = Write("top.p2t", "-n 2\n");
  Write("top.dir/old", "");
  const auto plan = [&](int exit_code) {
    const Unprivileged user;
    ToolRun run(Root());
    EXPECT_EQ(run.Plan(FullForm("top", {"-rem"})), exit_code);
    return run.logger.err;
  };
  fs::permissions(Root(), fs::perms(0777));
  fs::permissions(options, fs::perms(0444));
  EXPECT_EQ(plan(3), "ERROR - vostrand: Cannot open Par command file top.p2t\n");

  for (const char* const writable : {"top.p2t", "top.p2t.tmp0", "top.p2t.tmp1"})
    fs::permissions(Write(writable, Read(writable)), fs::perms(0666));
  fs::permissions(Root(), fs::perms(0755));
  EXPECT_EQ(plan(0), "WARNING - vostrand: Unable to remove design directory file: old\n");
  fs::remove(Path("top.dir/old"));
  EXPECT_EQ(plan(0), "WARNING - vostrand: Unable to remove old design directory.\n");
  fs::remove(Path("top.dir"));
  Write("top.dir", "");
  EXPECT_EQ(plan(0), "WARNING - vostrand: Unable to remove old design file: top.dir\n");
}

}  // namespace
