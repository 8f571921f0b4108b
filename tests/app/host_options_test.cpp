#include "options/host_options.h"

#include <gtest/gtest.h>

#include "plan/command_words.h"
#include "result/sweep_result.h"

using namespace vostrand;

using Words = std::vector<std::string>;

TEST(HostOptions, StandInFrontOfTheToolArguments) {
  const struct {
    Words arguments;
    int jobs;
    Words tool;
    const char* error;  // Its beginning.
  } cases[] = {
      {{"top"}, 0, {"top"}, ""},
      {{"--jobs", "4", "top", "-dissorv"}, 4, {"top", "-dissorv"}, ""},
      {{"--jobs=4", "--verbose", "--", "--jobs", "x"}, 4, {"--jobs", "x"}, ""},
      {{"--gui", "-p", "a"}, 0, {"--gui", "-p", "a"}, ""},
      {{"-p", "a", "--log", "b"}, 0, {"-p", "a", "--log", "b"}, ""},
      {{"--", "-h"}, 0, {"-h"}, ""},
      {{}, 0, {}, ""},
      {{"--jbs", "4", "top"}, 0, {}, "unknown option --jbs; did you mean --jobs?"},
      {{"top", "--dry-rn"}, 0, {}, "unknown option --dry-rn; did you mean --dry-run?"},
      {{"--mgs", "x"}, 0, {}, "unknown option --mgs; did you mean --msg?"},
      {{"--completely-else"}, 0, {}, "unknown option --completely-else."},
      {{"top", "--jobs", "4"}, 0, {}, "--jobs is a host option: it stands in front"},
      {{"--jobs"}, 0, {}, "--jobs"},
      {{"--jobs", "0", "top"}, 0, {}, "--jobs"},
      {{"--jobs", "two", "top"}, 0, {}, "--jobs: Value two not in range"},
      {{"--chdir", "/no/such/folder", "top"}, 0, {}, "--chdir: Directory does not exist"},
  };
  for (const auto& expected : cases) {
    const CommandLine line = ReadCommandLine(expected.arguments);
    SCOPED_TRACE(testing::PrintToString(expected.arguments) + " " + line.error);
    EXPECT_EQ(line.error.empty(), *expected.error == '\0');
    EXPECT_TRUE(line.error.starts_with(expected.error));
    if (!line.error.empty()) continue;
    EXPECT_EQ(line.host.jobs, expected.jobs);
    EXPECT_EQ(line.tool, expected.tool);
  }
  EXPECT_TRUE(ReadCommandLine({"-h"}).host.show_help);
  EXPECT_TRUE(ReadCommandLine({"--help"}).host.show_help);
}

TEST(CommandWords, AreSplitByBlanksAndQuotesAlone) {
  EXPECT_EQ(SplitCommand("par -f a.tmp0  b  "), (Words{"par", "-f", "a.tmp0", "b"}));
  EXPECT_EQ(SplitCommand("sorv -msg \"my file\" \"\" $(x) a;b 'c"),
            (Words{"sorv", "-msg", "my file", "", "$(x)", "a;b", "'c"}));
  EXPECT_TRUE(FitsCommandLine("a;b$c\\"));
  for (const char* name : {"a b", "a\tb", "a\"b", "a'b", "a\nb"}) EXPECT_FALSE(FitsCommandLine(name)) << name;
}

TEST(ExitCode, HasOnePrecedence) {
  const struct {
    std::vector<int> statuses;
    bool missing;
    int signal;
    int code;
  } cases[] = {{{0, 0}, false, 0, 0},  {{0, 65280}, false, 0, 0}, {{0, 9}, false, 0, 4},
               {{0, 9}, true, 0, 6},   {{9, 9}, true, 0, 5},      {{65280}, false, 0, 5},
               {{0, 9}, true, 2, 130}, {{9}, false, 15, 143}};
  for (const auto& expected : cases) {
    SweepResult result;
    for (const int status : expected.statuses) result.runs.push_back({"", status});
    if (expected.missing) result.missing = {"top.ncd"};
    result.interrupted_by = expected.signal;
    EXPECT_EQ(ExitCode(result), expected.code);
  }
}
