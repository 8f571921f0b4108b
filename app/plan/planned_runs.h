#pragma once

#include <string>
#include <vector>

#include "execute/run_plan.h"
#include "plan/library_run.h"

namespace vostrand {

/// The library's plan as the executor takes it. With a message in `refusal` when it cannot be run: a name in
/// it does not fit a command line or a file name.
std::vector<PlannedRun> PlannedRuns(LibraryRun& library, std::string& refusal);

/// Clears the way for a run: removes what an earlier sweep left under its name, so that it is never judged by
/// an old file. Links are removed, never followed.
void RemoveLeftovers(const PlannedRun& run);

}  // namespace vostrand
