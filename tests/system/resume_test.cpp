// Limits and resuming, on the installed program with stand-ins for the tools.
#include <random>

#include "common/host_run.h"

namespace {

class ResumeTest : public HostTest {
 protected:
  // How often each run's place-and-route was started, in run order.
  std::string Starts() const {
    std::string counts;
    for (int run = 1; run <= 4; ++run) {
      const std::string text = Read("w/starts_5_" + std::to_string(run));
      counts += std::to_string(std::count(text.begin(), text.end(), '\n')) + " ";
    }
    return counts;
  }
  void CountStarts(const std::string& then = "") {
    for (int run = 1; run <= 4; ++run)
      Write("w/behave/5_" + std::to_string(run), "echo >>starts_$R\n" + then);
  }
  std::string Journal() const {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(Path("w/.vostrand")))
      if (entry.path().filename() == "journal.jsonl") return entry.path();
    return {};
  }
  // All that a sweep leaves for the user.
  std::string Results() const {
    std::string text;
    for (const char* name : {"w/top.csv", "w/top.log", "w/top.par", "w/top.ncd", "w/top.twr", "w/top.pad"})
      text += Read(name) + "\n--\n";
    return text;
  }
};

}  // namespace

TEST_F(ResumeTest, RunsOnlyWhatHasNotFinished) {
  CountStarts();
  Write("w/behave/5_2", "echo >>starts_$R; [ -f fixed ] || exit 9\n");
  EXPECT_EQ(Sweep(), 4);
  Write("w/fixed", "");
  EXPECT_EQ(Sweep({"--resume"}), 0) << err;
  EXPECT_EQ(Starts(), "1 2 1 1 ");
  EXPECT_NE(out.find("4 finished (3 kept from before), 0 failed"), std::string::npos) << out;
  const std::string resumed = Results();
  EXPECT_EQ(Sweep(), 0);
  EXPECT_EQ(Starts(), "2 3 2 2 ") << "without --resume everything is run";
  EXPECT_EQ(resumed, Results());
}

TEST_F(ResumeTest, ARunIsTheSameOnlyWhenAllThatItIsMadeOfIs) {
  CountStarts();
  EXPECT_EQ(Sweep(), 0);
  EXPECT_EQ(Sweep({"--resume"}), 0);
  EXPECT_EQ(Starts(), "1 1 1 1 ");
  Write("w/top_map.ncd", "another design");
  EXPECT_EQ(Sweep({"--resume"}), 0);
  EXPECT_EQ(Starts(), "2 2 2 2 ");
  Write("w/top.prf", "FREQUENCY NET \"clk_c\" 120.000000 MHz ;\n");
  EXPECT_EQ(Sweep({"--resume"}), 0);
  EXPECT_EQ(Starts(), "3 3 3 3 ");
  Plan("-n 3 -t 2 -s 1");  // 5_2 to 5_4, now with other par command files.
  EXPECT_EQ(Sweep({"--resume"}), 0);
  EXPECT_EQ(Starts(), "3 4 4 4 ");
  Plan("-n 2 -t 2 -s 1");
  EXPECT_EQ(Sweep({"--resume"}), 0);
  EXPECT_EQ(Starts(), "3 4 4 4 ") << "fewer of the same";
  Script("tools/sorv", Read("tools/sorv").substr(10) + "# changed\n");
  EXPECT_EQ(Sweep({"--resume"}), 0);
  EXPECT_EQ(Starts(), "3 5 5 4 ");
}

TEST_F(ResumeTest, RunsAgainWhatItCannotTrust) {
  CountStarts();
  EXPECT_EQ(Sweep(), 0);
  const std::string kept = std::filesystem::path(Journal()).parent_path().string() + "/files/";
  std::filesystem::remove(kept + "5_1.twr");
  std::ofstream(kept + "5_2.dir/5_2.ncd", std::ios::app) << "changed";
  std::filesystem::remove(Path("w/outside"));
  std::string journal = Read(Journal().substr(Root().size() + 1));
  std::ofstream(Journal(), std::ios::app) << "{\"event\":\"run_finished\",\"run\":\"5_4\",\"iden";
  EXPECT_EQ(Sweep({"--resume"}), 0) << err;
  EXPECT_EQ(Starts(), "2 2 1 1 ") << "a torn last line is no line";
  // A journal that names a file elsewhere must not have it written.
  const std::string hex_name = "355f342e6f7574";  // 5_4.out
  journal = Read(Journal().substr(Root().size() + 1));
  for (std::size_t at = journal.find(hex_name); at != std::string::npos; at = journal.find(hex_name, at + 1))
    journal.replace(at, hex_name.size(), "2e2e2f6f757473696465");  // ../outside
  std::ofstream(Journal()) << journal;
  EXPECT_EQ(Sweep({"--resume"}), 0) << err;
  EXPECT_EQ(Starts(), "2 2 1 2 ");
  EXPECT_FALSE(Exists("w/outside"));
}

TEST_F(ResumeTest, TheTimingCommandsBelongToARun) {
  CountStarts();
  Script("tools/sorv", "while [ \"$1\" != -o ]; do shift; done\ncp \"prepared/${2##*/}\" \"$2\"\n");
  Write("w/timing", "-v 1\n");
  ASSERT_EQ(std::system(("touch -d 1965-01-01 " + Path("w/top_map.ncd")).c_str()), 0);
  const std::vector<std::string> arguments = {"-p",  "top.p2t", "-log", "top.log", "-o",          "top.csv",
                                              "-pr", "top.prf", "-tf",  "timing",  "top_map.ncd", "top.ncd"};
  const auto sweep = [&](std::vector<std::string> options) {
    options.insert(options.end(), {"--toolchain", "tools", "--chdir", "w"});
    options.insert(options.end(), arguments.begin(), arguments.end());
    return Run(options);
  };
  EXPECT_EQ(sweep({}), 0) << err;
  EXPECT_EQ(sweep({"--resume"}), 0) << err;
  EXPECT_EQ(Starts(), "1 1 1 1 ");
  Write("w/timing", "-v 2\n");
  EXPECT_EQ(sweep({"--resume"}), 0) << err;
  EXPECT_EQ(Starts(), "2 2 2 2 ");
}

TEST_F(ResumeTest, FindsAStopAgain) {
  Plan("-n 4 -t 1 -stopzero");
  CountStarts();
  Write("w/behave/5_2", "echo >>starts_$R; sed -i 's/ 200 /  0  /' prepared/5_2.par\n");
  EXPECT_EQ(Sweep({"--jobs", "1"}), 0);
  EXPECT_EQ(Sweep({"--jobs", "1", "--resume"}), 0);
  EXPECT_EQ(Starts(), "1 1 0 0 ");
  EXPECT_NE(out.find("2 finished (2 kept from before), 0 failed, 2 cancelled\n"), std::string::npos) << out;
}

TEST_F(ResumeTest, SurvivesBeingKilledAtAnyMoment) {
  EXPECT_EQ(Sweep(), 0);
  const std::string undisturbed = Results();
  std::filesystem::remove_all(Path("w/.vostrand"));
  CountStarts("sleep 0.15\n");
  std::mt19937 random(20261123);  // The same moments in every test run, as far as the machine lets them be.
  int kills = 0;
  for (unsigned attempt = 0; attempt < 40; ++attempt) {
    StartSweep({"--jobs", "2", "--resume"});
    // Ever later, since a busy machine takes longer for all that lies before the first run's end.
    if (process.waitForFinished(static_cast<int>(random() % (400 + 100 * attempt)))) break;
    process.kill();
    process.waitForFinished();
    ++kills;
  }
  EXPECT_EQ(process.exitStatus(), QProcess::NormalExit) << "it never came to its end";
  EXPECT_EQ(process.exitCode(), 0);
  EXPECT_GT(kills, 0);
  EXPECT_EQ(Results(), undisturbed);
}

TEST_F(ResumeTest, ARunWhoseInputChangedMeanwhileIsNotKept) {
  CountStarts();
  Write("w/behave/5_3", "echo >>starts_$R; echo more >>top_map.ncd\n");
  EXPECT_EQ(Sweep({"--jobs", "1"}), 0);
  EXPECT_NE(err.find("top_map.ncd has changed while runs were made from it"), std::string::npos) << err;
  Write("w/top_map.ncd", "design");
  EXPECT_EQ(Sweep({"--resume"}), 0);
  EXPECT_EQ(Starts(), "1 1 2 2 ");
}

TEST_F(ResumeTest, AnInterruptBeforeTheRunsKeepsWhatHadFinished) {
  CountStarts();
  std::filesystem::resize_file(Path("w/top_map.ncd"), 120'000'000);
  Write("w/top.prf", "");
  EXPECT_EQ(Sweep(), 0);
  StartSweep({"--resume"});
  const std::string open_files = "/proc/" + std::to_string(process.processId()) + "/fd";
  EXPECT_TRUE(Eventually([&] {
    std::error_code error;  // Files are closed meanwhile.
    for (const auto& file : std::filesystem::directory_iterator(open_files, error))
      if (std::filesystem::read_symlink(file, error).filename() == "top_map.ncd") return true;
    return false;
  })) << "it never read the design";
  kill(static_cast<pid_t>(process.processId()), SIGINT);
  EXPECT_EQ(Wait(), 130) << err;
  EXPECT_EQ(Sweep({"--resume"}), 0);
  EXPECT_EQ(Starts(), "1 1 1 1 ");
}

TEST_F(ResumeTest, TwoSweepsOfOneDesignDoNotMeet) {
  Write("w/behave/5_1", sleeper);
  StartSweep({"--jobs", "1"});
  ASSERT_TRUE(WaitFor("w/pid_5_1"));
  QProcess second;
  second.setWorkingDirectory(QString::fromStdString(Root()));
  second.start(VOSTRAND_PROGRAM, {"--toolchain", "tools", "--chdir", "w", "top", "-dissorv"});
  EXPECT_TRUE(second.waitForFinished());
  EXPECT_EQ(second.exitCode(), 2);
  EXPECT_TRUE(second.readAllStandardError().contains("another vostrand is at work on this output"));
  // By another name, from another folder.
  std::filesystem::create_directory(Path("other"));
  second.start(VOSTRAND_PROGRAM, {"--chdir", "other", "-p", "../w/top.p2t", "-log", "a.log", "-o", "a.csv",
                                  "-pr", "../w/top.prf", "../w/top_map.ncd", "../w/top"});
  EXPECT_TRUE(second.waitForFinished());
  EXPECT_EQ(second.exitCode(), 2);
  EXPECT_TRUE(second.readAllStandardError().contains("another vostrand is at work on this output"));
  kill(static_cast<pid_t>(process.processId()), SIGTERM);
  EXPECT_EQ(Wait(), 143);
}

TEST_F(ResumeTest, EndsAStepThatTakesTooLongAndTriesAgain) {
  Write("w/behave/5_1", "echo >>starts_$R; [ -f tried ] || { echo $$ >pid_$R; touch tried; sleep 60; }\n");
  Write("w/behave/5_2", "trap '' TERM; echo $$ >pid_$R; sleep 60 & wait; wait\n");
  EXPECT_EQ(Sweep({"--timeout", "2s", "--retries", "1", "--json", "r.json"}), 4);
  EXPECT_TRUE(HasEnded("w/pid_5_1") && HasEnded("w/pid_5_2"));
  EXPECT_NE(out.find("3 finished, 1 failed"), std::string::npos) << out;
  EXPECT_NE(err.find("5_2 failed with 124"), std::string::npos) << err;
  EXPECT_EQ(Starts().substr(0, 2), "2 ");
  EXPECT_NE(Read("r.json").find("\"timed_out\": true"), std::string::npos);
}

TEST_F(ResumeTest, KeepsOnlyTheBestRunsFilesWhenAsked) {
  EXPECT_EQ(Sweep({"--retain", "best"}), 0) << err;
  EXPECT_TRUE(Exists("w/top.dir/5_3.ncd"));
  EXPECT_FALSE(Exists("w/top.dir/5_1.ncd") || Exists("w/top.dir/5_2.twr"));
  EXPECT_EQ(Read("w/top.ncd"), "design of 5_3\n");
  CountStarts();
  EXPECT_EQ(Sweep({"--resume"}), 0);
  EXPECT_EQ(Starts(), "1 1 0 1 ");
}
