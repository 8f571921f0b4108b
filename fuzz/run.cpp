// Tool runs: arguments, command lines, plans.
#include <algorithm>
#include <sstream>
#include <vector>

#include "common.h"
#include "host/entry_points.h"
#include "ut/cmdargs.h"

using orlo::kelpn::mparrunner::VOSTRAND_CONTEXT;

namespace {

// An argument vector, one argument a line.
struct Arguments {
  explicit Arguments(std::istream& lines) {
    for (std::string text; std::getline(lines, text);) texts.push_back(text);
    for (std::string& text : texts) argv.push_back(text.data());
    argv.push_back(nullptr);
  }
  int Count() const { return static_cast<int>(texts.size()); }
  std::vector<std::string> texts{"tool"};
  std::vector<char*> argv;
};

struct SilentLogger final : orlo::kelpn::ILogger {
  void onStdout(const char*) override {}
  void onStderr(const char*) override {}
};

// Plans, reports where there is a plan, and ends; returns the plan as text.
std::string RunTool(int argc, char** argv, bool report) {
  SilentLogger logger;
  const std::string work_dir = std::filesystem::current_path();
  VOSTRAND_CONTEXT record;
  record.logger = &logger;
  record.workDir = work_dir.c_str();
  const int code = vostrand_main(argc, const_cast<const char**>(argv), &record);
  Check((code == 0 || code == 1 || code == 3) && record.seeds.size() <= 99);
  std::string plan = std::to_string(code) + "\n";
  for (const auto& seed : record.seeds)
    for (const auto& step : seed.steps) plan.append(seed.name).append(" ").append(step.command) += '\n';
  if (report && code == 0) Check(vostrand_report(&record) == 0);
  Check(vostrand_exit(code, &record) == code && !record.selfContext);
  return plan;
}

}  // namespace

// The parser, with the synopsis in the first line.
void arguments(std::string_view in) {
  std::istringstream lines{std::string(in)};
  std::string synopsis;
  std::getline(lines, synopsis);
  Arguments given(lines);
  const UT_CMDARGS parser(given.Count(), given.argv.data(), synopsis.c_str(), nullptr, 0);
  if (parser.helpShown) return;
  for (const std::string& text : given.texts)
    for (short n = 0; const UT_SWITCH* found = parser.getsw(text.c_str(), n); ++n)
      Check(found->count == (found->values && found->values[0] ? 1 : 0));
  for (short n = 0; char** argument = parser.getarg(n); ++n) Check(*argument != nullptr);
}

// From arguments to the report. They name no folder but the run's own.
void command_line(std::string_view in) {
  std::string text(in);
  std::replace(text.begin(), text.end(), '/', '_');
  std::istringstream lines(text);
  Arguments given(lines);
  const Scratch scratch;
  scratch.Write("a.p2t", "-l 5 -n 2 -t 1 -s 1 -stopzero\n");
  scratch.Write("a_map.ncd", "design\n");
  scratch.Write("a.prf", "PERIOD NET \"clk\" 10 ns ; # w 2\n");
  RunTool(given.Count(), given.argv.data(), true);
}

// What is written back gives the same plan again, and stays but for a "\r", which counts as part of the
// line's end once a "\n" follows it. No report: the level in the file may name any folder.
void par_command_file(std::string_view in) {
  const Scratch scratch;
  scratch.Write("a.p2t", in);
  scratch.Write("a_map.ncd", "design\n");
  std::istringstream design("a");
  Arguments given(design);
  const auto written = [&] {
    std::string text = scratch.Read("a.p2t");
    std::erase(text, '\r');
    return text;
  };
  const std::string plan = RunTool(2, given.argv.data(), false);
  const std::string rewritten = written();
  Check(RunTool(2, given.argv.data(), false) == plan && written() == rewritten);
}
