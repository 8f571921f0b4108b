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

  // Has the calls fail that a first sweep makes behind the line with `marker`.
  template <typename Traced>
  void FailEach(Traced traced, const std::string& marking, const std::string& marker) {
    ASSERT_EQ(Command(traced("-e trace=" + marking + "," + call_)), 0) << err;
    std::istringstream lines(Read("r_calls"));
    int before = 0;
    int count = 0;
    bool begun = false;
    for (std::string line; std::getline(lines, line);) {
      begun = begun || line.find(marker) != std::string::npos;
      if (line.starts_with(call_ + "(")) ++(begun ? count : before);
    }
    if (count == 0) GTEST_SKIP() << "no such call is made";
    const int wanted = Soak() ? count : std::min(count, 3);
    std::mt19937 random(20261123);
    for (int i = 0; i < wanted; ++i) {
      const int low = i * count / wanted;
      const int n = low + static_cast<int>(random() % static_cast<unsigned>((i + 1) * count / wanted - low));
      const std::string& error = errors_[static_cast<std::size_t>(n) % errors_.size()];
      const std::string fault = call_ + ":error=" + error + ":when=" + std::to_string(before + n + 1);
      Disturb(traced("-e trace=" + call_ + " -e inject=" + fault), fault);
    }
    std::cout << "[   FAULTS ] " << wanted << " of " << count << "\n";
  }
  std::string call_;
  Texts errors_;
};

}  // namespace

TEST_P(SystemCallsTest, OfTheHost) {
  FailEach([this](const auto& strace) { return OfHost(strace); }, "openat", "\"/dev/null\", O_RDWR");
}

TEST_P(SystemCallsTest, OfTheSupervisor) {
  const auto traced = [this](const auto& strace) { return OfSupervisor(strace); };
  if (call_ == "close") return;  // A call that fails is not made at all: a pipe's end would be waited for.
  FailEach(traced, "prctl", "SET_CHILD_SUBREAPER");
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

INSTANTIATE_TEST_SUITE_P(
    , SystemCallsTest,
    ::testing::Values("openat EMFILE ENOSPC EACCES EIO", "write ENOSPC EIO", "read EIO", "fsync EIO",
                      "fdatasync ENOSPC", "sendto EPIPE ENOBUFS", "recvfrom EIO", "close EIO", "fchmod EPERM",
                      "copy_file_range ENOSPC EIO", "rename ENOSPC EACCES", "link ENOSPC EPERM",
                      "linkat EPERM ENOSPC", "mkdir ENOSPC EACCES", "rmdir EACCES", "unlink EACCES EIO",
                      "unlinkat EIO EACCES", "newfstatat EACCES EIO", "statx EACCES", "access EACCES",
                      "getdents64 EIO", "flock ENOLCK", "mmap ENOMEM", "clone EAGAIN", "clone3 EAGAIN ENOMEM",
                      "socketpair EMFILE", "signalfd4 EMFILE", "eventfd2 EMFILE", "pipe2 EMFILE",
                      "prctl EINVAL"),
    [](const auto& kind) { return std::string(kind.param, std::strcspn(kind.param, " ")); });
