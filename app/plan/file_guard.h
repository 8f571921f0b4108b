#pragma once

#include <string>
#include <vector>

#include "plan/tool_files.h"

namespace vostrand {

/// Why a sweep with these files must not begin: a name that the tools take for an option, or that is too long
/// for what is made of it; a folder that is not there; or a link at a place where planning or the report
/// would write through it into what the command line does not name. Empty when it may. Changes nothing.
std::string WhyFilesAreRefused(const ToolFiles& files, const std::vector<std::string>& tool_arguments,
                               const std::string& work_dir);

/// What the runs' own folders are links to is not theirs to be emptied, as gathering their files does: in the
/// place of such a link comes a folder with copies of the files for a run that finished, else nothing.
void TakeInLinkedFolder(const std::string& folder, bool finished);

}  // namespace vostrand
