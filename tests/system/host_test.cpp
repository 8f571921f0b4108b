// The program as a user runs it, with stand-ins for the tools.
#include "common/host_run.h"

TEST_F(HostTest, RunsThePlanAndNamesTheBest) {
  Write("w/top.dir/5_1.twr", "old");
  EXPECT_EQ(Sweep({"--jobs", "2", "--memory", "1T", "--json", "w/top.p2t.tmpl"}), 0) << err;
  EXPECT_EQ(SummaryOrder(), "5_3 5_4 5_2 5_1 ") << out;
  EXPECT_EQ(CsvOrder(), SummaryOrder());
  EXPECT_NE(
      out.find("\n4 finished, 0 failed, 0 cancelled\n1 of 4 runs met timing; one more run improves the best "
               "by 0.21 on average\nbest: 5_3\n  w/top.ncd\n  w/top.twr\n  w/top.par\n  w/top.pad\n"),
      std::string::npos)
      << out;
  EXPECT_EQ(Read("w/top.ncd"), "design of 5_3\n");
  EXPECT_EQ(Read("w/top.dir/5_2.out"), "routing 5_2\n");
  EXPECT_EQ(err.find("Preference file is"), std::string::npos) << "status lines are for --verbose";
}

// The program knows the names in it, so that no record takes the place of one and the sweep can be resumed.
TEST_F(HostTest, TakesTheFullForm) {
  const auto run = [&](std::vector<std::string> words) {
    for (const char* const word : {"--toolchain", "tools", "--chdir", "w", "-p", "top.p2t", "-log", "a.log",
                                   "-o", "a.csv", "-pr", "top.prf", "top_map.ncd", "a.ncd"})
      words.emplace_back(word);
    return Run(words);
  };
  for (const char* const own : {"top.p2t", "a.log", "a.csv", "top.prf", "top_map.ncd", "a.ncd"})
    EXPECT_EQ(run({"--json", std::string("w/") + own}), 2) << own;
  EXPECT_EQ(run({}), 0) << err;
  EXPECT_EQ(Read("w/a.ncd"), "design of 5_3\n");
  EXPECT_EQ(run({"--resume"}), 0) << err;
  EXPECT_NE(out.find("4 kept"), std::string::npos) << out;
}

TEST_F(HostTest, TellsFailuresApart) {
  Write("w/behave/5_1", "echo no way through; exit 9\n");
  Write("w/behave/5_2", "kill -SEGV $$\n");
  Write("w/behave/5_4", "sleep 60 & echo left one behind\n");
  EXPECT_EQ(Sweep(), 4);
  EXPECT_NE(err.find("5_1 failed with 9 "), std::string::npos) << err;
  EXPECT_NE(err.find("    no way through\n"), std::string::npos) << err;
  EXPECT_NE(err.find("5_2 failed with 139 "), std::string::npos) << err;
  EXPECT_EQ(SummaryOrder(), "5_3 5_4 ") << out;
  EXPECT_NE(Read("w/top.log").find("Failed with error code 139."), std::string::npos);
  for (int i = 1; i <= 4; ++i) Write("w/behave/5_" + std::to_string(i), "exit 255\n");
  EXPECT_EQ(Sweep(), 5);
  EXPECT_EQ(SummaryOrder(), "");
}

TEST_F(HostTest, SaysWhatIsMissing) {
  std::filesystem::remove(Path("tools/par"));
  EXPECT_EQ(Sweep(), 5);
  EXPECT_NE(err.find("5_1: there is no program par in "), std::string::npos) << err;
  Script("tools/par", "exit 0\n");
  EXPECT_EQ(Sweep(), 6) << "runs that leave nothing";
  EXPECT_NE(out.find("missing: w/top.ncd (not there)\n"), std::string::npos) << out;
}

TEST_F(HostTest, KeepsThePlansOrderLikeTheLibraryWhenThereIsNoReportFile) {
  std::filesystem::create_directory(Path("w/top.csv"));
  EXPECT_EQ(Sweep({"--retain", "best"}), 6);
  EXPECT_TRUE(Exists("w/top.dir/5_3.ncd")) << "which run is best is not certain";
  EXPECT_EQ(SummaryOrder(), "5_1 5_2 5_3 5_4 ");
  EXPECT_EQ(Read("w/top.ncd"), "design of 5_1\n");
}

TEST_F(HostTest, NoticesAFullDiskUnderTheReportFile) {
  std::filesystem::create_symlink("/dev/full", Path("w/top.csv"));
  EXPECT_EQ(Sweep(), 6);
  EXPECT_NE(out.find("missing: w/top.csv\n"), std::string::npos) << out;
}

TEST_F(HostTest, PipesInTheResultsPlaceHoldNothingUp) {
  Write("w/behave/5_1", "mkfifo top.par top.twr top.pad top.csv; exit 1\n");
  EXPECT_EQ(Sweep(), 6) << err;
  for (const char* const lost : {"missing: w/top.par", "missing: w/top.twr", "missing: w/top.csv"})
    EXPECT_NE(out.find(lost), std::string::npos) << lost << out;
}

TEST_F(HostTest, StopsAtZero) {
  Plan("-n 4 -t 1 -stopzero");
  Write("w/behave/5_2", "sed -i 's/ 200 /  0  /' prepared/5_2.par\n");
  EXPECT_EQ(Sweep({"--jobs", "1"}), 0) << err;
  EXPECT_NE(out.find("2 finished, 0 failed, 2 cancelled\nstopped: a run meets timing\n1 of 2 runs met "
                     "timing\nbest: 5_2\n"),
            std::string::npos)
      << out;
  EXPECT_EQ(Read("w/top.twr"), Read("w/prepared/5_2.twr")) << "the run that asked for the stop is timed";
}

TEST_F(HostTest, InterruptedSweepReportsWhatFinishedAndLeavesNothingRunning) {
  Write("w/behave/5_2", sleeper);
  StartSweep({"--jobs", "1"});
  ASSERT_TRUE(WaitFor("w/pid_5_2"));
  kill(static_cast<pid_t>(process.processId()), SIGINT);
  EXPECT_EQ(Wait(), 130) << err;
  EXPECT_TRUE(HasEnded("w/pid_5_2"));
  EXPECT_NE(
      out.find("1 finished, 0 failed, 3 cancelled\nstopped: interrupted\n0 of 1 run met timing\nbest: 5_1\n"),
      std::string::npos)
      << out;
  EXPECT_EQ(CsvOrder(), "5_1 ");
}

TEST_F(HostTest, WhatTheCallerIgnoresStaysIgnored) {
  Write("w/behave/5_2", "touch began; while [ ! -f go ]; do sleep 0.01; done\n");
  process.setChildProcessModifier([] { signal(SIGHUP, SIG_IGN); });  // As nohup does.
  StartSweep();
  ASSERT_TRUE(WaitFor("w/began"));
  kill(static_cast<pid_t>(process.processId()), SIGHUP);
  Write("w/go", "");
  EXPECT_EQ(Wait(), 0) << err;
}

TEST_F(HostTest, GivesToolsTheirGraceUnlessAskedTwice) {
  for (const int signals : {1, 2}) {
    Write("w/behave/5_1", CleansUpFor(signals == 1 ? "0.3" : "1.5") + sleeper);
    for (const char* const file : {"w/cleaned", "w/told", "w/pid_5_1"}) std::filesystem::remove(Path(file));
    StartSweep({"--jobs", "1"});
    ASSERT_TRUE(WaitFor("w/pid_5_1"));
    for (int i = 0; i < signals; ++i) {
      kill(static_cast<pid_t>(process.processId()), SIGTERM);
      ASSERT_TRUE(WaitFor("w/told"));
    }
    EXPECT_EQ(Wait(), 143);
    EXPECT_EQ(Exists("w/cleaned"), signals == 1);
    EXPECT_NE(out.find("0 finished, 0 failed, 4 cancelled\n"), std::string::npos) << out;
  }
}

TEST_F(HostTest, NothingOutlivesAKilledSupervisor) {
  // One child in the group of its command, one in a session of its own.
  Write("w/behave/5_1",
        "setsid sleep 60 & echo $! >pid_far; sleep 60 & echo $! >pid.tmp; mv pid.tmp pid_$R; wait\n");
  StartSweep({"--jobs", "1"});
  ASSERT_TRUE(WaitFor("w/pid_5_1"));
  std::system(("pkill -KILL -P " + std::to_string(process.processId())).c_str());
  EXPECT_EQ(Wait(), 4);
  EXPECT_TRUE(HasEnded("w/pid_5_1"));
  EXPECT_TRUE(HasEnded("w/pid_far"));
  EXPECT_NE(err.find("run 5_1: its supervisor ended without an outcome"), std::string::npos) << err;
}

TEST_F(HostTest, AnIdleSupervisorThatIsStoppedOrToldToEndHoldsNothingUp) {
  Plan("-n 2 -t 1 -s 1");
  Write("w/behave/5_1", "while [ ! -f go ]; do sleep 0.01; done\n");
  for (const std::string signal : {"STOP", "TERM"}) {
    std::filesystem::remove(Path("w/go"));
    std::filesystem::remove(Path("w/top.dir/5_2.twr"));
    StartSweep({"--jobs", "2"});
    ASSERT_TRUE(WaitFor("w/top.dir/5_2.twr"));
    const std::string host = std::to_string(process.processId());
    const std::string told = Path("told_") + signal;
    std::system(("for i in $(seq 300); do for p in $(pgrep -P " + host +
                 "); do pgrep -P $p >/dev/null || { sleep 0.2; kill -" + signal + " $p && touch " + told +
                 "; }; done; [ -e " + told + " ] && break; sleep 0.05; done")
                    .c_str());
    Write("w/go", "");
    EXPECT_EQ(Wait(), 0) << signal << err;
    EXPECT_TRUE(Exists("told_" + signal));
  }
}

TEST_F(HostTest, OneRunIsASingleDesignFile) {
  Plan("-l 5");
  Script("tools/par", "echo routing; echo design >\"$4\"\n");
  Script("tools/sorv", "cp prepared/5_1.twr \"$2\"\n");
  Write("w/top.ncd", "old");
  std::string result = Read("w/prepared/5_4.par");  // Meets timing, and is not this run's.
  Write("w/top.par", result.replace(result.find("5_4   *"), 3, "5_1"));
  EXPECT_EQ(Sweep(), 0) << err;
  EXPECT_NE(out.find(" no result\n"), std::string::npos) << out;
  EXPECT_NE(out.find("best: 5_1\n  w/top.ncd\n  w/top.twr\n"), std::string::npos) << out;
  EXPECT_EQ(Read("w/top.out"), "routing\n");
  // Nothing is promoted, so that the design may have the result's name.
  std::filesystem::create_directory(Path("w/out"));
  EXPECT_EQ(Run({"--toolchain", "tools", "--json", "w/top_map.out", "--chdir", "w", "-p", "top.p2t", "-log",
                 "l.log", "-o", "r.csv", "-pr", "top.prf", "top_map.ncd", "out/top_map.ncd"}),
            0)
      << err;
}

TEST_F(HostTest, AnEarlierSweepsFilesAreNoResult) {
  Plan("-l 5");
  Script("tools/par", "exit 0\n");
  Script("tools/sorv", "exit 0\n");
  for (const std::string date : {"1965-01-01", "2300-01-01"}) {
    Write("w/top.ncd", "old");
    ASSERT_EQ(std::system(("touch -d " + date + " " + Path("w/top.ncd")).c_str()), 0);
    EXPECT_EQ(Sweep(), 6) << date << out;
  }
}

TEST_F(HostTest, AnEarlierSweepsRunsAreNoResult) {
  EXPECT_EQ(Sweep(), 0);
  std::this_thread::sleep_for(std::chrono::milliseconds(50));  // A file system's clock is coarse.
  Script("tools/par", "exit 0\n");
  Script("tools/sorv", "exit 0\n");
  EXPECT_EQ(Sweep(), 6);
  EXPECT_NE(out.find("missing: w/top.ncd (the best run's is not there)\n"), std::string::npos) << out;
  EXPECT_EQ(out.find("  w/top.ncd\n"), std::string::npos) << out;
}

TEST_F(HostTest, GoesOnWhenNobodyReadsAndSaysWhenTheResultIsLost) {
  Write("w/go.sh", "'" VOSTRAND_PROGRAM
                   "' --toolchain tools --chdir w top 2>&1 >/dev/full | head -c 1\n"
                   "exec '" VOSTRAND_PROGRAM "' --toolchain tools --chdir w top >/dev/full\n");
  process.setWorkingDirectory(QString::fromStdString(Root()));
  process.start("sh", {"w/go.sh"});
  EXPECT_EQ(Wait(), 6) << err;
  EXPECT_EQ(CsvOrder(), "5_3 5_4 5_2 5_1 ");
}

TEST_F(HostTest, NothingOutlivesAKilledHost) {
  Write("w/behave/5_1", "trap '' TERM\nsleep 60 & echo $! >pid.tmp; mv pid.tmp pid_$R; wait\n");
  StartSweep({"--jobs", "1"});
  ASSERT_TRUE(WaitFor("w/pid_5_1"));
  process.kill();
  process.waitForFinished();
  EXPECT_TRUE(HasEnded("w/pid_5_1"));
}

TEST_F(HostTest, DryRunShowsThePlanAndTouchesNothing) {
  Write("w/top.dir/5_1.par", "kept");
  const auto before = std::filesystem::last_write_time(Path("w/top.p2t"));
  EXPECT_EQ(Run({"--dry-run", "--chdir", "w", "top"}), 0) << err;
  EXPECT_NE(out.find("5_4\n  par -f top.p2t.tmp3 top_map.ncd top.dir/5_4.dir top.prf  \n"), std::string::npos)
      << out;
  EXPECT_EQ(Read("w/top.p2t"), "-n 4 -t 1 -s 1\n");
  EXPECT_EQ(std::filesystem::last_write_time(Path("w/top.p2t")), before);
  EXPECT_EQ(Read("w/top.dir/5_1.par"), "kept");
  EXPECT_FALSE(Exists("w/top.log") || Exists("w/top.p2t.tmp0"));
  EXPECT_EQ(Run({"--dry-run", "--chdir", "w", "../w/top"}), 0) << err;
  EXPECT_EQ(Run({"--dry-run", Path("w/top")}), 2);
  EXPECT_EQ(Run({"--dry-run", "--chdir", "w", "nosuch"}), 3);
}

TEST_F(HostTest, RefusesBeforeAnythingIsCreated) {
  EXPECT_EQ(Run({"--chdir", "w", "my top"}), 2);
  EXPECT_EQ(Run({"--chdir", "w", "--", "-p", "a\"b"}), 2);
  EXPECT_EQ(Run({"--jobs", "none", "top"}), 2);
  EXPECT_FALSE(Exists("w/my top.log"));
  for (const char* file : {"w/top_map.ncd", "w/../w/top.prf", "w/top.csv", "w/top.ncd"}) {
    const std::string before = Read(file);
    EXPECT_EQ(Sweep({"--events", file}), 2) << file;
    EXPECT_EQ(Read(file), before);
  }
  EXPECT_EQ(Sweep({"--json", "a", "--junit", "./a"}), 2);
  std::filesystem::create_directories(Path("w/top.dir/5_1.dir"));
  for (const char* const file : {"w/top.p2t.tmp0", "w/top.dir/e", "w/top.dir/5_1.dir/e"})
    EXPECT_EQ(Sweep({"--events", file}), 2) << file;
  EXPECT_EQ(Run({"--json", "w/top.twr", "--chdir", "w", "-p", "top.p2t", "-log", "top.log", "-o", "top.csv",
                 "-pr", "top.prf", "top_map.ncd", "../top.ncd"}),
            2);
  std::filesystem::create_directory(Path("w/odd.p2t"));
  EXPECT_EQ(Run({"--chdir", "w", "odd"}), 2);
  EXPECT_EQ(err, "vostrand: cannot read w/odd.p2t\n");
  EXPECT_FALSE(Exists("w/odd.log"));
  Plan("-n 2 -l a/b");
  Write("w/top.dir/5_1.par", "kept");
  EXPECT_EQ(Sweep(), 2);
  EXPECT_NE(err.find("the level \"a/b\" in w/top.p2t"), std::string::npos) << err;
  EXPECT_EQ(Run({"--dry-run", "--chdir", "w", "top"}), 2);
  EXPECT_EQ(Read("w/top.dir/5_1.par"), "kept");
  EXPECT_EQ(Run({}), 1);
  EXPECT_NE(err.find("Usage: vostrand {-p <file>}"), std::string::npos);
  EXPECT_EQ(Run({"--help"}), 0);
  EXPECT_NE(out.find("Sorv command file"), std::string::npos);
}
