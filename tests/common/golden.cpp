#include "common/golden.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

void ExpectGolden(const std::string& text, const std::string& name) {
  const std::string path = std::string(VOSTRAND_GOLDEN_DIR) + "/" + name;
  if (std::getenv("VOSTRAND_ACCEPT_GOLDEN")) {
    std::ofstream(path, std::ios::binary) << text;
    return;
  }
  std::ifstream file(path, std::ios::binary);
  ASSERT_TRUE(file) << path << " is missing; scripts/accept-golden.sh writes it";
  std::ostringstream expected;
  expected << file.rdbuf();
  EXPECT_EQ(text, expected.str()) << "differs from " << path;
}
