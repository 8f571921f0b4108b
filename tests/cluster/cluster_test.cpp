// The program on a real cluster that the test starts: three nodes, all of them this machine. What the cases
// named Soak check is checked by a quicker case too, or needs more of the machine; scripts/soak.sh runs them.
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <regex>

#include "common/host_run.h"

namespace {

// A tool that sleeps in its first try alone.
constexpr const char* sleeps_once = "[ -f tried_$R ] || { touch tried_$R; sleep 60; }\n";

class ClusterTest : public HostTest {
 protected:
  void SetUp() override { StartCluster("3", "2"); }
  void TearDown() override {
    // The queue is empty after every sweep, however it ended.
    Cluster({"controller", Path("cluster"), "start"});
    EXPECT_EQ(Shell("for i in 1 2 3 4 5; do squeue -h >queue && break; sleep 0.5; done; cat queue"), "");
    if (node_.state() != QProcess::NotRunning) node_.kill();
    node_.waitForFinished();
    Cluster({"stop", Path("cluster")});
  }

  static void Cluster(const QStringList& words) {
    QProcess script;
    script.setStandardOutputFile(QProcess::nullDevice());  // Daemons keep it open.
    script.setStandardErrorFile(QProcess::nullDevice());
    script.start(VOSTRAND_SOURCE_DIR "/tests/cluster/throwaway_cluster.sh", words);
    ASSERT_TRUE(script.waitForFinished() && script.exitCode() == 0) << words.join(' ').toStdString();
  }
  static void Cluster(const std::initializer_list<std::string>& words) {
    QStringList list;
    for (const std::string& word : words) list << QString::fromStdString(word);
    Cluster(list);
  }
  void StartCluster(const std::string& nodes, const std::string& processors) {
    qputenv("SLURM_CONF", QByteArray::fromStdString(Path("cluster/slurm.conf")));
    qputenv("PORT", QByteArray::number(10000 + getpid() % 2500 * 8));
    Cluster({"start", Path("cluster"), nodes, processors});
  }
  void RestartCluster(const std::string& nodes, const std::string& processors) {
    Cluster({"stop", Path("cluster")});
    StartCluster(nodes, processors);
  }
  // One node becomes a process that can crash, or does not see a folder; jobs then go to no other.
  void StartLoneNode(const std::string& hidden) {
    qputenv("HIDE", QByteArray::fromStdString(hidden));
    node_.setStandardErrorFile(QProcess::nullDevice());
    node_.start(VOSTRAND_SOURCE_DIR "/tests/cluster/throwaway_cluster.sh",
                {"lone-node", QString::fromStdString(Path("cluster")), "1"});
    Shell(
        "sleep 0.5; for i in 1 2 3 4 5 6 7 8 9; do [ \"$(sinfo -h -n node1 -o %T)\" = idle ] && break; sleep "
        "0.5; done");
  }

  std::string Shell(const std::string& command) const {
    QProcess shell;
    shell.setWorkingDirectory(QString::fromStdString(Root()));
    shell.start("sh", {"-c", QString::fromStdString(command)});
    shell.waitForFinished();
    return shell.readAllStandardOutput().toStdString();
  }
  void StartSlurmSweep(std::vector<std::string> options = {}) {
    options.insert(options.end(), {"--launcher", "slurm", "--json", "r.json"});
    StartSweep(options);
  }
  int SlurmSweep(const std::vector<std::string>& options = {}) {
    StartSlurmSweep(options);
    return Wait();
  }
  QJsonArray Runs() const {
    return QJsonDocument::fromJson(QByteArray::fromStdString(Read("r.json"))).object()["runs"].toArray();
  }
  std::string Statuses() const {
    std::string text;
    for (const auto& run : Runs()) text += std::to_string(run.toObject()["status"].toInt()) + " ";
    return text;
  }
  QJsonArray Tries(int run) const { return Runs()[run].toObject()["tries"].toArray(); }
  std::string Message(int run, int attempt = 0) const {
    return Tries(run)[attempt].toObject()["message"].toString().toStdString();
  }
  std::string Results() const {
    std::string text;
    for (const char* name : {"w/top.csv", "w/top.log", "w/top.par", "w/top.ncd", "w/top.twr", "w/top.pad"})
      text += Read(name) + "\n--\n";
    return text;
  }
  std::string NodeOf(const std::string& run) const {
    return Shell("squeue -h -o '%j %N' | sed -n 's/^" + run + "[.].* //p' | tr -d '\\n'");
  }

  QProcess node_;
};

}  // namespace

TEST_F(ClusterTest, GivesWhatOneMachineGives) {
  EXPECT_EQ(Sweep(), 0) << err;
  const std::string local = Results();
  EXPECT_EQ(SlurmSweep({"--timeout", "10s", "--trace", "t.json"}), 0) << err;
  EXPECT_EQ(Results(), local);
  for (int run = 0; run < 4; ++run) {
    const QJsonObject par = Tries(run)[0].toObject();
    EXPECT_TRUE(par["node"].toString().startsWith("node")) << run;
    EXPECT_GT(par["queue_seconds"].toDouble(), 0);
    EXPECT_EQ(Tries(run)[1].toObject()["queue_seconds"].toDouble(), 0) << "the job goes on with it";
  }
  EXPECT_NE(Read("t.json").find("5_1 queued"), std::string::npos);
  EXPECT_EQ(Shell("ls w/.vostrand/*/jobs"), "") << "nothing is left of jobs that ended well";
}

TEST_F(ClusterTest, TellsHowToolsEnd) {
  Write("w/behave/5_1", "exit 9\n");
  Write("w/behave/5_2", "kill -SEGV $$\n");
  Write("w/behave/5_3", "exit 255\n");
  Write("w/behave/5_4", "trap '' TERM; sleep 60 & wait; wait\n");
  EXPECT_EQ(SlurmSweep({"--timeout", "1s"}), 5) << err;
  EXPECT_EQ(Statuses(), "9 139 255 124 ");
  EXPECT_EQ(Tries(1)[0].toObject()["signal"].toInt(), SIGSEGV);
}

TEST_F(ClusterTest, RefusesWhatCanNeverRun) {
  EXPECT_EQ(SlurmSweep({"--slurm-args", "--mem=900G"}), 2);
  EXPECT_NE(err.find("the cluster does not take such jobs"), std::string::npos) << err;
  EXPECT_EQ(SlurmSweep({"--slurm-args", "--array=1-3"}), 2);
  EXPECT_FALSE(Exists("w/top.dir"));
}

TEST_F(ClusterTest, SubmitsAgainWhenANodeIsTakenDown) {
  Write("w/behave/5_2", sleeps_once);
  // What a node does that makes room for another job, or is shut down in good order.
  Write("w/behave/5_3", "[ -f told ] || { touch told; kill -TERM $PPID; sleep 60; }\n");
  StartSlurmSweep({"--retries", "0"});
  ASSERT_TRUE(WaitFor("w/tried_5_2"));
  const std::string node = NodeOf("5_2");
  Shell("scontrol update nodename=" + node + " state=down reason=test");
  EXPECT_EQ(Wait(), 0) << err;
  EXPECT_EQ(Statuses(), "0 0 0 0 ");
  EXPECT_NE(Message(1).find("NODE_FAIL on " + node), std::string::npos) << Message(1);
  EXPECT_EQ(Tries(1).size(), 3) << "par twice, sorv";
  EXPECT_EQ(Tries(2).size(), 3);
  EXPECT_NE(Message(2).find("told to end by the cluster"), std::string::npos) << Message(2);
  Write("w/behave/5_2", "touch again_$R; sleep 60\n");
  StartSlurmSweep({"--requeues", "0"});
  ASSERT_TRUE(WaitFor("w/again_5_2"));
  Shell("scontrol update nodename=" + NodeOf("5_2") + " state=down reason=test");
  EXPECT_EQ(Wait(), 4) << err;
  EXPECT_EQ(Runs()[1].toObject()["status"].toInt(), 123) << Statuses();
}

TEST_F(ClusterTest, SoakSubmitsAgainWhenANodeCrashes) {
  if (geteuid() != 0) GTEST_SKIP() << "a node that can crash needs root";
  StartLoneNode("");
  Write("w/behave/5_2", sleeps_once);
  StartSlurmSweep({"--slurm-args", "--exclude=node2"});
  ASSERT_TRUE(WaitFor("w/tried_5_2"));
  if (NodeOf("5_2") == "node3") Shell("scontrol update nodename=node3 state=down reason=test");
  node_.kill();
  EXPECT_EQ(Wait(), 0) << err;
  EXPECT_NE(Message(1).find("NODE_FAIL"), std::string::npos) << Message(1);
}

TEST_F(ClusterTest, SaysThatANodeDoesNotSeeTheFolder) {
  if (geteuid() != 0) GTEST_SKIP() << "hiding a folder from a node needs root";
  StartLoneNode(Path("w"));
  EXPECT_EQ(SlurmSweep({"--slurm-args", "--nodelist=node1"}), 5) << err;
  EXPECT_EQ(Statuses(), "123 123 123 123 ");
  EXPECT_NE(Message(0).find("on node1: the node does not see the working directory"), std::string::npos)
      << Message(0);
}

TEST_F(ClusterTest, OutlivesItsController) {
  Write("w/behave/5_1", "touch began; sleep 3\n");
  StartSlurmSweep();
  ASSERT_TRUE(WaitFor("w/began"));
  Cluster({"controller", Path("cluster"), "stop"});
  Shell("sleep 3");
  Cluster({"controller", Path("cluster"), "start"});
  EXPECT_EQ(Wait(), 0) << err;
  EXPECT_NE(err.find("controller does not answer"), std::string::npos) << err;
  EXPECT_EQ(Statuses(), "0 0 0 0 ");
}

TEST_F(ClusterTest, SubmitsOnceAcrossAControllersAbsence) {
  for (const char* run : {"5_1", "5_2", "5_3", "5_4"})
    Write("w/behave/" + std::string(run), "echo >>starts\n");
  StartSlurmSweep({"--jobs", "1"});
  ASSERT_TRUE(WaitFor("w/starts"));
  Cluster({"controller", Path("cluster"), "stop"});
  Shell("sleep 3");
  Cluster({"controller", Path("cluster"), "start"});
  EXPECT_EQ(Wait(), 0) << err;
  EXPECT_EQ(Read("w/starts"), "\n\n\n\n");
}

// One submission is heard late, one is answered by no number.
TEST_F(ClusterTest, SubmitsOnceWhatNobodyConfirmed) {
  for (const char* run : {"5_1", "5_2", "5_3", "5_4"})
    Write("w/behave/" + std::string(run), "echo >>starts\n");
  Script("bin/sbatch",
         "case $* in *--test-only*) exec /usr/bin/sbatch \"$@\" ;; esac\n"
         "cat >script.$$\n"
         "if mkdir " +
             Path("first") +
             " 2>/dev/null; then\n"
             "  { sleep 2; /usr/bin/sbatch \"$@\" <script.$$; } >/dev/null 2>&1 &\n"
             "  echo Unable to contact >&2\n"
             "  exit 1\n"
             "fi\n"
             "id=$(/usr/bin/sbatch \"$@\" <script.$$) || exit\n"
             "mkdir " +
             Path("second") +
             " 2>/dev/null && echo accepted && exit\n"
             "echo $id\n");
  const QByteArray path = qgetenv("PATH");
  qputenv("PATH", QByteArray::fromStdString(Path("bin:")) + path);
  EXPECT_EQ(SlurmSweep(), 0) << err;
  qputenv("PATH", path);
  EXPECT_TRUE(Exists("second"));
  EXPECT_EQ(Read("w/starts"), "\n\n\n\n");
}

TEST_F(ClusterTest, StopsEarly) {
  RestartCluster("1", "2");
  Plan("-n 4 -t 1 -stopzero");
  Write("w/behave/5_1", "sed -i 's/ 200 /  0  /;s/ 300 /  0  /' prepared/5_1.par; sleep 1\n");
  Write("w/behave/5_2", "sleep 4\n");
  Script("tools/sorv", "case $2 in *5_1*) sleep 3 ;; esac\n" + Read("tools/sorv"));
  EXPECT_EQ(SlurmSweep(), 0) << err;
  EXPECT_EQ(Statuses(), "0 0 65280 65280 ") << "what ran ended, what waited did not begin";
  EXPECT_FALSE(Exists("w/top.dir/5_3.par"));
  Write("w/behave/5_2", "touch began; sleep 60\n");
  EXPECT_EQ(SlurmSweep({"--stop-now"}), 0) << err;
  EXPECT_EQ(Statuses(), "0 65280 65280 65280 ");
}

TEST_F(ClusterTest, LeavesNoJobBehindWhenInterrupted) {
  RestartCluster("1", "2");
  Write("w/behave/5_1", sleeper);
  Write("w/behave/5_2", "trap '' TERM; touch began; sleep 60 & wait; wait\n");
  StartSlurmSweep();
  ASSERT_TRUE(WaitFor("w/pid_5_1") && WaitFor("w/began"));
  process.terminate();
  EXPECT_EQ(Wait(), 143);
  EXPECT_EQ(Statuses(), "65280 65280 65280 65280 ");
  EXPECT_TRUE(HasEnded("w/pid_5_1"));
}

TEST_F(ClusterTest, SoakNamesWhatItCannotCancel) {
  Write("w/behave/5_1", sleeper);
  StartSlurmSweep();
  ASSERT_TRUE(WaitFor("w/pid_5_1"));
  Cluster({"controller", Path("cluster"), "stop"});
  process.terminate();
  EXPECT_TRUE(HasEnded("w/pid_5_1")) << "the job ends without its controller";
  EXPECT_EQ(process.waitForFinished(40000), true);
  EXPECT_EQ(process.exitCode(), 143);
  Cluster({"controller", Path("cluster"), "start"});
  Shell("for i in $(seq 25); do squeue -h >queue && ! [ -s queue ] && break; sleep 1; done");
  EXPECT_NE(process.readAllStandardError().toStdString().find("end what is left with: scancel "),
            std::string::npos);
}

TEST_F(ClusterTest, TakesUpTheJobsOfAKilledHost) {
  RestartCluster("1", "2");
  for (const char* run : {"5_1", "5_2", "5_3", "5_4"})
    Write("w/behave/" + std::string(run), "echo >>starts_$R; sleep 1.5\n");
  StartSlurmSweep({"--jobs", "3"});
  ASSERT_TRUE(WaitFor("w/starts_5_2"));
  process.kill();
  process.waitForFinished();
  EXPECT_EQ(Sweep(), 2) << "it would empty the folder that the jobs write to";
  EXPECT_NE(err.find("jobs of an earlier sweep are still on the cluster"), std::string::npos) << err;
  EXPECT_EQ(SlurmSweep({"--resume"}), 0) << err;
  EXPECT_EQ(Read("w/starts_5_1") + Read("w/starts_5_2") + Read("w/starts_5_3") + Read("w/starts_5_4"),
            "\n\n\n\n");
  EXPECT_NE(out.find("4 finished (3 kept from before)"), std::string::npos) << out;
  const std::string resumed = Results();
  EXPECT_EQ(Sweep(), 0);
  EXPECT_EQ(Results(), resumed);
}

// No cluster needed: whoever writes late, the check is the same.
TEST_F(HostTest, AResultThatChangesAfterItsRunIsNoResult) {
  Write("w/behave/5_4", "while [ ! -f go ]; do sleep 0.1; done\n");
  StartSweep({"--jobs", "2", "--json", "r.json", "--events", "e"});
  const std::regex ended("run_finished.*\"5_3\"");
  EXPECT_TRUE(Eventually([&] { return std::regex_search(Read("e"), ended); }));
  std::this_thread::sleep_for(std::chrono::milliseconds(200));  // Its files are looked at after that event.
  std::ofstream(Path("w/top.dir/5_3.par"), std::ios::app) << "late\n";
  Write("w/go", "");
  EXPECT_EQ(Wait(), 4) << err;
  EXPECT_NE(err.find("run 5_3: its files changed after it had ended"), std::string::npos) << err;
  EXPECT_EQ(Read("r.json").find("\"best\": \"5_3\""), std::string::npos);
}
