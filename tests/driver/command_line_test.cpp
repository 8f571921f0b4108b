#include <sstream>
#include <vector>

#include "common/golden.h"
#include "common/scratch.h"
#include "common/tool_run.h"

namespace {

// One command line a line, arguments separated by ",". "@" stands for the test's folder. A line in brackets
// is a title for the reader of the golden file.
constexpr const char* kCommandLines = R"([short forms]
top,-dissorv
-h
-dissorv,top
-cst,-cst
-dissorv,-cst
top,-h
folder
[full form: quotes, dashes, order]
-p,top.p2t,-log,l.log,-o,o.csv,-pr,a.prf,map.ncd,out
map.ncd,--p,"a b.p2t",-cst,--log,xl.log",-rem,"out",-o,"o,--dissorv,-pr,"a.prf"
-p,top.p2t,-p,zap,-log,l.log,-o,o.csv,-pr,a.prf,-pr,b.txt,-tpr,t.prf,-tpr,u,map.ncd,out,-tf,-x
[extra options]
-msgset,@/m s,-p,top.p2t,-log,l.log,-o,o.csv,-pr,a.prf,map.ncd,out,--msg,"@/m s",--gui
-msgset,@,-msg,@/gone,-p,top.p2t,-log,l.log,-o,o.csv,-pr,a.prf,map.ncd,out
[does not fit the synopsis]
-p,top.p2t,-log,l.log,-o,o.csv,-pr,a.prf,map.ncd,out,-zap
map.ncd,out,-log
-p,-log,l.log,map.ncd,out
a,b,c
[order of the checks]
map.ncd,out,-pr,a.PRF,-tpr,t
map.ncd,out,-tpr,t
map.ncd,out,-log,"
map.ncd,out,-log,l.log
map.ncd,out,-log,l.log,-p,zap
,out,-log,l.log,-p,zap,-o,o.csv
gone,out,-log,l.log,-p,zap,-o,o.csv
gone,out,-log,l.log,-p,zap,-o,o.csv,-pr,a.prf
-p,top.p2t,-log,folder_map.ncd,-o,o.csv,-pr,a.prf,-rem,map.ncd,out
[help]
-log,l.log,a,--h
)";

class CommandLineTest : public ScratchTest {
 protected:
  std::string Replaced(std::string text, const std::string& from, const std::string& to) const {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
      text.replace(at, from.size(), to);
    return text;
  }
  // What the run says and plans, without the lines that are alike in all.
  std::string Show(const std::vector<std::string>& arguments) {
    std::filesystem::remove(Path("l.log"));
    ToolRun run(Root());
    std::string text = "  exit code " + std::to_string(run.Plan(arguments)) + "\n";
    std::istringstream lines(run.logger.err + run.logger.out);
    for (std::string line; std::getline(lines, line);)
      if (line.starts_with("ERROR") || line.starts_with("-") || line.starts_with("Usage") ||
          line.starts_with("Rem") || line.starts_with("  -p <file>"))
        text += "  " + line.substr(0, 90) + "\n";
    for (const auto& seed : run.record.seeds)
      for (const auto& step : seed.steps) text += "  " + step.command + "\n";
    if (!run.record.seeds.empty())
      text += "  report " + std::string(run.Info().reportFile.getstring()) + "\n";
    return text;
  }
};

TEST_F(CommandLineTest, CommandLines) {
  for (const char* const name : {"top", "-h", "-cst", "a b"}) {
    Write(std::string(name) + ".p2t", "-n 1\n");
    Write(std::string(name) + "_map.ncd", "");
  }
  Write("map.ncd", "");
  Write("m s", "");
  Write("folder_map.ncd/kept", "");
  std::istringstream lines(kCommandLines);
  std::string text;
  for (std::string line; std::getline(lines, line);) {
    text += line + "\n";
    if (line[0] == '[') continue;
    std::vector<std::string> arguments;
    std::istringstream words(Replaced(line, "@", Root()));
    for (std::string word; std::getline(words, word, ',');) arguments.push_back(word);
    text += Show(arguments);
  }
  ExpectGolden(Replaced(text, Root(), "@"), "command_lines.txt");
}

TEST_F(CommandLineTest, HostsMistakes) {
  const char* null_inside[] = {"vostrand", nullptr, "b", nullptr};
  const std::pair<int, const char**> cases[] = {
      {0, null_inside}, {0, nullptr}, {3, nullptr}, {-1, nullptr}, {3, null_inside}};
  for (const auto& [argc, argv] : cases) {
    ToolRun run(Root());
    EXPECT_EQ(vostrand_main(argc, argv, &run.record), 1);
    EXPECT_TRUE(run.logger.out.starts_with("Usage: ")) << run.logger.out;
  }
}

}  // namespace
