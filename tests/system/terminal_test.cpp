// The program on a terminal: what it draws, what it leaves, and the keys of its user.
#include <pty.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <mutex>
#include <regex>

#include "common/host_run.h"

namespace {

class TerminalTest : public HostTest {
 protected:
  // Gives the program a terminal of its own, so wide, as standard input and error.
  void Open(unsigned short columns) {
    const winsize size{24, columns, 0, 0};
    ASSERT_EQ(openpty(&master_, &slave_, nullptr, nullptr, &size), 0);
    process.setChildProcessModifier([this] {
      setsid();
      ioctl(slave_, TIOCSCTTY, 0);
      dup2(slave_, STDIN_FILENO);
      dup2(slave_, STDERR_FILENO);
    });
    setenv("TERM", "xterm", 1);
    setenv("NO_COLOR", "1", 1);
    reader_ = std::thread([this] {
      char bytes[4096];
      for (ssize_t n = 0; (n = read(master_, bytes, sizeof bytes)) > 0;) {
        const std::lock_guard lock(drawing_);
        drawn.append(bytes, static_cast<std::size_t>(n));
      }
    });
  }
  void Type(const char* keys) const { EXPECT_EQ(write(master_, keys, strlen(keys)), ssize_t(strlen(keys))); }
  // While the program runs.
  bool IsDrawn(const std::regex& text) {
    const std::lock_guard lock(drawing_);
    return std::regex_search(drawn, text);
  }
  // After the program: with its copies gone the reader comes to the end.
  void Close() {
    close(slave_);
    reader_.join();
    close(master_);
  }

  // On a narrow terminal, while a tool runs that cleans up when it is told to end.
  void PressCtrlC(int presses) {
    Write("w/behave/5_1", CleansUpFor(presses == 1 ? "0.3" : "1.5") + sleeper);
    Open(30);
    StartSweep({"--jobs", "1"});
    ASSERT_TRUE(WaitFor("w/pid_5_1"));
    for (int i = 0; i < presses; ++i) {
      Type("\x03");
      ASSERT_TRUE(WaitFor("w/told"));
    }
    EXPECT_EQ(Wait(), 130);
    Close();
    EXPECT_TRUE(HasEnded("w/pid_5_1"));
    EXPECT_NE(drawn.find("once more ends it at once"), std::string::npos) << drawn;
    const std::size_t status = drawn.find(" running");  // The status line, cut to 29 columns.
    ASSERT_NE(status, std::string::npos) << drawn;
    const std::size_t begin = drawn.rfind('\n', status) + 1;
    EXPECT_LE(drawn.find("\x1b[K", status) - begin, 29U) << drawn;
  }

  std::string drawn;

 private:
  int master_ = -1;
  int slave_ = -1;
  std::mutex drawing_;
  std::thread reader_;
};

}  // namespace

TEST_F(TerminalTest, TheBlockComesAndGoes) {
  Open(80);
  Write("w/behave/5_1", "until [ -e seen ]; do sleep 0.01; done\n");
  StartSweep({"--jobs", "1", "--verbose"});
  const std::regex after_a_while("5_1  1/2 par  0:0[1-9]");
  EXPECT_TRUE(Eventually([&] { return IsDrawn(after_a_while); }, std::chrono::seconds(10)));
  Write("w/seen", "");
  EXPECT_EQ(Wait(), 0);
  Close();
  EXPECT_TRUE(IsDrawn(after_a_while)) << drawn;
  EXPECT_NE(drawn.find("5_3 | routing 5_3\r\n"), std::string::npos) << drawn;
  const std::size_t last = drawn.rfind("\x1b[J");
  ASSERT_NE(last, std::string::npos) << drawn;
  EXPECT_EQ(drawn.find("\x1b[K", last), std::string::npos) << "no block is drawn behind the last clearing";
  EXPECT_NE(drawn.find("[4/4] 5_4 finished after "), std::string::npos) << drawn;
}

// One sweep a test: the thread sanitizer takes no thread behind a fork.
TEST_F(TerminalTest, CtrlCEndsTheRunsKindly) {
  PressCtrlC(1);
  EXPECT_TRUE(Exists("w/cleaned"));
}

TEST_F(TerminalTest, CtrlCTwiceEndsThemAtOnce) {
  PressCtrlC(2);
  EXPECT_FALSE(Exists("w/cleaned"));
}
