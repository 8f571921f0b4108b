// Every test runs in the locale of its environment, as in a host that has set one. Numbers in files must not
// change with it, so the expectations never do; CTest runs the tests in several.
#include <gtest/gtest.h>

#include <clocale>

int main(int argc, char** argv) {
  std::setlocale(LC_ALL, "");
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
