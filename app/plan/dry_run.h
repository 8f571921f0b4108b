#pragma once

#include <string>
#include <vector>

namespace vostrand {

/// Shows what would be run and leaves the user's files as they are, byte for byte. Planning itself rewrites,
/// empties and creates files, so it happens in a scratch folder with copies of what it reads. Returns the
/// exit code.
int DryRun(const std::vector<std::string>& tool_arguments, const std::string& work_dir);

}  // namespace vostrand
