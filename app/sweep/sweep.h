#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "execute/run_plan.h"
#include "launch/local_launcher.h"
#include "launch/slurm/slurm_launcher.h"
#include "launch/system_clock.h"
#include "launch/tool_finder.h"
#include "observe/progress.h"
#include "options/host_options.h"
#include "plan/library_run.h"
#include "plan/tool_files.h"
#include "records/event_log.h"
#include "result/sweep_result.h"
#include "resume/resumption.h"

namespace vostrand {

/// What the steps of a sweep hand on to each other, from the accepted command line to the exit code.
struct Sweep {
  /// `arguments` outlive this object; `own_folder` is where this program lies.
  Sweep(const HostOptions& options, const std::vector<std::string>& arguments, const std::string& own_folder);

  /// Shows a line to the user, above the progress when that is shown.
  void Warn(const std::string& text) const;
  /// Tells whatever goes on to end.
  void Interrupt(int signal);

  const std::vector<std::string>& tool_arguments;
  const ToolFiles files;  ///< That they name.
  std::string work_dir;
  SystemClock clock;
  LibraryRun library;
  ToolFinder tools;
  LocalLauncher launcher;
  Resumption resumption;
  std::optional<SlurmLauncher> slurm;  ///< In the place of `launcher`, when there is one.
  std::optional<EventLog> event_log;
  std::vector<PlannedRun> plan;
  SweepResult result;
  Progress* progress = nullptr;            ///< While runs are executed.
  std::string changed_input;               ///< One that is not what the runs were first made from.
  std::int64_t old_ns = -1;                ///< See Promotion.
  double began = 0;                        ///< By `clock`.
  std::function<void()> end_what_goes_on;  ///< Called at an interrupt.
};

}  // namespace vostrand
