// Each system call of a small sweep fails in turn, of the host and of the supervisor of its first step. A
// sample is taken; VOSTRAND_SOAK=1 takes every call.
#include <random>

#include "faults/disturbed_sweep.h"

namespace {

// The parameter is a call, and how it fails, in turn.
class SystemCallsTest : public DisturbedSweepTest, public ::testing::WithParamInterface<const char*> {
 protected:
  // The installed program, with strace around the supervisor of its first step.
  SystemCallsTest() {
    std::istringstream words(GetParam());
    words >> call_;
    for (std::string error; words >> error;) errors_.push_back(error);
    const auto installed = std::filesystem::path(VOSTRAND_PROGRAM).parent_path().parent_path();
    std::filesystem::copy(installed, Path("p"), std::filesystem::copy_options::recursive);
    std::filesystem::rename(Path("p/bin/vostrand-step"), Path("p/bin/real"));
    Script("p/bin/vostrand-step", "cd " + Root() + "; S=$PWD/p/bin/real; L=$PWD/r_calls; mkdir r_taken && " +
                                      "T=\"strace -DDD -qq -o $L $STRACE\"; cd w; exec $T $S \"$@\"\n");
  }

  Texts OfSupervisor(const std::string& strace) const {
    Reset();
    return {"env", "STRACE=" + strace, Path("p/bin/vostrand")};
  }
  Texts OfHost(const std::string& strace) const {
    Reset();
    return {"sh", "-c", "exec strace -qq -o r_calls " + strace + " \"$0\" \"$@\"", VOSTRAND_PROGRAM};
  }

  // The second sweep in its folder, which begins by removing what the first has left.
  Texts OfHostAgain(const std::string& strace) {
    const Texts command = OfHost(strace);
    EXPECT_EQ(Command({VOSTRAND_PROGRAM}), 0) << err;
    std::filesystem::remove(Path("r.log"));
    // Not to be taken for the second's.
    for (const char* const old : {"w/top.csv", "w/top.par", "w/top.ncd", "w/top.twr", "w/top.pad"})
      std::ofstream(Path(old), std::ios::app) << "old\n";
    return command;
  }

  // Has the calls fail that a sweep makes behind the line with `marker`; how many there are.
  template <typename Traced>
  int FailEach(Traced traced, const std::string& marking, const std::string& marker) {
    EXPECT_EQ(Command(traced("-e trace=" + marking + "," + call_)), 0) << err;
    std::istringstream lines(Read("r_calls"));
    int before = 0;
    int count = 0;
    bool begun = false;
    for (std::string line; std::getline(lines, line);) {
      begun = begun || line.find(marker) != std::string::npos;
      if (line.starts_with(call_ + "(")) ++(begun ? count : before);
    }
    EXPECT_TRUE(begun) << marker;
    const int wanted = Soak() ? count : std::min(count, 2);
    std::mt19937 random(20261123);
    for (int i = 0; i < wanted; ++i) {
      const int low = i * count / wanted;
      const int n = low + static_cast<int>(random() % static_cast<unsigned>((i + 1) * count / wanted - low));
      const std::string& error = errors_[static_cast<std::size_t>(n) % errors_.size()];
      const std::string fault = call_ + ":error=" + error + ":when=" + std::to_string(before + n + 1);
      Disturb(traced("-e trace=" + call_ + " -e inject=" + fault), fault);
    }
    std::cout << "[   FAULTS ] " << wanted << " of " << count << "\n";
    return count;
  }
  std::string call_;
  Texts errors_;
};

}  // namespace

using OfTheHost = SystemCallsTest;
using OfTheSupervisor = SystemCallsTest;

TEST_P(OfTheHost, EachFailsInTurn) {
  const std::string start = "\"/dev/null\", O_RDWR";
  const int first = FailEach([this](const auto& strace) { return OfHost(strace); }, "openat", start);
  const int second = FailEach([this](const auto& strace) { return OfHostAgain(strace); }, "openat", start);
  EXPECT_GT(first + second, 0);
  if (call_ != "openat") return;
  // The older one begins with the very same summary.
  const std::string fault = "openat:error=EIO:when=1";
  EXPECT_EQ(Disturb(OfHostAgain("-P w/top.par -e inject=" + fault), fault), 6);
}

TEST_P(OfTheSupervisor, EachFailsInTurn) {
  const auto traced = [this](const auto& strace) { return OfSupervisor(strace); };
  EXPECT_GT(FailEach(traced, "prctl", "SET_CHILD_SUBREAPER"), 0);
  if (call_ != "openat") return;
  // Each of its children before it becomes the program, told apart by the files that it is about.
  const std::string out_file = Path("w/top.dir/5_1.out");
  for (const std::string& at :
       {std::string("openat -P /dev/null"), std::string("dup2 -P /dev/null"), "openat -P " + out_file,
        "dup2 -P " + out_file, "execve -P " + Path("tools/par")}) {
    const std::string fault = std::string(at).insert(at.find(' '), ":error=EMFILE:when=1");
    const bool of_one_run = at.find(out_file) != std::string::npos;
    EXPECT_EQ(Disturb(traced("-f -e trace=all -e inject=" + fault), fault), of_one_run ? 4 : 5);
  }
}

// The disk, which a thread of its own writes to.
TEST_F(DisturbedSweepTest, SaysWhenTheJournalIsNotOnTheDisk) {
  Reset();
  EXPECT_EQ(Command({"strace", "-f", "-qq", "-o", Path("r_calls"), "-e", "trace=fdatasync", "-e",
                     "inject=fdatasync:error=EIO", VOSTRAND_PROGRAM}),
            0);
  EXPECT_NE(err.find("journal.jsonl: Input/output error"), std::string::npos) << err;
}

const auto name_of = [](const auto& kind) { return std::string(kind.param, std::strcspn(kind.param, " ")); };

INSTANTIATE_TEST_SUITE_P(, OfTheHost,
                         ::testing::Values("openat EMFILE ENOSPC EACCES EIO", "write ENOSPC EIO", "read EIO",
                                           "fsync EIO", "sendto EPIPE ENOBUFS", "recvfrom EIO", "close EIO",
                                           "fchmod EPERM", "copy_file_range ENOSPC EIO",
                                           "rename ENOSPC EACCES", "link ENOSPC EPERM", "linkat EPERM ENOSPC",
                                           "mkdir ENOSPC EACCES", "rmdir EACCES", "unlink EACCES EIO",
                                           "unlinkat EIO EACCES", "newfstatat EACCES EIO", "statx EACCES",
                                           "access EACCES", "getdents64 EIO", "flock ENOLCK", "mmap ENOMEM",
                                           "clone3 EAGAIN ENOMEM", "socketpair EMFILE", "signalfd4 EMFILE",
                                           "eventfd2 EMFILE"),
                         name_of);
// Not close: a call that fails is not made at all, and a pipe's end that stays open would be waited for.
INSTANTIATE_TEST_SUITE_P(, OfTheSupervisor,
                         ::testing::Values("openat EMFILE EACCES", "read EIO", "sendto EPIPE ENOBUFS",
                                           "recvfrom EIO", "newfstatat EIO", "clone EAGAIN", "poll ENOMEM",
                                           "wait4 ECHILD", "signalfd4 EMFILE", "pipe2 EMFILE",
                                           "prctl EINVAL"),
                         name_of);
