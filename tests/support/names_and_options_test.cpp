#include <gtest/gtest.h>

#include <array>

#include "support/file_names.h"
#include "support/option_strings.h"

using namespace orlo::vostrand_lib;

TEST(FileNames, Joined) {
  const std::array<const char*, 3> paths[] = {{"out.dir", "a.par", "out.dir/a.par"},
                                              {"out.dir/", "a.par", "out.dir/a.par"},
                                              {"out.dir", "/tmp/a.par", "/tmp/a.par"},
                                              {"out.dir", "", ""},
                                              {"", "a.par", "a.par"}};
  for (const auto& [directory, name, path] : paths)
    EXPECT_STREQ(GenerateFilePath(directory, name).getstring(), path) << directory << " and " << name;
}

TEST(OptionStrings, ValuesReachToTheNextDash) {
  const std::array<const char*, 3> cases[] = {
      {"-l 5 -n", "-n ", ""},        {"-i 15 -l 5", "-l", " 5"},         {"-l 5\r\n", "-l ", "5\r\n"},
      {"-nx 4 -n 1 -t", "-n ", "1"}, {"-n \b\t 1 \r\n-t 1", "-n ", "1"}, {"-n -1", "-n ", ""},
      {"-l my-level", "-l ", "my"},  {"-n 1 -n 2", "-n ", "1"},          {"", "-n ", ""}};
  for (const auto& [options, option, value] : cases)
    EXPECT_STREQ(GetOptionValue(options, option).getstring(), value) << options << ", " << option;
}
