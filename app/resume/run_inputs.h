#pragma once

#include <string>
#include <vector>

#include "execute/run_plan.h"
#include "launch/tool_finder.h"
#include "plan/library_run.h"
#include "result/sweep_result.h"

namespace vostrand {

/// The files that the runs are made from: role and full path.
std::vector<FileRecord> InputFiles(const LibraryRun& library, const std::vector<std::string>& tool_arguments);

/// The programs of the plan's commands, each once: name and full path; those that cannot be found are left
/// out.
std::vector<FileRecord> Tools(const std::vector<PlannedRun>& plan, const ToolFinder& finder);

/// The path of the first of these files that has another size or time of change than its record says; empty
/// when none has.
std::string ChangedFile(const std::vector<FileRecord>& files);

}  // namespace vostrand
