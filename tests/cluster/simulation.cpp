// simulation RUNS [SLOTS [SECONDS]]: the executor and the cluster launcher, as they are, on a plan of fake
// runs. Called as sbatch, squeue or scancel, this program stands in for the cluster: SLOTS jobs at once, each
// SECONDS long, in the order of their submission. Prints what it cost the host; fails when a run did not
// finish or the queue was asked too often.
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QTemporaryDir>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <queue>

#include "execute/executor.h"
#include "launch/slurm/slurm_launcher.h"
#include "launch/system_clock.h"
#include "observe/fan_out.h"
#include "observe/run_records.h"
#include "observe/sweep_state.h"

using namespace vostrand;

namespace {

constexpr std::size_t line_length = 100;
std::string folder;  // Of the fake cluster.

double Now() {
  return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

double Setting(const char* name) {
  return std::atof(std::getenv(name));
}

int FakeSubmit(int argc, char** argv) {
  const std::string option = "--job-name=";
  std::string name;
  for (int i = 1; i < argc; ++i)
    if (std::string(argv[i]).starts_with(option)) name = argv[i] + option.size();
  char line[line_length + 1];
  std::snprintf(line, sizeof line, "%-79.79s %19.6f\n", name.c_str(), Now());
  const int file = open((folder + "/queue").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
  if (write(file, line, line_length) != line_length) return 1;
  std::printf("%ld\n", static_cast<long>(lseek(file, 0, SEEK_CUR)) / static_cast<long>(line_length));
  return 0;
}

void LeaveMarkers(const std::string& name) {
  const std::string jobs = folder + "/state/jobs/" + name;
  step::Outcome outcome;
  for (const char* step : {"/0", "/2"})
    if (std::filesystem::exists(jobs + "/lease")) std::ofstream(jobs + step) << "exit_code 0\nend\n";
}

int FakeQueue() {
  std::ofstream(folder + "/polls", std::ios::app) << "x";
  std::priority_queue<double, std::vector<double>, std::greater<>> free_at;
  for (int i = 0; i < Setting("SIM_SLOTS"); ++i) free_at.push(0);
  const double now = Now();
  long id = 0;
  std::ifstream queue(folder + "/queue");
  for (std::string line; std::getline(queue, line);) {
    const std::string name = line.substr(0, line.find(' '));
    const double begin = std::max(std::atof(line.c_str() + 80), free_at.top());
    const double end = begin + Setting("SIM_SECONDS");
    free_at.pop();
    free_at.push(end);
    const bool ended = end <= now;
    if (ended) LeaveMarkers(name);
    std::printf("%-12ld%-16s%-8d%-40s%-40s%-80s\n", ++id,
                ended          ? "COMPLETED"
                : begin <= now ? "RUNNING"
                               : "PENDING",
                0, begin <= now ? "None" : "Priority", begin <= now ? "node1" : "", name.c_str());
  }
  return 0;
}

std::vector<PlannedRun> Plan(int runs) {
  std::vector<PlannedRun> plan(static_cast<std::size_t>(runs));
  for (std::size_t i = 0; i < plan.size(); ++i) {
    plan[i].name = "5_" + std::to_string(i + 1);
    plan[i].steps = {{{"sh", "-c", "place and route"}}, {}, {{"sh", "-c", "timing"}}};
    plan[i].output_file = folder + "/out";
  }
  return plan;
}

long PeakKib() {
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

double ProcessorSeconds() {
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

double LastSubmission() {
  std::ifstream queue(folder + "/queue");
  double last = 0;
  for (std::string line; std::getline(queue, line);) last = std::max(last, std::atof(line.c_str() + 80));
  return last;
}

int Simulate(int runs) {
  const long peak_before = PeakKib();
  const double processor_before = ProcessorSeconds();
  const double began = Now();
  const std::vector<PlannedRun> plan = Plan(runs);
  SlurmSettings settings;
  settings.work_dir = folder;
  settings.state_folder = folder + "/state";
  std::filesystem::create_directories(settings.state_folder);
  SystemClock clock;
  SlurmLauncher launcher(settings, ToolFinder("", folder, folder), clock,
                         [](const std::string& line) { std::cerr << line << "\n"; });
  launcher.Prepare(plan, std::vector<std::string>(plan.size()));
  RunRecords records{std::vector<RunRecord>(plan.size())};
  SweepState state(std::vector<std::string>(plan.size()), 3, plan.size());
  FanOut observers;
  observers.Add(records);
  observers.Add(state);
  Limits limits;
  limits.jobs = runs;
  ExecutorHooks hooks;
  hooks.call_back = [](std::size_t, std::size_t) {};
  hooks.stop_requested = [] { return false; };
  hooks.before_run = [](const PlannedRun&, bool) { return std::string(); };
  hooks.judge = [](std::size_t) { return Verdict(); };
  hooks.finished = [] { QCoreApplication::quit(); };
  Executor executor(plan, limits, launcher, clock, observers, hooks);
  QMetaObject::invokeMethod(
      qApp, [&] { executor.Start(); }, Qt::QueuedConnection);
  QCoreApplication::exec();

  const double seconds = Now() - began;
  const double submitting = LastSubmission() - began;
  const auto polls = static_cast<double>(std::filesystem::file_size(folder + "/polls"));
  const double processor = ProcessorSeconds() - processor_before;
  std::printf(
      "%6d runs: %6.1f s, submitted in %5.1f s (%4.0f/s), %.2f polls/s, host %5.2f s processor (%4.1f %%), "
      "%.2f ms and %.1f KiB a run\n",
      runs, seconds, submitting, runs / submitting, polls / seconds, processor, processor / seconds * 100,
      processor / runs * 1000, static_cast<double>(PeakKib() - peak_before) / runs);
  for (const int status : executor.Statuses())
    if (status != 0) return 1;
  return polls > seconds + 1 ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string program = std::filesystem::path(argv[0]).filename();
  if (const char* const cluster = std::getenv("SIM_FOLDER")) folder = cluster;
  if (program == "sbatch") return FakeSubmit(argc, argv);
  if (program == "squeue") return FakeQueue();
  if (program == "scancel") return 0;
  const QCoreApplication app(argc, argv);
  const QTemporaryDir scratch;
  folder = scratch.path().toStdString();
  for (const char* const name : {"/sbatch", "/squeue", "/scancel"})
    std::filesystem::create_symlink(std::filesystem::canonical("/proc/self/exe"), folder + name);
  qputenv("PATH", QByteArray::fromStdString(folder + ":") + qgetenv("PATH"));
  qputenv("SIM_FOLDER", QByteArray::fromStdString(folder));
  qputenv("SIM_SLOTS", argc > 2 ? argv[2] : "500");
  qputenv("SIM_SECONDS", argc > 3 ? argv[3] : "2");
  return Simulate(argc > 1 ? std::atoi(argv[1]) : 300);
}
