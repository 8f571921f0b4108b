#include <sstream>
#include <vector>

#include "common/golden.h"
#include "common/scratch.h"
#include "common/tool_run.h"

namespace {

using Strings = std::vector<std::string>;

// One command line a line, arguments separated by ",". "@" stands for the test's folder. A line in brackets
// is a title for the reader of the golden file.
constexpr const char* kCommandLines = R"([short forms]
top
-h
top,-dissorv
-dissorv,top
top,-cst
-cst,top
-cst,-cst
-dissorv,-cst
-cst,-dissorv
top,-h
a,b
gone
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
-p,top.p2t,-log,l.log,-o,o.csv,-pr,a.prf,map.ncd,out,--
map.ncd,out,-log
-p,-log,l.log,map.ncd,out
-log,l.log,map.ncd
a,b,c
[order of the checks]
map.ncd,out,-pr,a.prf.bak,-tpr,t
map.ncd,out,-pr,a.PRF
map.ncd,out,-pr,
map.ncd,out,-tpr,t
map.ncd,out,-log,"
map.ncd,out,-log,l.log
map.ncd,out,-log,l.log,-p,zap
,out,-log,l.log,-p,zap,-o,o.csv
gone,out,-log,l.log,-p,zap,-o,o.csv
gone,out,-log,l.log,-p,zap,-o,o.csv,-pr,a.prf
[log that cannot be created]
-p,top.p2t,-log,folder,-o,o.csv,-pr,a.prf,-rem,map.ncd,out
-p,top.p2t,-log,no/l.log,-o,o.csv,-pr,a.prf,-rem,map.ncd,out
[help]
-h,-pr,x
-log,l.log,a,--h
)";

Strings Split(const std::string& text, char separator) {
  Strings parts;
  std::istringstream stream(text + separator);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

class CommandLineTest : public ScratchTest {
 protected:
  std::string Replaced(std::string text, const std::string& from, const std::string& to) const {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
      text.replace(at, from.size(), to);
    return text;
  }
  // What the run says and plans, without the lines that are alike in all.
  std::string Show(const Strings& arguments) {
    std::filesystem::remove(Path("l.log"));
    ToolRun run(Root());
    std::string text = "  exit code " + std::to_string(run.Plan(arguments)) + "\n";
    for (const std::string& line : Split(run.logger.err + run.logger.out, '\n'))
      if (line.starts_with("ERROR") || line.starts_with("-") || line.starts_with("Usage") ||
          line.starts_with("Rem"))
        text += "  " + line.substr(0, 90) + "\n";
    if (run.logger.out.starts_with("\n  -p <file>")) text += "  option list\n";
    for (const auto& seed : run.record.seeds)
      for (const auto& step : seed.steps) text += "  " + step.command + "\n";
    if (!run.record.seeds.empty())
      text += std::string("  report ") + run.Info().reportFile.getstring() + "\n";
    return text + (Exists("l.log") ? "  " + Read("l.log") : "");
  }
};

TEST_F(CommandLineTest, CommandLines) {
  for (const char* const name : {"top", "-h", "-cst", "a b"}) {
    Write(std::string(name) + ".p2t", "-n 1\n");
    Write(std::string(name) + "_map.ncd", "");
  }
  Write("map.ncd", "");
  Write("m s", "");
  Write("folder/kept", "");
  Write("folder_map.ncd/kept", "");
  std::string text;
  for (const std::string& line : Split(kCommandLines, '\n')) {
    if (line.empty()) continue;
    text += line + "\n";
    if (line[0] != '[') text += Show(Split(Replaced(line, "@", Root()), ','));
  }
  ExpectGolden(Replaced(text, Root(), "@"), "command_lines.txt");
  EXPECT_TRUE(Exists("folder/kept"));
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
  EXPECT_EQ(vostrand_main(1, null_inside, nullptr), 1);
}

}  // namespace
