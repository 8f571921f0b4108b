#pragma once

#include <string>
#include <vector>

namespace vostrand {

/// What the command line says to the host. Paths are as given, relative to the folder that the host was
/// started in.
struct HostOptions {
  int jobs = 0;           ///< Most runs at once; 0 means one per processor that this process may use.
  std::string toolchain;  ///< Folder searched first for the tools; empty when not given.
  std::string work_dir;   ///< The tool run's working directory; empty means the current one.
  bool dry_run = false;
  bool verbose = false;
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
