#pragma once

#include <string>
#include <vector>

#include "options/host_options.h"

namespace vostrand {

/// A whole sweep: plan, execute, report, sum up. `own_folder` is where this program lies. Returns the exit
/// code.
int RunSweep(const HostOptions& options, const std::vector<std::string>& tool_arguments,
             const std::string& own_folder);

}  // namespace vostrand
