#include "options/host_options.h"

#include <gtest/gtest.h>

#include "options/units.h"
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
      {{"--jobs", "010", "top"}, 10, {"top"}, ""},
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
      {{"--jobs", "two", "top"}, 0, {}, "--jobs: needs a whole number from 1 to 10000, not two"},
      {{"--chdir", "/no/such/folder", "top"}, 0, {}, "--chdir: Directory does not exist"},
      {{"--timeout", "5 minutes", "top"}, 0, {}, "--timeout: needs a duration such as 90s, 20m or 2h"},
      {{"--memory", "much", "top"}, 0, {}, "--memory: needs a size such as 512M or 4G, not much"},
      {{"--json", "/no/such/folder/x", "top"}, 0, {}, "--json: there is no folder /no/such/folder"},
      {{"--grace", "5s", "top"}, 0, {}, "--grace requires --stop-now"},
      {{"--slurm-args", "-p x", "top"}, 0, {}, "--slurm-args needs --launcher slurm"},
      {{"--quiet", "--verbose", "top"}, 0, {}, "--"},
      {{"--retain", "some", "top"}, 0, {}, "--retain: some not in {all,best}"},
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

TEST(HostOptions, HaveUnits) {
  const Words words = {"--timeout", "20m",      "--memory", "1.5G",    "--stop-now", "--grace",
                       "90",        "--retain", "best",     "--until", "3",          "top"};
  const HostOptions options = ReadCommandLine(words).host;
  EXPECT_EQ(options.timeout_seconds, 1200);
  EXPECT_EQ(options.memory_bytes, 1536LL << 20);
  EXPECT_EQ(options.grace_seconds, 90);
  EXPECT_TRUE(options.retain_best);
  EXPECT_EQ(options.until, 3);
  for (const char* text : {"", "s", "-1s", "1e3s", "inf", "nan", "5d", "1,5h", "9999h"})
    EXPECT_FALSE(ReadDuration(text)) << text;
  EXPECT_EQ(ReadDuration("0.5h"), 1800);
  for (const char* text : {"", "G", "-4G", "0", "4GG", "4X", "9999999T", "4 G"})
    EXPECT_FALSE(ReadSize(text)) << text;
  EXPECT_EQ(ReadSize("64k"), 65536);
  EXPECT_EQ(ReadSize("2MiB"), 2 << 20);
}

TEST(CommandWords, AreSplitByBlanksAndQuotesAlone) {
  EXPECT_EQ(SplitCommand("par -f a.tmp0  b  "), (Words{"par", "-f", "a.tmp0", "b"}));
  EXPECT_EQ(SplitCommand("sorv -msg \"my file\" \"\" $(x) a;b 'c"),
            (Words{"sorv", "-msg", "my file", "", "$(x)", "a;b", "'c"}));
  EXPECT_TRUE(FitsCommandLine("a;b$c\\"));
  for (const char* name : {"a b", "a\tb", "a\"b", "a'b", "a\nb", "a\033[2Jb"})
    EXPECT_FALSE(FitsCommandLine(name)) << name;
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
    for (const int status : expected.statuses) result.runs.emplace_back().record.status = status;
    if (expected.missing) result.missing = {"top.ncd"};
    result.interrupted_by = expected.signal;
    EXPECT_EQ(ExitCode(result), expected.code);
  }
}
