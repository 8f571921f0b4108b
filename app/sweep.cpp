#include "sweep.h"

#include <QCoreApplication>
#include <QThread>
#include <iostream>

#include "execute/executor.h"
#include "launch/local_launcher.h"
#include "observe/run_lines.h"
#include "plan/library_run.h"
#include "plan/planned_runs.h"
#include "result/sweep_result.h"
#include "signals.h"

namespace vostrand {
namespace {

// Executes the plan in the event loop; returns the signal that interrupted it, or 0.
int Execute(LibraryRun& library, const std::vector<PlannedRun>& plan, const HostOptions& options,
            const std::string& own_folder) {
  const std::string work_dir = library.WorkDir().empty() ? "." : library.WorkDir();
  LocalLauncher launcher(own_folder + "/vostrand-step", work_dir,
                         ToolFinder(options.toolchain, work_dir, own_folder));
  RunLines lines(plan);
  ExecutorHooks hooks;
  hooks.call_back = [&](std::size_t run, std::size_t step) { library.CallBack(run, step); };
  hooks.stop_requested = [&] { return library.StopRequested(); };
  hooks.before_run = RemoveLeftovers;
  hooks.finished = [] { QCoreApplication::quit(); };
  Executor executor(plan, options.jobs > 0 ? options.jobs : QThread::idealThreadCount(), launcher, lines,
                    hooks);
  int interrupted_by = 0;
  const Signals signals([&](int signal) {
    if (interrupted_by == 0) std::cerr << "vostrand: ending what runs; once more ends it at once\n";
    interrupted_by = signal;
    executor.Cancel();
  });
  QMetaObject::invokeMethod(
      qApp, [&] { executor.Start(); }, Qt::QueuedConnection);
  QCoreApplication::exec();

  for (std::size_t i = 0; i < plan.size(); ++i) library.Seeds()[i].status = executor.Statuses()[i];
  return interrupted_by;
}

SweepResult Report(LibraryRun& library, int interrupted_by) {
  Ranking ranking(library);
  library.Report();
  SweepResult result;
  result.interrupted_by = interrupted_by;
  for (const auto& seed : library.Seeds()) result.runs.push_back({seed.name, seed.status});
  result.ranking = ranking.Ordered();
  CheckFiles(library, result);
  return result;
}

}  // namespace

int RunSweep(const HostOptions& options, const std::vector<std::string>& tool_arguments,
             const std::string& own_folder) {
  LibraryRun library(options.work_dir, options.verbose);
  const int planned = library.Plan(tool_arguments);
  if (planned != 0 || library.Seeds().empty()) {
    library.Logger().ShowHeldBack(planned == 0 ? std::cout
                                               : std::cerr);  // Help that was asked for, or why not.
    return library.Exit(planned);
  }
  std::string refusal;
  const std::vector<PlannedRun> plan = PlannedRuns(library, refusal);
  if (!refusal.empty()) {
    std::cerr << "vostrand: " << refusal << "\n";
    return library.Exit(2);
  }
  const int interrupted_by = Execute(library, plan, options, own_folder);
  const SweepResult result = Report(library, interrupted_by);
  std::cout << SummaryText(result);
  return library.Exit(ExitCode(result));
}

}  // namespace vostrand
