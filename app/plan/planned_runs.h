#pragma once

#include <string>
#include <vector>

#include "execute/run_plan.h"
#include "plan/library_run.h"

namespace vostrand {

/// The library's plan as the executor takes it.
std::vector<PlannedRun> PlannedRuns(LibraryRun& library);

/// Clears the way for a run: removes what an earlier sweep left under its name, so that it is never judged by
/// an old file. Links are removed, never followed. A run that is tried again keeps what its tools have
/// printed. Returns what could not be removed, or nothing.
std::string RemoveLeftovers(const PlannedRun& run, bool keep_output);

}  // namespace vostrand
