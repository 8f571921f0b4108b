// The program on a terminal: whatever it drew on the way, the screen is left with whole lines only.
#include <pty.h>
#include <unistd.h>

#include "common/host_run.h"

TEST_F(HostTest, OnATerminalTheBlockComesAndGoes) {
  int master = -1;
  int slave = -1;
  const winsize size{24, 80, 0, 0};
  ASSERT_EQ(openpty(&master, &slave, nullptr, nullptr, &size), 0);
  Write("w/behave/5_1", "sleep 1.3\n");
  process.setChildProcessModifier([&] { dup2(slave, STDERR_FILENO); });
  setenv("TERM", "xterm", 1);
  setenv("NO_COLOR", "1", 1);
  std::string drawn;
  std::thread reader([&] {
    char bytes[4096];
    for (ssize_t n = 0; (n = read(master, bytes, sizeof bytes)) > 0;)
      drawn.append(bytes, static_cast<std::size_t>(n));
  });
  EXPECT_EQ(Sweep({"--jobs", "1", "--verbose"}), 0);
  close(slave);  // With the program's copies gone the reader comes to the end.
  reader.join();
  close(master);
  EXPECT_NE(drawn.find("5_1  1/2 par  0:01"), std::string::npos) << drawn;
  EXPECT_NE(drawn.find("5_3 | routing 5_3\r\n"), std::string::npos) << drawn;
  const std::size_t last = drawn.rfind("\x1b[J");
  ASSERT_NE(last, std::string::npos) << drawn;
  EXPECT_EQ(drawn.find("\x1b[K", last), std::string::npos) << "no block is drawn behind the last clearing";
  EXPECT_NE(drawn.find("[4/4] 5_4 finished after "), std::string::npos) << drawn;
}
