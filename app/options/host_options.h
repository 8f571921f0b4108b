#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vostrand {

/// What the command line says to the host. Paths are as given, relative to the folder that the host was
/// started in.
struct HostOptions {
  // Running
  int jobs = 0;           ///< Most runs at once; 0 means one per processor that this process may use.
  std::string toolchain;  ///< Folder searched first for the tools; empty when not given.
  std::string work_dir;   ///< The tool run's working directory; empty means the current one.
  std::string launcher = "local";  ///< Where the runs run: "local" or "slurm".
  std::string slurm_args;          ///< Further words for sbatch, as on a command line.
  int requeues = 2;                ///< How often a run is submitted again whose machine failed.
  // Limits
  double timeout_seconds = 0;     ///< Of each step; 0 means none.
  int retries = 0;                ///< How often a failed step is tried again.
  std::int64_t memory_bytes = 0;  ///< For all runs together; 0 means no limit.
  // When to stop
  bool fail_fast = false;    ///< The first failed run stops the sweep.
  bool stop_now = false;     ///< A stop ends the runs that still go on.
  double grace_seconds = 0;  ///< A run that is expected to end within this is let go on.
  int until = 0;             ///< Stop after so many runs that meet timing; 0 means never.
  bool resume = false;
  // What is kept
  std::string json_file;  ///< Empty when not given, like the following.
  std::string events_file;
  std::string junit_file;
  std::string trace_file;
  std::string html_file;
  bool require_timing = false;  ///< In the JUnit file a run that misses timing is a failure.
  bool retain_best = false;     ///< The files of the other runs are removed.
  // What is shown
  bool quiet = false;
  bool verbose = false;
  bool dry_run = false;
  bool show_help = false;
  bool show_version = false;
};

/// A command line taken apart.
struct CommandLine {
  HostOptions host;
  std::vector<std::string> tool;  ///< The library's arguments, without the tool's name.
  std::string error;              ///< Why the command line is refused; empty when it is not.
};

/// Takes the host options off the front of the arguments (argv without its first element). "--" ends them;
/// what follows is the library's, untouched. In front of it a word with two dashes must be a host option or a
/// switch of the library.
CommandLine ReadCommandLine(const std::vector<std::string>& arguments);

/// The options, grouped, with examples.
std::string HelpText();

}  // namespace vostrand
