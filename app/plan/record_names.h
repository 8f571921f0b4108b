#pragma once

#include <string>

#include "options/host_options.h"
#include "plan/tool_files.h"

namespace vostrand {

/// Why the records that were asked for cannot be written where they were asked for: two in one file, one over
/// a file that the sweep reads or writes itself, or in the folder that planning empties. Empty when they can.
std::string WhyRecordsAreRefused(const HostOptions& options, const ToolFiles& files);

}  // namespace vostrand
