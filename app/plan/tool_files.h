#pragma once

#include <string>
#include <vector>

namespace vostrand {

/// The files that the tool arguments name, as planning uses them; empty where there is none. All empty for a
/// command line that planning refuses.
struct ToolFiles {
  std::string par_commands;  ///< Read and rewritten; copies are made beside it.
  std::string log;           ///< Written.
  std::string report;        ///< Written by the report.
  std::string output;        ///< Made, or emptied and made.
  std::string design;        ///< Looked at whether it can be read.
  std::string preferences;   ///< Read by the tools and the report.
  std::string trace_preferences;

  std::vector<std::string> Written() const { return {par_commands, log, report, output}; }
};

/// The files of a command line in any of its three forms.
ToolFiles FilesOf(const std::vector<std::string>& tool_arguments);

/// Why the runs of this command line cannot be run: the level in the par command file makes run names with
/// blanks, quotes or "/". Empty when they can. Changes nothing.
std::string WhyRunNamesAreRefused(const ToolFiles& files, const std::string& work_dir);

}  // namespace vostrand
