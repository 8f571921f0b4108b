#pragma once

#include <string>
#include <vector>

namespace vostrand {

/// What a run leaves, and the result consists of but for ".out".
inline constexpr const char* result_extensions[] = {".out", ".par", ".twr", ".ncd", ".pad", ".dly", ".icf"};

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
  std::string timing_commands;  ///< Read by the timing analyser.

  std::vector<std::string> Written() const { return {par_commands, log, report, output}; }
  std::vector<std::string> Read() const {
    return {design, par_commands, preferences, trace_preferences, timing_commands};
  }
  /// The output without ".ncd".
  std::string Stem() const { return output.ends_with(".ncd") ? output.substr(0, output.size() - 4) : output; }
};

/// The files of a command line in any of its three forms.
ToolFiles FilesOf(const std::vector<std::string>& tool_arguments);

/// Why nothing can be run by the par command file: it is there and cannot be read, or its level makes run
/// names with blanks, quotes or "/". Empty when something can; planning says when there is none. Changes
/// nothing.
std::string WhyParCommandsAreRefused(const ToolFiles& files, const std::string& work_dir);

/// Whether the par command file asks for several runs.
bool AsksForSeveral(const ToolFiles& files, const std::string& work_dir);

/// Why a plan is not that of the par command file, which planning leaves out without a word when it cannot be
/// opened at that moment; `first_run` is the plan's first name. Empty when it is, or when there is no file.
std::string WhyPlanIsRefused(const ToolFiles& files, const std::string& work_dir, bool multi_run,
                             const std::string& first_run);

}  // namespace vostrand
