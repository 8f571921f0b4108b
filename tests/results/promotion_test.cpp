#include "results/promotion.h"

#include "common/scratch.h"
#include "ut/filemanager.h"

using namespace orlo::vostrand_lib;
namespace fs = std::filesystem;

namespace {

class PromotionTest : public ScratchTest {
 protected:
  // Promotes run 5_1 of out.dir to the name "out"; returns what the log got.
  std::string Promote(const std::string& work_dir, const std::string& directory, const char* best = "5_1") {
    ut_stream_handle log = ut_open_stream(Path("log").c_str(), UT_ACCESS_WRITE);
    EXPECT_EQ(copybestup(best, log.get(), work_dir.c_str(), "out", directory.c_str()), *best ? 0 : 1);
    log.reset();
    return Read("log");
  }
  void WriteRun() {
    Write("out.par", "summary\n");
    for (const char* const extension : {"par", "ncd", "twr", "dly"})
      Write(std::string("out.dir/5_1.") + extension, std::string("best ") + extension);
  }
};

TEST_F(PromotionTest, GathersARunsFiles) {
  Write("out.dir/5_1.ncd", "an older and longer design");
  Write("out.dir/5_1.dir/5_1.ncd", "new");
  Write("out.dir/5_1.dir/.hidden", "");
  fs::create_symlink("nowhere", Path("out.dir/.hidden"));  // Would take the copy to its other end.
  CopySeedResult(Path("out.dir/5_1.dir").c_str(), Path("out.dir/5_1.dir").c_str());
  CopySeedResult(Path("out.dir").c_str(), Path("out.dir/5_1.dir").c_str());
  EXPECT_EQ(Read("out.dir/5_1.ncd"), "new");
  EXPECT_EQ(fs::symlink_status(Path("out.dir/.hidden")).type(), fs::file_type::regular);
  EXPECT_FALSE(Exists("out.dir/5_1.dir"));
  Write("out.dir/5_2.dir", "a file");
  CopySeedResult(Path("out.dir").c_str(), Path("out.dir/5_2.dir").c_str());
  CopySeedResult(Path("out.dir").c_str(), Path("out.dir/5_3.dir").c_str());
  EXPECT_EQ(Read("out.dir/5_2.dir"), "a file");
}

TEST_F(PromotionTest, LeavesWhatItCannotMoveWhereItIs) {
  Write("out.dir/logs", "a file of the sub-directory's name");
  Write("out.dir/5_1.ncd/inside", "");  // No file can take this directory's place.
  Write("out.dir/5_1.dir/logs/par.log", "");
  Write("out.dir/5_1.dir/5_1.ncd", "design");
  Write("out.dir/5_1.dir/5_1.twr", "report");
  fs::create_symlink("nowhere", Path("out.dir/5_1.dir/5_1.pad"));
  CopySeedResult(Path("out.dir").c_str(), Path("out.dir/5_1.dir").c_str());
  EXPECT_EQ(Read("out.dir/logs"), "a file of the sub-directory's name");
  EXPECT_TRUE(Exists("out.dir/5_1.dir/logs/par.log"));
  EXPECT_EQ(Read("out.dir/5_1.dir/5_1.ncd"), "design");
  EXPECT_TRUE(fs::is_symlink(Path("out.dir/5_1.dir/5_1.pad")));
  EXPECT_EQ(Read("out.dir/5_1.twr"), "report");
  EXPECT_FALSE(Exists("out.dir/5_1.pad") || Exists("out.dir/5_1.dir/5_1.twr"));
}

TEST_F(PromotionTest, PromotesTheBestRun) {
  WriteRun();
  Write("out.ncd", "an older and longer design");
  Write("out.pad", "older");
  EXPECT_EQ(Promote(Root(), Path("out.dir"), ""), "");
  EXPECT_FALSE(Exists("out.dir/out.par"));
  EXPECT_EQ(Promote(Root(), Path("out.dir")), "Copy 5_1.ncd to out.ncd\n\n\n\n");
  const std::pair<const char*, const char*> files[] = {
      {"out.dir/out.par", "summary\n"}, {"out.par", "summary\nbest par"}, {"out.ncd", "best ncd"},
      {"out.twr", "best twr"},          {"out.dly", "best dly"},          {"out.pad", "older"}};
  for (const auto& [name, text] : files) EXPECT_EQ(Read(name), text) << name;
  EXPECT_FALSE(Exists("out.icf"));
}

TEST_F(PromotionTest, MissingFilesLeaveTheirTargetsAlone) {
  Write("out.dir/5_1.par", "best par");
  Write("out.ncd", "older");
  EXPECT_EQ(copybestup("5_1", nullptr, Root().c_str(), "out", Path("out.dir").c_str()), 0);
  EXPECT_EQ(Read("out.par"), "best par");  // Appended to a summary that nobody wrote.
  EXPECT_FALSE(Exists("out.dir/out.par"));
  EXPECT_EQ(Read("out.ncd"), "older");
}

TEST_F(PromotionTest, AFileOntoItselfIsNotCut) {
  Write("out.par", "report\n");
  Write("out.ncd", "design");
  Promote(Root(), Root() + "/.", "out");
  EXPECT_EQ(Read("out.par"), "report\nreport\n");
  EXPECT_EQ(Read("out.ncd"), "design");
}

TEST_F(PromotionTest, AnEmptyWorkingDirectoryIsTheProcesssOwn) {
  WriteRun();
  const fs::path before = fs::current_path();
  fs::current_path(Root());
  Promote("", "out.dir");
  fs::current_path(before);
  EXPECT_EQ(Read("out.par"), "summary\nbest par");
  EXPECT_EQ(Read("out.ncd"), "best ncd");
}

}  // namespace
