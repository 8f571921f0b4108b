#pragma once

#include <string>
#include <vector>

#include "context/run_info.h"
#include "host/records.h"
#include "plan/host_logger.h"

namespace vostrand {

/// The library's tool run, from planning to its end. Everything on the host's one thread.
class LibraryRun {
 public:
  LibraryRun(std::string work_dir, bool show_status);
  ~LibraryRun();
  LibraryRun(const LibraryRun&) = delete;
  LibraryRun& operator=(const LibraryRun&) = delete;

  /// Plans with these tool arguments; returns the library's exit code.
  int Plan(const std::vector<std::string>& tool_arguments);
  /// Calls the callback steps of one run.
  void CallBack(std::size_t run, std::size_t step);
  bool StopRequested() const { return record_.stopRequested; }
  void Report();
  /// After the report: false when it could not write its file.
  bool HasReportFile() const { return !logger_.HasHeard("Unable to write report file "); }
  /// Ends the tool run with the program's exit code, which it returns.
  int Exit(int code);

  std::vector<orlo::kelpn::mparrunner::MPAR_SEED>& Seeds() { return record_.seeds; }
  /// What the library decided; until Exit.
  const orlo::vostrand_lib::MParRunInfo& Info() const;
  /// `name` inside the working directory.
  std::string PathOf(const std::string& name) const;
  /// The full path of the folder that holds the runs' results; for a single run that of its design file.
  std::string OutputPath() const { return PathOf(Info().outputDir.getstring()); }
  HostLogger& Logger() { return logger_; }

 private:
  std::string work_dir_;
  HostLogger logger_;
  orlo::kelpn::mparrunner::VOSTRAND_CONTEXT record_;
};

}  // namespace vostrand
