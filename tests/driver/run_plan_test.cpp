#include <vector>

#include "common/golden.h"
#include "common/scratch.h"
#include "common/tool_run.h"
#include "results/stop_at_zero.h"

using namespace orlo::vostrand_lib;
namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;

Strings FullForm(const char* output, const Strings& more) {
  Strings all = {"-p",      "top.p2t", "-log",    "top.log",     "-o",
                 "top.csv", "-pr",     "top.prf", "top_map.ncd", output};
  all.insert(all.end(), more.begin(), more.end());
  return all;
}

// The plan, the names noted for the report, and what was said.
std::string Show(ToolRun& run) {
  std::string text;
  for (const auto& seed : run.record.seeds) {
    text += seed.name + (seed.status == 0 ? "\n" : " has a status\n");
    for (const auto& step : seed.steps) {
      const bool is_check = step.kind == 2 && step.command.empty() && step.callback == CheckStopAtZero;
      const bool is_command = step.kind == 0 && !step.callback;
      text += is_command ? "  \"" + step.command + "\"\n" : is_check ? "  check\n" : "  wrong step\n";
    }
  }
  const MParRunInfo& info = run.Info();
  for (const DARRAY_UT_STROBJ* const names : {&info.runNames, &info.csvLabels, &info.twrFiles}) {
    text += "names:";
    for (long i = 0; i < names->count; ++i) text += std::string(" ") + names->data[i].getstring();
    text += "\n";
  }
  return text + run.logger.out + run.logger.err + "\n";
}

class RunPlanTest : public ScratchTest {
 protected:
  RunPlanTest() { Write("top_map.ncd", ""); }
};

TEST_F(RunPlanTest, Plans) {
  const Strings switches = {"-tpr", "trace.prf", "-tf", "top.t2t", "-gui"};
  const std::pair<const char*, Strings> cases[] = {
      {"-c 1\n", {"top"}},
      {"-n 3 -stopzero\n", {"top"}},
      {"-n 1 -stopzero\n", {"top"}},
      {"-t 4 -n 2 -stopzero -l \b4\t\n", {"top", "-dissorv"}},
      {"-stopzero\n", FullForm("sub/out.ncd", switches)},
      {"-n 2 -t 2147483647 -l 50%d\n", FullForm("sub/out", switches)},
  };
  std::string text;
  Write("sub/x", "");
  for (const auto& [options, arguments] : cases) {
    Write("top.p2t", options);
    ToolRun run(Root());
    run.record.exitCode = 5;  // Success leaves the host's own value alone.
    ASSERT_EQ(run.Plan(arguments), 5) << options;
    text += options + Show(run);
  }
  ExpectGolden(text, "plans.txt");
  EXPECT_TRUE(Exists("sub/out.dir") && !Exists("sub/out.ncd"));
}

TEST_F(RunPlanTest, OutputName) {
  const char* const refusal = "ERROR - vostrand: Output filename <top.dir> must have a \".ncd\" extension.\n";
  const struct {
    const char *given, *one, *several;  // The final name and its stem, or what is said.
  } cases[] = {{"top", "top.ncd top", "top.dir top"},
               {"top.ncd", "top.ncd top", "top.dir top"},
               {"a", "a.ncd a", "a.dir a"},
               {"top.NCD", "top.NCD.ncd top.NCD", "top.NCD.dir top.NCD"},
               {"./b/c.ncd", "./b/c.ncd c", "./b/c.dir c"},
               {"top.dir.ncd", "top.dir.ncd top.dir", "top.dir.dir top.dir"},
               {"b/.ncd", "b/.ncd ", "b/.dir "},
               {"top.dir", refusal, refusal}};
  for (const auto& c : cases) {
    for (const bool several : {false, true}) {
      Write("top.p2t", several ? "-n 2 -s 1\n" : "-s 9\n");
      ToolRun run(Root());
      const int code = run.Plan(FullForm(c.given, {}));
      const std::string name = run.Info().outputDir.getstring(), stem = run.Info().outputName.getstring();
      EXPECT_EQ(code == 3 ? run.logger.err : name + " " + stem, several ? c.several : c.one);
      EXPECT_EQ(run.record.seeds.size(), code == 3 ? 0U : several ? 2U : 1U);
      // Written back before the name is looked at.
      EXPECT_EQ(Read("top.p2t"), several ? "-n 2 -s  2 \n" : "-s  1 \n");
    }
  }
}

class OldOutputTest : public RunPlanTest {
 protected:
  OldOutputTest() { Write("top.p2t", "-n 2\n"); }

  // Plans with or without the removal of old output; returns what stderr got.
  std::string Plan(bool removes) {
    ToolRun run(Root());
    EXPECT_EQ(run.Plan(FullForm("top", removes ? Strings{"-rem"} : Strings{})), 0);
    EXPECT_EQ(run.logger.out.find("Removing") != std::string::npos, removes);
    return run.logger.err;
  }
};

TEST_F(OldOutputTest, IsRemovedOnlyWhereAskedTo) {
  Write("top.dir/5_1.ncd", "");
  fs::create_symlink(Write("kept", ""), Path("top.dir/.link"));
  EXPECT_EQ(Plan(false), "");
  EXPECT_TRUE(Exists("top.dir/5_1.ncd"));
  EXPECT_EQ(Plan(true), "");
  EXPECT_TRUE(fs::is_empty(Path("top.dir")) && Exists("kept"));

  Write("top.dir/5_1.ncd", "");
  Write("top.dir/5_1.dir/5_1.ncd", "");
  fs::create_directory(Path("top.dir/50%d"));
  EXPECT_EQ(Plan(true),
            "WARNING - vostrand: Unable to remove design directory file: 50%d\n"
            "WARNING - vostrand: Unable to remove design directory file: 5_1.dir\n");
  EXPECT_TRUE(Exists("top.dir/5_1.dir/5_1.ncd") && Exists("top.dir/50%d") && !Exists("top.dir/5_1.ncd"));
}

TEST_F(OldOutputTest, AFileOrALinkInItsPlace) {
  Write("top.dir", "a file");
  EXPECT_EQ(Plan(false), "");
  EXPECT_EQ(Read("top.dir"), "a file");
  EXPECT_EQ(Plan(true), "");
  for (const char* const target : {"elsewhere", "nowhere"}) {
    Write("elsewhere/precious", "");
    fs::remove_all(Path("top.dir"));
    fs::create_symlink(target, Path("top.dir"));
    EXPECT_EQ(Plan(true), "");
    EXPECT_TRUE(Exists("elsewhere/precious"));
    EXPECT_EQ(fs::symlink_status(Path("top.dir")).type(), fs::file_type::directory);
  }
}

}  // namespace
