// Sweeps that go on and on, tools that write and write or end as nobody would expect, and a calendar's clock
// that is set while they do. VOSTRAND_SOAK makes megabytes gigabytes.
#include <sys/resource.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "common/host_run.h"

class LongRun : public HostTest {
 protected:
  // The most memory in KiB that a program, or this one when it forked it off, has had after this sweep.
  long PeakAfter(int runs, std::vector<std::string> options, int expected = 0) {
    for (int i = 1; i <= runs; ++i)
      PretendedRun{"5_" + std::to_string(i), 98, 4, 1000 - i}.LeaveIn(Path("w/prepared"));
    Plan("-n " + std::to_string(runs) + " -t 1");
    options.insert(options.end(), {"--toolchain", "tools", "--chdir", "w", "--json", "json", "top"});
    Start(options);
    EXPECT_TRUE(process.waitForFinished(soak ? 1'800'000 : 60'000));
    out = process.readAllStandardOutput().toStdString();
    err = process.readAllStandardError().toStdString();
    EXPECT_EQ(process.exitCode(), expected) << out << err.substr(0, 2000);
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    return usage.ru_maxrss;
  }
  QJsonObject RunOf(int number) const {
    const QJsonDocument result = QJsonDocument::fromJson(QByteArray::fromStdString(Read("json")));
    return result["runs"].toArray()[number - 1].toObject();
  }

  const bool soak = std::getenv("VOSTRAND_SOAK") != nullptr;
};

TEST_F(LongRun, MemoryStaysWhatItIs) {
  const long few = PeakAfter(8, {});
  const auto expect_flat = [&](const char* what, long peak) {
    std::cout << what << ": " << peak << " KiB, eight small runs: " << few << " KiB\n";
    EXPECT_LT(peak, few * 3 / 2 + 8192) << what;
  };
  expect_flat("99 runs", PeakAfter(99, {"--jobs", "4"}));
  EXPECT_NE(out.find("\n99 finished, 0 failed, 0 cancelled\n"), std::string::npos) << out;
  const std::string size = soak ? "1G" : "64M";
  const std::string ending =
      " >big; cp -r prepared/$R.dir top.dir; cat big prepared/$R.par >top.dir/$R.par; exit\n";
  Write("w/behave/5_3", "yes 'a line' | head -c " + size + "; yes 'another line' | head -c " + size + ending);
  Write("w/behave/5_4",
        "tr '\\0' x </dev/zero | head -c " + size + "; (head -c " + size + " /dev/zero; echo)" + ending);
  for (const char* const how : {"--quiet", "--verbose"}) {
    expect_flat(("much text, " + std::string(how)).c_str(), PeakAfter(4, {"--jobs", "2", how}));
    EXPECT_EQ(RunOf(3)["timing_score"].toInt(), 997);
    EXPECT_EQ(RunOf(4)["timing_score"].toInt(), 996);
  }
  EXPECT_NE(err.find("5_3 | a line\n"), std::string::npos);
}

TEST_F(LongRun, EveryEndIsToldAndEveryLineShown) {
  std::vector<std::pair<std::string, int>> ends = {
      {"(trap '' TERM HUP; exec sleep 60) & echo $! >pid_$R", 0},
      {"setsid sh -c 'echo $$ >pid_5_2; sleep 60' & until [ -s pid_5_2 ]; do sleep 0.01; done", 0},
      {"seq 100000", 0},
      {"exec >&- 2>&-; sleep 0.1", 0},
      {"printf 'no line end'", 0},
      {"head -c 100000 /dev/urandom", 0},
      {"printf '\\033]0;title\\007\\033[2J'; exit 255", 255},
      {"trap '' TERM; while :; do sleep 60; done", 124},
      {"kill -STOP $$", 124}};
  for (const int signal : {1, 2, 3, 4, 6, 7, 8, 9, 10, 11, 13, 14, 15})
    ends.emplace_back("kill -" + std::to_string(signal) + " $$; sleep 1", 128 + signal);
  const int count = static_cast<int>(ends.size());
  for (int i = 0; i < count; ++i)
    Write("w/behave/5_" + std::to_string(i + 1), ends[static_cast<std::size_t>(i)].first + "\n");
  PeakAfter(count, {"--jobs", "8", "--timeout", "4s", "--verbose"}, 4);
  for (int i = 0; i < count; ++i)
    EXPECT_EQ(RunOf(i + 1)["status"].toInt(-1), ends[static_cast<std::size_t>(i)].second) << i + 1;
  for (const char* const left : {"w/pid_5_1", "w/pid_5_2"}) EXPECT_TRUE(HasEnded(left)) << left;
  EXPECT_EQ(err.find('\x1b'), std::string::npos);
  std::istringstream text(err);
  int next = 1;
  for (std::string line; std::getline(text, line);) next += line == "5_3 | " + std::to_string(next);
  EXPECT_EQ(next, 100001);
}

TEST_F(LongRun, AClockThatIsSetChangesNothing) {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("LD_PRELOAD", VOSTRAND_CLOCK_SHIM);
  process.setProcessEnvironment(environment);
  for (int i = 1; i <= 4; ++i) Write("w/behave/5_" + std::to_string(i), "sleep 0.4\n");
  PeakAfter(4, {"--jobs", "1", "--timeout", "20s", "--events", "events"});
  std::istringstream events(Read("events"));
  double last = 0;
  for (std::string line; std::getline(events, line);) {
    const QJsonObject event = QJsonDocument::fromJson(QByteArray::fromStdString(line)).object();
    const double spent = event["elapsed_seconds"].toDouble();
    const double at = event["at_seconds"].toDouble();
    EXPECT_TRUE(at >= last && at < 20 && spent >= 0 && spent < 5) << line;
    last = std::max(at, last);
  }
  EXPECT_GT(last, 1.5);
  PeakAfter(4, {"--jobs", "1", "--resume"});
  EXPECT_NE(out.find("4 finished (4 kept from before)"), std::string::npos) << out;
  // A single run's file is new although the clock says that it is an hour old.
  Plan("-l 5");
  Script("tools/par", "sleep 0.6; echo design >\"$4\"\n");
  Script("tools/sorv", "cp prepared/5_1.twr \"$2\"\n");
  for (int i = 0; i < 2; ++i) EXPECT_EQ(Sweep(), 0) << out << err;
  Script("tools/par", "exit 0\n");
  EXPECT_EQ(Sweep(), 6) << "and an old one stays old";
}
