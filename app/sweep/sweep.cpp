#include "sweep/sweep.h"

#include <QSysInfo>
#include <QThread>
#include <filesystem>
#include <iostream>

#include "observe/harmless.h"
#include "plan/command_words.h"
#include "plan/tool_files.h"

namespace vostrand {
namespace {

SlurmSettings SettingsFor(const HostOptions& options, const std::string& own_folder,
                          const std::string& work_dir, const std::string& state_folder) {
  SlurmSettings settings;
  settings.supervisor = own_folder + "/vostrand-step";
  settings.work_dir = std::filesystem::absolute(work_dir).lexically_normal();
  settings.state_folder = std::filesystem::absolute(state_folder).lexically_normal();
  settings.sbatch_arguments = SplitCommand(options.slurm_args);
  settings.timeout_seconds = options.timeout_seconds;
  return settings;
}

}  // namespace

Sweep::Sweep(const HostOptions& options, const std::vector<std::string>& arguments,
             const std::string& own_folder)
    : tool_arguments(arguments),
      files(FilesOf(arguments)),
      work_dir(options.work_dir.empty() ? "." : options.work_dir),
      library(options.work_dir, options.verbose),
      tools(options.toolchain, work_dir, own_folder),
      launcher(own_folder + "/vostrand-step", work_dir, tools, options.timeout_seconds),
      resumption(work_dir, tool_arguments, files.Stem()) {
  result.program_version = VOSTRAND_VERSION;
  result.host_name = QSysInfo::machineHostName().toStdString();
  result.work_dir = std::filesystem::canonical(work_dir);
  result.tool_arguments = tool_arguments;
  result.options = options;
  if (options.launcher == "slurm") {
    slurm.emplace(SettingsFor(options, own_folder, work_dir, resumption.Folder()), tools, clock,
                  [this](const std::string& line) { Warn(line); });
  } else if (result.options.jobs == 0) {
    result.options.jobs = QThread::idealThreadCount();
  }
}

void Sweep::Warn(const std::string& text) const {
  const std::string line = "vostrand: " + Harmless(text) + "\n";
  if (progress)
    progress->Print(line);
  else
    std::cerr << line;
}

void Sweep::Interrupt(int signal) {
  if (result.interrupted_by == 0)
    Warn(progress ? "ending what runs; once more ends it at once" : "interrupted; the report is still made");
  result.interrupted_by = signal;
  if (end_what_goes_on) end_what_goes_on();
}

}  // namespace vostrand
