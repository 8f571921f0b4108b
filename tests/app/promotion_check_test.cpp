// The check on files that the library's own promotion made, and what follows from it.
#include "result/promotion_check.h"

#include <sys/stat.h>

#include <QCoreApplication>
#include <memory>
#include <set>

#include "common/scratch.h"
#include "common/unprivileged.h"
#include "result/retain.h"
#include "results/promotion.h"
#include "resume/run_inputs.h"

using namespace vostrand;
namespace fs = std::filesystem;

class PromotionTest : public ScratchTest {
 protected:
  PromotionTest() {
    for (const char* file : {"5_1.ncd", "5_1.par", "5_1.twr", "5_1.pad", "5_2.ncd", "5_2.out"})
      Write(std::string("out.dir/") + file, file + std::string(90'000, 'x'));
    Write("out.par", "summary\n");
    Promote("out.dir");
  }
  void Promote(const std::string& output_dir) {
    promotion_.output_dir = Path(output_dir);
    orlo::vostrand_lib::copybestup("5_1", nullptr, Root().c_str(), "out", Path(output_dir).c_str());
  }
  PromotionReport Check() const {
    PromotionReport report;
    auto hasher = std::make_unique<FileHasher>();
    CheckPromotion(*hasher, promotion_, [&](const PromotionReport& found) {
      report = found;
      hasher.reset();
    });
    while (hasher) QCoreApplication::processEvents();
    return report;
  }
  std::string Wrong() const {
    std::string text;
    for (const std::string& line : Check().missing) text += line.substr(Path("").size()) + ";";
    return text;
  }

  int argc_ = 0;
  QCoreApplication application_{argc_, nullptr};
  Promotion promotion_{"", Path("out"), "5_1", true, true, 0};
};

TEST_F(PromotionTest, TellsWhatIsNotTheBestRuns) {
  ASSERT_EQ(Wrong(), "");
  Write("out.ncd", Read("out.ncd").replace(70'000, 1, "y"));
  fs::remove(Path("out.twr"));
  Write("out.par", Read("out.dir/5_1.par") + "summary\n");
  fs::resize_file(Path("out.pad"), 4096);  // As on a full disk.
  Write("out.dly", "of an earlier best run");
  EXPECT_EQ(
      Wrong(),
      "out.ncd (differs from the best run's);out.twr (not there);out.par (differs from the best run's);"
      "out.pad (4096 bytes instead of 90007);out.dly (left by an earlier sweep, the best run has none);");
  fs::rename(Path("out.dir"), Path("sub.dir"));  // Elsewhere than the summary is looked for.
  for (const char* name : {"out.par", "out.dly"}) fs::remove(Path(name));
  Promote("sub.dir");
  EXPECT_EQ(Wrong(), "");
  promotion_.multi_run = promotion_.timing = false;
  struct stat old;
  ASSERT_EQ(stat(Path("out.ncd").c_str(), &old), 0);
  promotion_.old_ns = old.st_mtim.tv_sec * 1'000'000'000LL + old.st_mtim.tv_nsec;
  EXPECT_EQ(Wrong(), "out.ncd (older than the sweep);");
}

TEST_F(PromotionTest, HashesPieceByPieceAndCanBeCancelled) {
  ::mkfifo(Path("pipe").c_str(), 0600);
  std::vector<FileRecord> files(3), found;
  files[0].path = Write("abc", "abc");
  files[1].path = Path("pipe");
  files[2].path = Write("big", std::string(5 << 20, 'b'));
  FileHasher hasher;
  for (const int turns : {3, 9}) {
    hasher.Start(files, [&](std::vector<FileRecord> records) { found = std::move(records); });
    for (int turn = 0; turn < turns; ++turn) QCoreApplication::processEvents();
    EXPECT_EQ(found.empty(), turns == 3) << "a megabyte each turn";
    hasher.Cancel();
    EXPECT_EQ(found[0].sha256, "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(found[1].size, -1);
    EXPECT_EQ(found[2].sha256.empty(), turns == 3);
  }
  EXPECT_EQ(ChangedFile(found), "");
  fs::permissions(Root(), fs::perms(0755));
  fs::permissions(files[0].path, fs::perms(0111));  // As a tool may be.
  {
    const Unprivileged unprivileged;
    hasher.Start({files[0]}, [&](std::vector<FileRecord> records) { found = std::move(records); });
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
  }
  EXPECT_EQ(found[0].size, -1);
  EXPECT_EQ(ChangedFile(found), "");
  Write("abc", "abc");
  EXPECT_EQ(ChangedFile(found), files[0].path);
  PromotionReport report;
  CheckPromotion(hasher, promotion_, [&](const PromotionReport& checked) { report = checked; });
  hasher.Cancel();
  EXPECT_FALSE(report.Good()) << "nothing was compared";
}

TEST_F(PromotionTest, RetainsTheBestRunAndWhatIsNotOfARun) {
  const std::vector<std::string> runs = {"5_1", "5_2", "5_3", "out"};
  for (const char* name : {"out.dir/5_2.dir/file", "out.dir/5_22.ncd", "far/file"}) Write(name, "");
  fs::create_directory_symlink(Path("far"), Path("out.dir/5_3.dir"));
  fs::create_directory(Path("out.dir/5_3.ncd"));
  RetainBest(PromotionReport(), promotion_, runs);
  EXPECT_TRUE(Exists("out.dir/5_2.ncd")) << "the check was not good";
  EXPECT_EQ(RetainBest(Check(), promotion_, runs), std::vector<std::string>());
  std::set<std::string> left;
  for (const auto& entry : fs::directory_iterator(Path("out.dir"))) left.insert(entry.path().filename());
  EXPECT_EQ(left, (std::set<std::string>{"5_1.ncd", "5_1.pad", "5_1.par", "5_1.twr", "5_22.ncd", "5_3.ncd",
                                         "out.par"}));
  EXPECT_TRUE(Exists("far/file"));
}
