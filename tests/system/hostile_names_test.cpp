// Names that mean something to a shell, a terminal, a parser or a file system, wherever one is taken.
#include <QJsonDocument>
#include <QJsonObject>
#include <QXmlStreamReader>
#include <map>
#include <regex>

#include "common/host_run.h"
#include "launch/slurm/job_script.h"
#include "step/outcome_file.h"

using namespace vostrand;
namespace fs = std::filesystem;
using Words = std::vector<std::string>;

const bool soak = std::getenv("VOSTRAND_SOAK") != nullptr;  // Every name in every role.

const Words hostile = [] {
  std::istringstream all(
      "a b\va'b\va\"b\va;touch${IFS}canary;\v$(touch${IFS}canary)\v`touch${IFS}canary`\v&touch${IFS}canary&\v"
      "|touch${IFS}canary\va\nb\va\tb\va\rb\v\x1b[31mred\x1b]0;title\x07\va\x7f\v\u009b31m\v\xff\xfe\v\xc3(\v"
      "\x9b[1m\v..\v.\v-\v--\v-rf\v-n\v--resume\v%s%n%d\v*\v[a]?\v]]>\v\u202egpj\va,b"
      "\v<b>&amp;</script>\v#a\v~\v{a,b}\v!!\va\\\va=b\vx.dir\vx.ncd");
  Words names = {std::string(255, 'x'), std::string(251, 'y'), std::string(247, 'z')};
  for (std::string name; std::getline(all, name, '\v');) names.push_back(name);
  return names;
}();

// Nothing of it does more to a terminal than show itself.
static bool IsTame(const std::string& text) {
  for (const QChar c : QString::fromStdString(text))
    if ((c < u' ' && c != u'\n' && c != u'\t') || (c > u'~' && c < u'\xa0')) return false;
  return text.find("\x9b[1m") == std::string::npos;
}

/// Two runs; beside the working directory lies a neighbour that nobody has named.
class HostileNames : public HostTest {
 protected:
  using Listing = std::map<std::string, std::string>;

  HostileNames() {
    Plan("-n 2 -t 3 -s 1");
    Write("neighbour/5_3.ncd", "precious");
    Write("neighbour/deep/file", "precious");
    fs::create_symlink("file", Path("neighbour/deep/link"));
    neighbour = Snapshot("neighbour");
  }

  // Everything below the folder with its contents; links as links.
  Listing Snapshot(const std::string& folder) const {
    Listing all;
    for (const auto& entry : fs::recursive_directory_iterator(Path(folder))) {
      const std::string name = entry.path().lexically_relative(Path(folder));
      all[name] =
          entry.is_symlink() ? "-> " + fs::read_symlink(entry.path()).string() : Read(folder + "/" + name);
    }
    return all;
  }
  // Through a shell that takes every word as it is: names need not be text.
  int RunRaw(const Words& words, const std::string& program = VOSTRAND_PROGRAM) {
    std::string script = "exec '" + program + "'";
    for (const std::string& word : words)
      script += " '" + std::regex_replace(word, std::regex("'"), "'\\''") + "'";
    Write("run.sh", script);
    process.setWorkingDirectory(QString::fromStdString(Root()));
    process.start("sh", {"run.sh"});
    const int code = Wait();
    EXPECT_TRUE(IsTame(out) && IsTame(err)) << testing::PrintToString(out + err);
    EXPECT_EQ(Snapshot("neighbour"), neighbour);
    for (const auto& entry : fs::recursive_directory_iterator(Root()))
      EXPECT_NE(entry.path().filename(), "canary") << entry.path();
    return code;
  }
  // The full form behind these options, all at their usual names but for what `named` says.
  static Words FullForm(const Words& options, Listing named = {}) {
    named.insert({{"-p", "top.p2t"}, {"-log", "top.log"}, {"-o", "top.csv"}, {"-pr", "top.prf"}});
    named.insert({{"design", "top_map.ncd"}, {"output", "top.ncd"}});
    Words all = {"--toolchain", "tools", "--chdir", "v"};
    all.insert(all.end(), options.begin(), options.end());
    for (const auto& [option, value] : named)
      if (option[0] == '-') all.insert(all.end(), {option, value});
    all.insert(all.end(), {named["design"], named["output"]});
    return all;
  }
  // A working directory with a design of this name.
  void FreshFolder(const std::string& base = "top") const {
    fs::remove_all(Path("v"));
    fs::copy(Path("w"), Path("v"), fs::copy_options::recursive);
    std::error_code too_long;
    for (const char* const end : {"_map.ncd", ".prf", ".p2t"})
      fs::copy_file(Path("w/top") + end, Path("v/") + base + end, too_long);
  }

  Listing neighbour;
};

TEST_F(HostileNames, OfAllThatTheToolArgumentsName) {
  const Words roles = {"design", "output", "-pr", "-p", "-log", "-o", "-tpr", "all"};
  Listing ends = {{"design", "_map.ncd"}, {"-p", ".p2t"}, {"-pr", ".prf"}, {"-tpr", ".prf"}};
  std::map<bool, int> counts;
  for (std::size_t n = 0; n < hostile.size() * roles.size(); ++n) {
    const std::string& name = hostile[n / 8];
    const std::string role = roles[n % 8];
    if (!soak && n % 8 != n / 8 % 8 && (role != "all" || n / 8 % 4 != 1)) continue;
    SCOPED_TRACE(role + " " + testing::PrintToString(name));
    FreshFolder(name);
    const Listing before = Snapshot("v");
    const int code = role == "all" ? RunRaw({"--toolchain", "tools", "--chdir", "v", name})
                                   : RunRaw(FullForm({}, {{role, name + ends[role]}}));
    // In a folder's place there is no report file.
    const bool is_right = code == 0 || (code == 6 && out.find("missing: v/.") != std::string::npos);
    ++counts[is_right];
    if (is_right) {
      EXPECT_TRUE(out.find("2 finished, 0 failed") != out.npos && out.find("\nbest: 5_3\n") != out.npos)
          << out;
    } else {
      EXPECT_TRUE(code >= 1 && code <= 3 && err.size() > 12) << code << "\n" << out << err;
      Listing after = Snapshot("v");
      if (code == 3) after.erase("top.log");  // Where the library says why.
      EXPECT_TRUE(after == before) << "something was made, then refused: " << err;
    }
  }
  EXPECT_TRUE(counts[true] > 20 && counts[false] > 10) << counts[true] << " right, " << counts[false];
}

TEST_F(HostileNames, OfFoldersRecordsRunsAndJobs) {
  const fs::path programs = fs::path(VOSTRAND_PROGRAM).parent_path();
  for (std::size_t n = soak ? 0 : 2; n < hostile.size(); n += soak ? 1 : 3) {
    const std::string& name = hostile[n];
    if (name == "." || name == ".." || name.size() > 247) continue;  // No room for an extension.
    SCOPED_TRACE(testing::PrintToString(name));
    const std::string folder = "x" + std::to_string(n) + "/" + name;
    const std::string toolchain = folder + "/" + name.substr(0, name.find('/'));
    fs::create_directories(Path("r/") + name);
    fs::create_directories(Path(folder));
    fs::copy(Path("w"), Path(folder), fs::copy_options::recursive);
    fs::copy(Path("tools"), Path(toolchain), fs::copy_options::recursive);
    const bool fits =
        name.size() < 200 && name[0] != '-' && name.find_first_of(" '\"\n\t\r\x1b\x7f/") == std::string::npos;
    const std::string level = fits ? name : "5";
    Write(folder + "/behave/" + (fits ? "none" : "5_4"), "exit 7\n");
    Write(folder + "/top.p2t", "-n 2 -t 3\n-l " + level + "\n");
    for (const char* const run : {"_3", "_4"})
      PretendedRun{level + run, 112, 4, 100}.LeaveIn(Path(folder) + "/prepared");
    const auto record = [&](const std::string& kind) { return "r/" + name + kind; };
    Words words = {"--toolchain", toolchain, "--chdir", folder};
    for (const std::string kind : {"json", "events", "junit", "trace", "html"})
      words.insert(words.end(), {"--" + kind, record(kind)});
    words.push_back("top");
    EXPECT_EQ(RunRaw(words), fits ? 0 : 4) << out << err;
    std::istringstream events(Read(record("events")));
    Words objects = {Read(record("json")), Read(record("trace"))};
    for (std::string line; std::getline(events, line);) objects.push_back(line);
    EXPECT_GT(objects.size(), 10u);
    for (const std::string& text : objects)
      EXPECT_TRUE(QJsonDocument::fromJson(QByteArray::fromStdString(text)).isObject()) << text;
    QXmlStreamReader xml(QByteArray::fromStdString(Read(record("junit"))));
    while (!xml.atEnd()) xml.readNext();
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    const std::string page = Read(record("html"));
    EXPECT_TRUE(page.find("amp;</script>") == page.npos && page.find("</html>") != page.npos);
    for (const Words& command :
         {Words{"show", record("json")}, {"explain", record("json")}, {"status", folder}})
      EXPECT_EQ(RunRaw(command, programs / "vostrand-view"), 0) << command[0] << testing::PrintToString(err);
    words.insert(words.begin(), "--resume");
    EXPECT_EQ(RunRaw(words), fits ? 0 : 4) << out << err;
    EXPECT_NE(out.find(fits ? "2 finished (2 kept" : "1 finished (1 kept"), std::string::npos) << out << err;

    // As a cluster would: the same names in the script of a job.
    const std::string at = Path(folder);
    Write(folder + "/tool", "#!/bin/sh\npwd\nprintf '%s\\n' \"$@\"\n");
    fs::permissions(at + "/tool", fs::perms::owner_all);
    JobPlan plan{at, at + "/job", programs / "vostrand-step", at + "/out", {}, 9, {}};
    plan.steps = {{0, {at + "/tool", name, "--", "$0"}}, {2, {at + "/job", name}}};
    const JobFolder job(plan.folder);
    EXPECT_TRUE(job.Make(JobScript(plan)));
    EXPECT_EQ(RunRaw({plan.folder + "/script"}, "sh"), 127) << out << err;
    EXPECT_TRUE(Read(folder + "/out").starts_with(at + "\n" + name + "\n--\n$0\n")) << Read(folder + "/out");
    step::Outcome outcome;
    EXPECT_TRUE(step::ReadOutcome(job.Outcome(2), outcome) && outcome.exit_code == 127);
    EXPECT_TRUE(outcome.message.ends_with("/job: Permission denied"))
        << testing::PrintToString(outcome.message);
  }
}

TEST_F(HostileNames, LinksAreWrittenThroughOnlyWhereTheCommandLineNamesThem) {
  const std::string file = "../neighbour/5_3.ncd";
  // Refused or not, a link and where it leads, what the tools do.
  const std::tuple<bool, std::string, std::string, std::string> cases[] = {
      {true, "top.p2t.tmp0", file, ""},
      {true, "top.par", file, ""},
      {true, "top.dir", "nowhere", ""},
      {true, "top.dir/top.par", "../" + file, ""},
      {false, "top.dir/5_3.par", "../" + file, ""},
      {false, "top.dir/5_3.dir", "../../neighbour", ""},
      {false, "top.dir/5_4.dir", "nowhere", ""},
      {false, "top.dir", "../outside", ""},
      {false, ".vostrand", "../outside", ""},
      {false, "a", "b",
       "ln -s ../../../neighbour/5_3.ncd prepared/$R.dir/$R.dly; ln -s /etc prepared/$R.dir\n"},
      {false, "a", "b",
       "cd top.dir; cp -r ../prepared/$R.* .; mv $R.dir ../../outside; ln -s ../../outside/$R.dir; exit\n"},
      {false, "a", "b", "[ $R = 5_3 ] || { ln -s ../../neighbour top.dir/5_4.dir; exit 3; }\n"}};
  for (const bool removes : {false, true})
    for (const auto& [refused, link, target, behave] : cases) {
      SCOPED_TRACE(link + " -> " + target + (removes ? " removing " : " ") + behave);
      FreshFolder();
      fs::remove_all(Path("outside"));
      Write("outside/kept", "kept");
      fs::create_directories(fs::path(Path("v/" + link)).parent_path());
      fs::create_symlink(target, Path("v/" + link));
      for (const char* const run : {"5_3", "5_4"}) Write(std::string("v/behave/") + run, behave);
      const Listing before = Snapshot("v");
      const int code = RunRaw(FullForm(removes ? Words{"-rem"} : Words()));
      if (refused && !(removes && link.starts_with("top.dir"))) {
        EXPECT_TRUE(code == 2 && err.find(link + " is a link") != err.npos) << code << err;
        EXPECT_TRUE(Snapshot("v") == before);
      } else {
        EXPECT_EQ(code, behave.find("exit 3") == std::string::npos ? 0 : 4) << out << err;
        EXPECT_NE(out.find("\nbest: 5_3\n"), std::string::npos) << out << err;
        EXPECT_EQ(Read("v/top.ncd") + Read("v/top.dir/5_3.twr"),
                  "design of 5_3\n" + Read("w/prepared/5_3.twr"));
      }
      EXPECT_EQ(Read("outside/kept"), "kept");
      EXPECT_EQ(Exists("outside/5_3.dir/5_3.ncd"), behave.starts_with("cd")) << "copied, not moved";
    }
}

// What a sweep writes or removes is an input of it, or leads out where it is not looked for at first.
TEST_F(HostileNames, NoInputIsWrittenOverOrRemoved) {
  const std::tuple<std::string, Words, Listing> cases[] = {
      {"top.ncd", {}, {{"design", "top.ncd"}, {"output", "sub/top.ncd"}}},
      {"top.par", {}, {{"-p", "top.par"}}},
      {"top.dir/d.ncd", {"-rem"}, {{"design", "top.dir/d.ncd"}}},
      {"top.dir/5_3.ncd", {}, {{"design", "top.dir/5_3.ncd"}}},
      {"top.dir/5_3.dir/d.ncd", {}, {{"design", "top.dir/5_3.dir/d.ncd"}}},
      {"top.dir/d.tf", {"-rem"}, {{"-tf", "top.dir/d.tf"}}},
      {"d.ncd", {}, {{"design", "d.ncd"}, {"-o", "d.ncd"}}},
      {"d.tf", {}, {{"-tf", "d.tf"}, {"-log", "./d.tf"}}},
      {"top.p2t.tmp1", {}, {{"-tpr", "top.p2t.tmp1"}}}};
  for (const auto& [input, options, named] : cases) {
    FreshFolder();
    fs::create_directories(Path("v/sub"));
    fs::create_directories(Path("v/top.dir/5_3.dir"));
    fs::copy_file(Path(input == "top.par" ? "w/top.p2t" : "w/top_map.ncd"), Path("v/" + input));
    EXPECT_EQ(RunRaw(FullForm(options, named)), 2) << input << out << err;
    EXPECT_EQ(Read("v/" + input).substr(0, 6), input == "top.par" ? "-n 2 -" : "design") << input;
  }
  FreshFolder();
  fs::create_directories(Path("v/top.dir/5_3.dir"));
  fs::create_symlink("../../top_map.ncd", Path("v/top.dir/5_3.dir/d.ncd"));
  EXPECT_EQ(RunRaw(FullForm({}, {{"design", "top.dir/5_3.dir/d.ncd"}})), 2) << out << err;
  for (const char* const name : {"top.ncd", "top.twr", "top.pad"}) {
    FreshFolder();
    fs::create_directories(Path("v/sub"));
    fs::create_symlink("../neighbour/new", Path(std::string("v/") + name));
    EXPECT_EQ(RunRaw(FullForm({}, {{"output", "sub/top.ncd"}})), 2) << name << out << err;
  }
}

TEST_F(HostileNames, LinksOfRunsThatNeverStartAndOfWhatIsKept) {
  FreshFolder();
  Write("v/behave/5_3", "exit 1\n");
  fs::create_directories(Path("v/top.dir"));
  fs::create_symlink(Path("neighbour"), Path("v/top.dir/5_4.dir"));
  EXPECT_EQ(RunRaw(FullForm({"--jobs", "1", "--fail-fast"})), 5) << out << err;
  fs::remove(Path("v/behave/5_3"));
  EXPECT_EQ(RunRaw(FullForm({})), 0) << out << err;
  for (const auto& entry : fs::directory_iterator(Path("v/.vostrand"))) {
    if (!entry.is_directory()) continue;
    fs::remove_all(entry.path() / "files");  // What is kept for another time lies elsewhere now.
    fs::create_symlink(Path("neighbour"), entry.path() / "files");
  }
  EXPECT_EQ(RunRaw(FullForm({"--resume"})), 0) << out << err;
}
