#include "results/promotion.h"

#include "common/scratch.h"

using namespace orlo::vostrand_lib;
namespace fs = std::filesystem;

namespace {

using PromotionTest = ScratchTest;

TEST_F(PromotionTest, GathersWhatCanBeMoved) {
  Write("out.dir/5_1.ncd", "an older and longer design");
  Write("out.dir/5_1.dir/5_1.ncd", "new");
  Write("out.dir/5_1.dir/.hidden", "");
  fs::create_symlink("nowhere", Path("out.dir/.hidden"));  // Would take the copy to its other end.
  CopySeedResult(Path("out.dir/5_1.dir").c_str(), Path("out.dir/5_1.dir").c_str());
  CopySeedResult(Path("out.dir").c_str(), Path("out.dir/5_1.dir").c_str());
  EXPECT_EQ(Read("out.dir/5_1.ncd"), "new");
  EXPECT_EQ(fs::symlink_status(Path("out.dir/.hidden")).type(), fs::file_type::regular);
  EXPECT_FALSE(Exists("out.dir/5_1.dir"));

  Write("out.dir/logs", "a file of the sub-directory's name");
  Write("out.dir/5_2.ncd/inside", "");  // No file can take this directory's place.
  Write("out.dir/5_2.dir/logs/par.log", "");
  Write("out.dir/5_2.dir/5_2.ncd", "design");
  Write("out.dir/5_2.dir/5_2.twr", "report");
  fs::create_symlink("nowhere", Path("out.dir/5_2.dir/5_2.pad"));
  CopySeedResult(Path("out.dir").c_str(), Path("out.dir/5_2.dir").c_str());
  EXPECT_TRUE(Exists("out.dir/5_2.dir/logs/par.log") && !Read("out.dir/logs").empty());
  EXPECT_EQ(Read("out.dir/5_2.dir/5_2.ncd"), "design");
  EXPECT_EQ(Read("out.dir/5_2.twr"), "report");
  EXPECT_TRUE(fs::is_symlink(Path("out.dir/5_2.dir/5_2.pad")) && !Exists("out.dir/5_2.dir/5_2.twr"));
}

TEST_F(PromotionTest, PromotesTheBestRun) {
  for (const char* const extension : {"par", "ncd", "dly"})
    Write(std::string("out.dir/5_1.") + extension, std::string("best ") + extension);
  for (const char* const older : {"ncd", "pad", "twr"})
    Write(std::string("out.") + older, "older and longer");  // The run has the first of these only.
  const auto promote = [&](const char* best, const std::string& work_dir, const char* directory) {
    return copybestup(best, nullptr, work_dir.c_str(), "out", directory);
  };
  EXPECT_EQ(promote("", Root(), Path("out.dir").c_str()), 1);
  EXPECT_FALSE(Exists("out.par"));
  EXPECT_EQ(promote("5_1", Root(), Path("out.dir").c_str()), 0);
  EXPECT_FALSE(Exists("out.dir/out.par"));  // Nobody wrote a summary.
  const fs::path before = fs::current_path();
  fs::current_path(Root());
  EXPECT_EQ(promote("5_1", "", "out.dir"), 0);  // An empty working directory is the process's own.
  fs::current_path(before);
  const std::pair<const char*, const char*> files[] = {
      {"out.dir/out.par", "best par"}, {"out.par", "best parbest par"}, {"out.ncd", "best ncd"},
      {"out.twr", "older and longer"}, {"out.dly", "best dly"},         {"out.pad", "older and longer"}};
  for (const auto& [name, text] : files) EXPECT_EQ(Read(name), text) << name;
}

}  // namespace
