#pragma once

#include <gtest/gtest.h>
#include <signal.h>

#include <QProcess>

#include "common/eventually.h"
#include "common/pretend_tools.h"
#include "common/scratch.h"

/// The installed program on four runs with stand-ins for the tools: the folder w holds the design, tools the
/// par and sorv. Names are relative to the test's folder, where the program is started.
class HostTest : public ScratchTest {
 protected:
  HostTest() {
    // What a run leaves is prepared; behave/RUN, where there is one, says what else its par does.
    Script("tools/par",
           "R=$(basename \"$4\" .dir)\necho \"routing $R\"\nif [ -f behave/$R ]; then . ./behave/$R; fi\n"
           "cp -r prepared/$R.dir prepared/$R.par \"$(dirname \"$4\")\"\n");
    Script("tools/sorv", "cp \"prepared/$(basename \"$2\")\" \"$2\"\n");
    Write("w/top_map.ncd", "design");
    Write("w/top.prf", "FREQUENCY NET \"clk_c\" 100.000000 MHz ; # w 2 p 3\n");
    Plan("-n 4 -t 1 -s 1");
    const double mhz[] = {98, 104, 112, 107};
    for (int i = 0; i < 4; ++i)
      PretendedRun{"5_" + std::to_string(i + 1), mhz[i], 4, 300 - 100 * i}.LeaveIn(Path("w/prepared"));
  }

  void Script(const std::string& name, const std::string& text) {
    std::filesystem::permissions(Write(name, "#!/bin/sh\n" + text), std::filesystem::perms::owner_all);
  }
  void Plan(const std::string& options) { Write("w/top.p2t", options + "\n"); }

  void Start(const std::vector<std::string>& arguments) {
    QStringList all;
    for (const std::string& argument : arguments) all << QString::fromStdString(argument);
    process.setWorkingDirectory(QString::fromStdString(Root()));
    process.start(VOSTRAND_PROGRAM, all);
    ASSERT_TRUE(process.waitForStarted());
  }
  int Wait() {
    EXPECT_TRUE(process.waitForFinished(30000));
    out = process.readAllStandardOutput().toStdString();
    err = process.readAllStandardError().toStdString();
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
  }
  int Run(const std::vector<std::string>& arguments) {
    Start(arguments);
    return Wait();
  }
  void StartSweep(std::vector<std::string> options = {}) {
    options.insert(options.end(), {"--toolchain", "tools", "--chdir", "w", "top"});
    Start(options);
  }
  int Sweep(const std::vector<std::string>& options = {}) {
    StartSweep(options);
    return Wait();
  }

  bool WaitFor(const std::string& file) {
    return Eventually([&] { return Exists(file); });
  }
  // The tool wrote its process id here; true when it has gone.
  bool HasEnded(const std::string& pid_file) {
    const pid_t pid = std::stoi(Read(pid_file));
    return Eventually([&] { return kill(pid, 0) != 0; });
  }
  // The runs of the report file, best first.
  std::string CsvOrder() const {
    std::istringstream csv(Read("w/top.csv"));
    std::string order;
    for (std::string line; std::getline(csv, line);)
      if (line.size() > 3 && isdigit(line[0]) && isdigit(line[2])) order += "5_" + line.substr(2, 1) + " ";
    return order;
  }
  std::string SummaryOrder() const {
    std::istringstream text(out);
    std::string order;
    for (std::string line; std::getline(text, line);)
      if (line.starts_with(' ') && line.find(" 5_") == 5) order += line.substr(6, 3) + " ";
    return order;
  }

  QProcess process;
  std::string out;
  std::string err;
};

/// What a tool does that, told to end, says so and cleans up for `seconds`.
inline std::string CleansUpFor(const std::string& seconds) {
  return "trap 'touch told; sleep " + seconds + "; echo cleaned >cleaned; exit 1' TERM\n";
}
/// What a tool does that writes its process id to pid_RUN and goes on for long.
inline constexpr const char* sleeper = "echo $$ >pid.tmp; mv pid.tmp pid_$R; sleep 60 & wait\n";
