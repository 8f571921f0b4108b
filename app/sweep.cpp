#include "sweep.h"

#include <QCoreApplication>
#include <QThread>
#include <filesystem>
#include <iostream>

#include "execute/executor.h"
#include "launch/local_launcher.h"
#include "observe/run_lines.h"
#include "plan/library_run.h"
#include "plan/planned_runs.h"
#include "plan/tool_files.h"
#include "result/sweep_result.h"
#include "signals.h"

namespace vostrand {
namespace {

constexpr int cannot_be_run = 2;

// One sweep, from the accepted command line to the exit code.
class Sweep {
 public:
  Sweep(const HostOptions& options, const std::string& own_folder)
      : options_(options),
        library_(options.work_dir, options.verbose),
        work_dir_(options.work_dir.empty() ? "." : options.work_dir),
        launcher_(own_folder + "/vostrand-step", work_dir_,
                  ToolFinder(options.toolchain, work_dir_, own_folder)) {}

  int Run(const std::vector<std::string>& tool_arguments);

 private:
  std::string WhyRefused(const std::vector<std::string>& tool_arguments) const;
  void Execute();
  SweepResult Report();

  const HostOptions& options_;
  LibraryRun library_;
  std::string work_dir_;
  LocalLauncher launcher_;
  int interrupted_by_ = 0;
  std::filesystem::file_time_type began_;
};

std::string Sweep::WhyRefused(const std::vector<std::string>& tool_arguments) const {
  const std::string names = WhyRunNamesAreRefused(FilesOf(tool_arguments), work_dir_);
  return names.empty() ? launcher_.Unusable() : names;
}

// Executes the plan in the event loop.
void Sweep::Execute() {
  const std::vector<PlannedRun> plan = PlannedRuns(library_);
  RunLines lines(plan);
  ExecutorHooks hooks;
  hooks.call_back = [&](std::size_t run, std::size_t step) { library_.CallBack(run, step); };
  hooks.stop_requested = [&] { return library_.StopRequested(); };
  hooks.before_run = RemoveLeftovers;
  hooks.finished = [] { QCoreApplication::quit(); };
  Executor executor(plan, options_.jobs > 0 ? options_.jobs : QThread::idealThreadCount(), launcher_, lines,
                    hooks);
  const Signals interrupts([&](int signal) {
    if (interrupted_by_ == 0) std::cerr << "vostrand: ending what runs; once more ends it at once\n";
    interrupted_by_ = signal;
    executor.Cancel();
  });
  QMetaObject::invokeMethod(
      qApp, [&] { executor.Start(); }, Qt::QueuedConnection);
  QCoreApplication::exec();
  for (std::size_t i = 0; i < plan.size(); ++i) library_.Seeds()[i].status = executor.Statuses()[i];
}

SweepResult Sweep::Report() {
  Ranking ranking(library_);
  library_.Report();
  SweepResult result;
  result.interrupted_by = interrupted_by_;
  for (const auto& seed : library_.Seeds()) result.runs.push_back({seed.name, seed.status});
  result.ranking = ranking.Ordered();
  CheckFiles(library_, began_, result);
  return result;
}

int Sweep::Run(const std::vector<std::string>& tool_arguments) {
  const std::string refusal = WhyRefused(tool_arguments);
  if (!refusal.empty()) {
    std::cerr << "vostrand: " << refusal << "\n";
    return cannot_be_run;
  }
  // The file system's clock is coarser than the system's.
  began_ = std::filesystem::file_time_type::clock::now() - std::chrono::milliseconds(10);
  const int planned = library_.Plan(tool_arguments);
  if (planned != 0 || library_.Seeds().empty()) {
    library_.Logger().ShowHeldBack(planned == 0 ? std::cout
                                                : std::cerr);  // Help that was asked for, or why not.
    return library_.Exit(planned);
  }
  // From here on an interrupt ends the runs, never the report.
  const BlockedInterrupts blocked;
  Execute();
  const SweepResult result = Report();
  std::cout << SummaryText(result);
  return library_.Exit(ExitCode(result));
}

}  // namespace

int RunSweep(const HostOptions& options, const std::vector<std::string>& tool_arguments,
             const std::string& own_folder) {
  return Sweep(options, own_folder).Run(tool_arguments);
}

}  // namespace vostrand
