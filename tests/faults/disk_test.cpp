// Disks that are full, limited or read-only, memory that is limited; links and permissions.
#include <sys/mount.h>
#include <unistd.h>

#include <memory>

#include "faults/disturbed_sweep.h"

namespace {

namespace fs = std::filesystem;

class DiskTest : public DisturbedSweepTest {
 protected:
  // Results of several pages, so that the disk fills up at different moments.
  void SetUp() override {
    for (const std::string run : {"5_1", "5_2"})
      Write("pristine/prepared/" + run + ".dir/" + run + ".pad", std::string(20000, run[2]));
    DisturbedSweepTest::SetUp();
  }
};

}  // namespace

TEST_F(DiskTest, LimitsOfFilesAndMemory) {
  // Blocks of 512 bytes, and KiB; with no memory at all the system kills it.
  for (const auto& [kind, unit] : {std::pair("ulimit -f ", 1), {"ulimit -v ", 3000}})
    for (int limit = 2; limit < 90; limit += Soak() ? 1 : 11) {
      Reset();
      const std::string set = kind + std::to_string(unit * limit);
      Disturb({"sh", "-c", set + "; exec \"$0\" \"$@\"", VOSTRAND_PROGRAM}, set);
    }
}

TEST_F(DiskTest, TheDiskIsFull) {
  fs::remove_all(Path("w"));
  fs::create_directory(Path("w"));
  if (mount("none", Path("w").c_str(), "tmpfs", 0, "size=4m") != 0)
    GTEST_SKIP() << "nothing can be mounted here";
  const std::shared_ptr<void> mounted(nullptr, [this](void*) { umount2(Path("w").c_str(), MNT_DETACH); });
  const auto resize = [&](long kib) {
    const std::string size = "size=" + std::to_string(kib) + "k";
    EXPECT_EQ(mount("none", Path("w").c_str(), "tmpfs", MS_REMOUNT, size.c_str()), 0);
  };
  for (int pages = 0; pages < 60; pages += Soak() ? 1 : 6) {
    for (const auto& entry : fs::directory_iterator(Path("w"))) fs::remove_all(entry.path());
    fs::copy(Path("pristine"), Path("w"), fs::copy_options::recursive);
    const fs::space_info space = fs::space(Path("w"));
    resize(static_cast<long>((space.capacity - space.free) / 1024) + 4 * pages);
    Disturb({VOSTRAND_PROGRAM}, std::to_string(pages) + " pages", [&] { resize(4096); });
  }
}

TEST_F(DiskTest, AFolderMayOnlyBeRead) {
  std::string owners = ": ";
  Texts command = {VOSTRAND_PROGRAM};
  if (geteuid() == 0) {  // Whom no permission stops.
    owners = "chown -R 65534 " + Root() + " && chown 0 ";
    command = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", VOSTRAND_PROGRAM};
  }
  for (const auto& [locked, code] :
       {std::pair<std::string, int>("w", 3), {"w/top.dir", 5}, {"w/.vostrand", 0}}) {
    Reset();
    Write(locked + "/old", "");
    ASSERT_EQ(std::system((owners + Path(locked)).c_str()), 0);
    fs::permissions(Path(locked), fs::perms(0555));
    const std::string folder = Path(locked);
    EXPECT_EQ(Disturb(command, locked, [&] { fs::permissions(folder, fs::perms(0755)); }), code);
  }
}

TEST_F(DiskTest, LinksAndPermissionsSurvive) {
  const std::pair<std::string, int> files[] = {
      {"/top_map.ncd", 0400}, {"/top.prf", 0640}, {"/top.p2t", 0600}, {"/top.ncd", 0644}, {"/top.csv", 0664}};
  for (const auto& [name, mode] : files) {
    const std::string linked = Write("store" + name, Read("pristine" + name));
    fs::permissions(linked, fs::perms(mode));
    fs::remove(Path("pristine" + name));
    fs::create_symlink(linked, Path("pristine" + name));
  }
  Reset();
  EXPECT_EQ(Disturb({VOSTRAND_PROGRAM}, "links"), 0);
  for (const auto& [name, mode] : files) {
    EXPECT_TRUE(fs::is_symlink(Path("w" + name))) << name;
    EXPECT_EQ(fs::status(Path("w" + name)).permissions(), fs::perms(mode)) << name;
  }
}
