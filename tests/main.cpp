// Every test runs in the locale of its environment, as in a host that has set one. Numbers in files must not
// change with it, so the expectations never do; CTest runs the tests in several.
#include <gtest/gtest.h>

#include <clocale>
#include <csignal>

int main(int argc, char** argv) {
  std::setlocale(LC_ALL, "");
  // Whoever runs the tests may ignore some, and with them every program started here.
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, SIG_DFL);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
