#include "ut/cmdargs.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr const char* kSynopsis = "tool {-p <file>} [-rem] [-pr <a.prf>] <in[.ncd]> <out[.ncd]> [--gui]";
int usages = 0;

// What the parser makes of a command line: "help", its error, or the switches and the positional arguments.
std::string Parsed(const std::string& command_line) {
  std::istringstream words("tool " + command_line);
  std::vector<std::string> texts;
  for (std::string word; words >> word;) texts.push_back(word);
  std::vector<char*> argv;
  for (std::string& text : texts) argv.push_back(text.data());
  usages = 0;
  const UT_CMDARGS arguments(
      static_cast<int>(argv.size()), argv.data(), kSynopsis, [] { ++usages; }, 0);

  EXPECT_EQ(usages, arguments.helpShown ? 1 : 0);
  if (arguments.helpShown) return "help";
  if (!arguments.error().empty()) return arguments.error().getstring();
  std::string result;
  for (const char* name : {"-p", "--pr", "-rem", "-gui"}) {
    const UT_SWITCH* given = nullptr;
    for (short n = 0; (given = arguments.getsw(name, n)) != nullptr; ++n)
      result += name + (given->count == 1 ? "=" + std::string(given->values[0]) : std::string()) + " ";
  }
  for (short n = 0; arguments.getarg(n); ++n) result += std::string(*arguments.getarg(n)) + ",";
  return result;
}

}  // namespace

TEST(Cmdargs, CommandLinesAgainstASynopsis) {
  const struct {
    const char *command_line, *result;
  } cases[] = {
      {"-p a.p2t in out", "-p=a.p2t in,out,"},
      {"in -rem --p a.p2t out -gui", "-p=a.p2t -rem -gui in,out,"},  // Any order, one dash or two.
      {"-pr b -p a --pr c in out", "-p=a --pr=b --pr=c in,out,"},
      {"in out", "in,out,"},  // A missing required switch is the caller's business.
      {"-p in out", "Expected 2 arguments besides the switches, but got 1."},
      {"-p -odd in out", "-p=-odd in,out,"},
      {"-p -rem in out", "Switch \"-p\" needs a value."},
      {"in out -p", "Switch \"-p\" needs a value."},
      {"in out -x", "Unknown switch \"-x\"."},
      {"in out -P x", "Unknown switch \"-P\"."},
      {"in out more", "Expected 2 arguments besides the switches, but got 3."},
      {"", "Expected 2 arguments besides the switches, but got 0."},
      {"-h", "help"},
      {"-x in --h", "help"},
  };
  for (const auto& c : cases) EXPECT_EQ(Parsed(c.command_line), c.result) << c.command_line;
}
