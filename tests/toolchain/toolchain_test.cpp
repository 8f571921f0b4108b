// The real tool chain on the example design. Effort 3 throughout: it is the fastest that heeds timing.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "analysis/analyser.h"
#include "common/child_process.h"
#include "common/eventually.h"
#include "common/files.h"
#include "common/text.h"
#include "results/par_result.h"
#include "scoring/timing_report.h"

namespace {

using namespace toolchain;
namespace fs = std::filesystem;

const std::string example = EXAMPLE_FOLDER;

class ToolchainTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    std::string name =
        (fs::temp_directory_path() / "vostrand test XXXXXX").string();  // Blanks must do no harm.
    root = ::mkdtemp(name.data());
    fs::current_path(root);
    ::setenv("VOSTRAND_ENGINE", TOOL_FOLDER "engine", 1);  // For the analyses that this program runs itself.
    Expect(0, "", "vostrand-synth", {example + "two_clock.v", "two_clock", "map.ncd"});
    Write("options", "-l 3 -i 15\n -n 1   -t 1 -s 1 -c 1\n-stopzero");
    fs::create_directory("out");
    Expect(0, "par: 3_1 routed", "par",
           {"-f", "options", "map.ncd", "out/3_1.dir", example + "two_clock.prf", "-gui", "-msg", "f"});
  }
  static void TearDownTestSuite() {
    fs::current_path("/");
    fs::remove_all(root);
  }

  static void Write(const std::string& name, const std::string& text) { std::ofstream(name) << text; }

  static Outcome Run(const std::string& program, const std::vector<std::string>& arguments,
                     const std::string& engine = {}) {
    return toolchain::Run({.program = TOOL_FOLDER + program,
                           .arguments = arguments,
                           .folder = {},
                           .environment = {{"VOSTRAND_ENGINE", engine}},
                           .time_limit = std::chrono::seconds(100)});
  }
  // Runs a program of the tool chain; its output must hold `text`.
  static void Expect(int exit_code, const std::string& text, const std::string& program,
                     const std::vector<std::string>& arguments, const std::string& engine = {}) {
    const Outcome outcome = Run(program, arguments, engine);
    EXPECT_EQ(outcome.exit_code, exit_code) << program << ": " << outcome.output;
    EXPECT_NE(outcome.output.find(text), std::string::npos) << program << ": " << outcome.output;
  }

  static RoutedDesign Routed() {
    return ParseRoutedFile(ReadFile("out/3_1.dir/3_1.ncd", "design"), "3_1.ncd");
  }

  static std::string root;
};

std::string ToolchainTest::root;

TEST_F(ToolchainTest, TheSeedAloneDecidesTheResult) {
  Expect(0, "", "par",
         {"-l", "3", "-i", "15", "-n", "1", "-t", "1", "map.ncd", "a.ncd", example + "two_clock.prf"});
  Expect(0, "", "par", {"-l", "3", "-t", "2", "map.ncd", "b.ncd", example + "two_clock.prf"});
  const std::string first = ReadFile("out/3_1.dir/3_1.ncd", "");
  EXPECT_TRUE(ReadFile("a.ncd", "") == first);
  EXPECT_EQ(ReadFile("a.pad", ""), ReadFile("out/3_1.dir/3_1.pad", ""));
  EXPECT_NE(ReadFile("b.pad", ""), ReadFile("a.pad", ""));
  EXPECT_FALSE(ReadFile("b.ncd", "") == first);

  Expect(0, "", "vostrand-synth", {example + "../two_clock/two_clock.v", "two_clock", "again.ncd"});
  EXPECT_TRUE(ReadFile("again.ncd", "") == ReadFile("map.ncd", ""));
}

// Two programs that know nothing of each other's delays must find the same paths.
TEST_F(ToolchainTest, TheEngineAndTheAnalyserAgree) {
  const RoutedDesign design = Routed();
  Write("clocks.prf", "PERIOD NET \"clk_a\" 20 ns; FREQUENCY NET \"clk_b\" 30 MHz;");
  const auto results =
      Analyse(design, Bind(ReadPreferences("clocks.prf"), design.ports), {.ideal_clocks = true});
  EXPECT_NEAR(*results[0].actual, 1000.0 / design.engine_mhz.at("clk_a"), 0.0001);
  EXPECT_NEAR(*results[1].actual, 1000.0 / design.engine_mhz.at("clk_b"), 0.0001);
}

TEST_F(ToolchainTest, TheLibraryReadsWhatTheyWrite) {
  using namespace orlo::vostrand_lib;
  Write("sorv options", "-v 2\n-stopzero");
  Expect(0, "", "sorv",
         {"-f", "sorv options", "-o", "3_1.twr", "out/3_1.dir/3_1.ncd", example + "two_clock.prf"});
  const RoutedDesign design = Routed();
  const auto preferences = Bind(ReadPreferences(example + "two_clock.prf"), design.ports);
  const auto results = Analyse(design, preferences, {.ideal_clocks = false, .paths = 2});
  const TimingSummary setup = Summarise(results, &PreferenceTiming::setup);

  ParScoreVal row;
  row.name = "3_1";
  ASSERT_TRUE(GetParResult("out/3_1.par", row));
  EXPECT_EQ(row.score, setup.score);
  std::istringstream words{std::string(row.line.view())};
  std::string word[9];
  for (std::string& next : word) words >> next;
  EXPECT_EQ(word[2], "0");
  EXPECT_EQ(word[3], Format("%.3f", *setup.worst_slack));
  EXPECT_EQ(word[5], Format("%.3f", *Summarise(results, &PreferenceTiming::hold).worst_slack));
  EXPECT_EQ(word[8], "Complete");

  ResultsMap found;
  EXPECT_EQ(GetPrfResultVal("3_1.twr", found).view(), Format(" %ld", setup.score));
  ASSERT_EQ(found.size(), preferences.size());
  for (std::size_t i = 0; i < preferences.size(); ++i) {
    const Preference& preference = preferences[i].preference;
    const std::string text = preference.text.substr(0, preference.text.size() - 1);
    const auto result = std::find_if(found.begin(), found.end(),
                                     [&](const auto& entry) { return entry.second.prefText.view() == text; });
    ASSERT_NE(result, found.end()) << text;
    EXPECT_NEAR(result->second.constraintPeriod, preference.Nanoseconds(), 0.001);
    EXPECT_NEAR(result->second.actualPeriod, *results[i].actual, 0.001);
    for (const TimingPath& path : results[i].paths) {  // A listing must add up to what it explains.
      double sum = 0.0;
      for (const TimingPath::Step& step : path.steps) sum += step.delay;
      EXPECT_NEAR(sum, path.total, 0.0001) << text;
    }
  }
}

TEST_F(ToolchainTest, Errors) {
  const std::string prf = example + "two_clock.prf";
  Write("bad", "-l 3\n-x 1");
  Write("two", "-n 2");
  Write("level", "  -l my_level");
  Write("words", "-l 3 more");
  Write("net.prf", "PERIOD NET \"none\" 5 ns ;");
  Write("wide.v",
        "module wide(input clk, input [120:0] d, output reg q); always @(posedge clk) q <= ^d; endmodule\n");
  Write("gated.v", "module gated(input c, e, d, output reg q); always @(posedge c & e) q <= d; endmodule\n");
  const std::string head = "(input c, a, b, output reg o, output p); always @(posedge c) o <= a; assign p = ";
  Write("tri.v", "module tri_net" + head + "b ? o : 1'bz; endmodule\n");
  Write("buffer.v", "module buffer" + head + "a; wire t; bufif1(t, a, b); endmodule\n");
  Write("mis.v", "module mis" + head + "a & bb; endmodule\n");
  Write("two.v", "module two" + head + "a; assign p = b; wire unused = oo; endmodule\n");
  Write("a[1].v", "");
  Write("wrong.v", "module wrong(input a output b); endmodule\n");
  Expect(0, "", "vostrand-synth", {"wide.v", "wide", "wide.ncd"});
  Expect(0, "", "vostrand-synth", {"gated.v", "gated", "gated.ncd"});
  Write("empty.prf", "");
  fs::create_directory("e.dir");
  Write("e.par", "of an earlier run");

  struct {
    int exit_code;
    const char* message;
    const char* program;
    std::vector<std::string> arguments;
  } const cases[] = {
      {1, "usage: par", "par", {"map.ncd", "e.dir"}},
      {1, "-x 1 map.ncd", "par", {"-x", "1", "map.ncd", "e.dir", prf}},
      {1, "\".dir\" folder", "par", {"map.ncd", "e", prf}},
      {1, "would replace", "par", {"map.ncd", "map.ncd", prf}},
      {2, "bad:2:1: unknown option \"-x\"\n  -x 1\n  ^", "par", {"-f", "bad", "map.ncd", "e.dir", prf}},
      {2, "two:1:4: this program makes one run", "par", {"-f", "two", "map.ncd", "e.dir", prf}},
      {2, "level:1:6: expected a whole number from 1 to 5", "par", {"-f", "level", "map.ncd", "e.dir", prf}},
      {2, "words:1:6: \"more\" is no option", "par", {"-f", "words", "map.ncd", "e.dir", prf}},
      {2, "options file \"none\"", "par", {"-f", "none", "map.ncd", "e.dir", prf}},
      {2, "no synthesised netlist", "par", {"two", "e.dir", prf}},
      {2, "no clock net \"none\"", "par", {"map.ncd", "e.dir", "net.prf"}},
      {2, "which is no input port", "par", {"gated.ncd", "e.dir", "empty.prf"}},
      {3, "GENERIC_IOB", "par", {"wide.ncd", "e.dir", "empty.prf"}},  // More pads than the device has.
      {1, "usage: sorv", "sorv", {"map.ncd", prf}},
      {2, "is not routed", "sorv", {"-o", "e.twr", "map.ncd", prf}},
      {2, "no clock net \"none\"", "sorv", {"-o", "e.twr", "out/3_1.dir/3_1.ncd", "net.prf"}},
      {2, "wrong.v:1", "vostrand-synth", {"wrong.v", "wrong", "wrong.ncd"}},
      {2, "tri.v:1: three-state", "vostrand-synth", {"tri.v", "tri_net", "wrong.ncd"}},
      {2, "three-state", "vostrand-synth", {"buffer.v", "buffer", "wrong.ncd"}},
      {2, "mis.\\bb is used but has no driver", "vostrand-synth", {"mis.v", "mis", "wrong.ncd"}},
      {2, "conflicting drivers", "vostrand-synth", {"two.v", "two", "wrong.ncd"}},
      {1, "none of [ ]", "vostrand-synth", {"a[1].v", "two", "wrong.ncd"}},
      {2, "none", "vostrand-synth", {"wide.v", "none", "wrong.ncd"}},
  };
  for (const auto& [exit_code, message, program, arguments] : cases)
    Expect(exit_code, message, program, arguments);
  for (const char* const name : {"e.par", "e.dir/e.ncd", "e.twr", "wrong.ncd"})
    EXPECT_FALSE(fs::exists(name)) << name;
}

TEST_F(ToolchainTest, TheUsersFilesAreSafe) {
  const std::string preferences = ReadFile(example + "two_clock.prf", "");
  Write("own.par", preferences);
  Write("old.par", "an earlier result");
  Write("opt.par", "-l 3");
  Expect(1, "would replace the input", "par", {"map.ncd", "own.ncd", "own.par"});
  Expect(1, "would replace the input", "par", {"-f", "opt.par", "map.ncd", "opt.ncd", "own.par"});
  EXPECT_EQ(ReadFile("own.par", ""), preferences);
  Expect(2, "cannot read design", "par", {"none.ncd", "old.ncd", "own.par"});
  EXPECT_FALSE(fs::exists("old.par")) << "a failed run leaves no old result either";
  Write("keep.v", ReadFile(example + "two_clock.v", ""));
  Expect(1, "would replace the design", "vostrand-synth", {"keep.v", "two_clock", "keep.v"});

  // To the analyser a path is a piece of script.
  fs::create_directory("t[exit] $x {");
  ::setenv("TMPDIR", (root + "/t[exit] $x {").c_str(), 1);
  Expect(0, "", "sorv", {"-o", "odd.twr", "out/3_1.dir/3_1.ncd", "own.par"});
  fs::copy("keep.v", "-keep.v");
  Expect(0, "", "vostrand-synth", {"-keep.v", "two_clock", "-keep.ncd"});
  ::unsetenv("TMPDIR");

  rlimit limit;
  getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit full = {2000, limit.rlim_max};
  ::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &full);
  Expect(6, "cannot write", "sorv", {"-o", "odd.twr", "out/3_1.dir/3_1.ncd", "own.par"});
  Expect(2, "", "vostrand-synth", {"keep.v", "two_clock", "full.ncd"});
  setrlimit(RLIMIT_FSIZE, &limit);
  EXPECT_FALSE(fs::exists("odd.twr") || fs::exists("full.ncd"));
}

TEST_F(ToolchainTest, AnUnroutableDesignEnds) {
  fs::copy(std::string(TOOL_FOLDER) + "engine", "narrow");
  std::string fabric = ReadFile("narrow/fabric.py", "");
  const std::string wide = "SINGLES, QUADS = 8, 6";
  ASSERT_NE(fabric.find(wide), std::string::npos);
  Write("narrow/fabric.py", fabric.replace(fabric.find(wide), wide.size(), "SINGLES, QUADS = 2, 2"));
  const auto route = [](const char* units) {
    return Run("par", {"-l", "1", "-i", units, "map.ncd", "u.dir", example + "two_clock.prf"}, "narrow");
  };
  Outcome outcome = route("1");
  if (outcome.output.find("routing had not begun") != std::string::npos)
    outcome = route("8");  // A busy machine.
  EXPECT_EQ(outcome.exit_code, 5);
  EXPECT_NE(outcome.output.find("): after "), std::string::npos) << outcome.output;
  EXPECT_NE(outcome.output.find("not routed within "), std::string::npos) << outcome.output;
  EXPECT_FALSE(fs::exists("u.dir"));
  EXPECT_FALSE(fs::exists("u.par"));
}

// The first child of a process, once it runs the program `name`.
pid_t WaitForChild(pid_t parent, const std::string& name) {
  pid_t child = 0;
  const bool runs = Eventually([&] {
    std::string running;
    std::ifstream(Format("/proc/%d/task/%d/children", parent, parent)) >> child;
    std::ifstream(Format("/proc/%d/comm", child)) >> running;
    return child && running == name;
  });
  return runs ? child : 0;
}

bool Ends(pid_t process) {
  return Eventually([&] { return ::kill(process, 0) != 0; }, std::chrono::seconds(10));
}

TEST_F(ToolchainTest, NoEngineOutlivesPar) {
  for (const int number : {SIGTERM, SIGKILL}) {
    const pid_t par = ::fork();
    if (par == 0) {
      ::signal(SIGHUP, SIG_IGN);  // As nohup does.
      ::execl(TOOL_FOLDER "par", "par", "map.ncd", "k.dir", (example + "two_clock.prf").c_str(), nullptr);
      ::_exit(127);
    }
    const pid_t engine = WaitForChild(par, "nextpnr-generic");
    ASSERT_NE(engine, 0);
    ::kill(par, SIGHUP);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    ::kill(par, number);
    int status = 0;
    ::waitpid(par, &status, 0);
    EXPECT_EQ(number == SIGTERM ? WEXITSTATUS(status) - 128 : WTERMSIG(status), number);
    EXPECT_TRUE(Ends(engine)) << "signal " << number;
    EXPECT_FALSE(fs::exists("k.par") || fs::exists("k.dir"));
  }
}

}  // namespace
