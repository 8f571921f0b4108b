#pragma once

#include <string>
#include <vector>

#include "execute/run_plan.h"
#include "plan/tool_files.h"

namespace vostrand {

/// Why a sweep with these files must not begin: a name that the tools take for an option, or that is too long
/// for what is made of it; a folder that is not there; or a link at a place where planning or the report
/// would write through it into what the command line does not name. Empty when it may. Changes nothing.
std::string WhyFilesAreRefused(const ToolFiles& files, const std::vector<std::string>& tool_arguments,
                               const std::string& work_dir);

/// The same once the plan is known: an input that would be removed as what an earlier sweep left of a run.
std::string WhyLeftoversAreRefused(const ToolFiles& files, const std::vector<PlannedRun>& plan,
                                   const std::string& work_dir);

/// What the runs' own folders are links to is not theirs to be emptied, as gathering their files does: in the
/// place of such a link comes a folder with copies of the files of a run that finished; of one that was only
/// `started`, with those that are named after it. Returns what could not be copied whole.
std::vector<std::string> TakeInLinkedFolder(const std::string& folder, bool started, bool finished);

}  // namespace vostrand
