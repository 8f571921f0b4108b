#include <gtest/gtest.h>

#include <array>

#include "support/file_names.h"
#include "support/option_strings.h"

using namespace orlo::vostrand_lib;

TEST(FileNames, CleanedJoinedAndCut) {
  const std::array<const char*, 2> names[] = {{"\"my design.ncd\"", "my design.ncd"},
                                              {"design.ncd", "design.ncd"},
                                              {"\"", ""},
                                              {"", ""},
                                              {"ab\"", "b"},
                                              {"\"ab", "\"ab"}};  // Only the last character is looked at.
  for (const auto& [name, clean] : names) EXPECT_STREQ(GetCleanFileName(name).getstring(), clean);
  const std::array<const char*, 3> paths[] = {{"out.dir", "a.par", "out.dir/a.par"},
                                              {"out.dir/", "a.par", "out.dir/a.par"},
                                              {"out.dir", "/tmp/a.par", "/tmp/a.par"},
                                              {"out.dir", "", ""},
                                              {"", "a.par", "a.par"},
                                              {"/", "a", "/a"}};
  for (const auto& [directory, name, path] : paths)
    EXPECT_STREQ(GenerateFilePath(directory, name).getstring(), path) << directory << " and " << name;
  EXPECT_TRUE(HasExtension("a.ncd", ".ncd") && !HasExtension("ncd", ".ncd") &&
              !HasExtension("a.NCD", ".ncd"));
  EXPECT_STREQ((WithoutExtension("top.ncd") + WithoutExtension("ncd")).getstring(), "topncd");
}

TEST(OptionStrings, ValuesReachToTheNextDash) {
  const std::array<const char*, 3> cases[] = {{"-l 5 -i 15 -n 1 -t 1", "-n ", "1"},
                                              {"-l 5 -n", "-n ", ""},
                                              {"-l 5 -i 15", "-l", "5"},
                                              {"-i 15 -l 5", "-l", " 5"},
                                              {"-l 5\r\n", "-l ", "5\r\n"},
                                              {"-n \b\t 1 \r\n-t 1", "-n ", "1"},
                                              {"-nx 4 -n 1 -t", "-n ", "1"},
                                              {"-n -1", "-n ", ""},
                                              {"-l my-level -n 1", "-l ", "my"},
                                              {"-n 1 -n 2", "-n ", "1"},
                                              {"", "-n ", ""}};
  for (const auto& [options, option, value] : cases)
    EXPECT_STREQ(GetOptionValue(options, option).getstring(), value) << options << ", " << option;
}

TEST(OptionStrings, ReplacedOptionsKeepTheirPlace) {
  const char* const line = "-l 5 -i 15 -n 1 -t 1 -s 1 -c 1";
  const std::string level(1000, 'L'), with_level = "-l " + level + " -t 1";
  const std::array<const char*, 4> cases[] = {{line, "-n", "3", "-l 5 -i 15 -n 3 -t 1 -s 1 -c 1"},
                                              {line, "-n ", "3", "-l 5 -i 15 -n  3 -t 1 -s 1 -c 1"},
                                              {"-n  3 -t 1", "-n ", "3", "-n  3 -t 1"},
                                              {"-l 5 -c 1", "-c", "2", "-l 5 -c 2 "},
                                              {"-l 5", "-n ", "3", "-l 5"},
                                              {"-n -1 -t 2", "-n ", "1", "-n  1 -1 -t 2"},
                                              {"-n 1 -stopzero", "-stopzero", "", "-n 1 -stopzero  "},
                                              {"-n 1 -n 2", "-n ", "3", "-n  3 -n 2"},
                                              {"-l 5 -t 1", "-l", level.c_str(), with_level.c_str()}};
  for (const auto& [options, option, value, result] : cases) {
    UT_STROBJ rewritten(options);
    ReplaceOption(rewritten, option, value);
    EXPECT_STREQ(rewritten.getstring(), result) << options << ", " << option;
  }
}
