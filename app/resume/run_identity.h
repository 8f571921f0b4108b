#pragma once

#include <string>
#include <vector>

#include "execute/run_plan.h"
#include "result/sweep_result.h"

namespace vostrand {

/// What makes a run this run: the hash over its command lines, the par command file that planning wrote for
/// it, the contents of the design and the preference files, and path, size and time of change of the tools.
/// Two runs with one identity would do the same work.
std::string RunIdentity(const PlannedRun& run, const std::string& work_dir,
                        const std::vector<FileRecord>& inputs, const std::vector<FileRecord>& tools);

}  // namespace vostrand
