#pragma once

#include <cstdint>
#include <vector>

#include "execute/run_plan.h"
#include "plan/library_run.h"
#include "result/promotion_check.h"
#include "result/sweep_result.h"

namespace vostrand {

/// Has the library report on the executed runs, and fills in what came of it: commands, rows, scores, order,
/// odds, and whether the report file is missing. The runs' records and the options are there already.
void ReportRuns(LibraryRun& library, const std::vector<PlannedRun>& plan, SweepResult& result);

/// What the library has promoted, or the tools of a single run have written; `old_ns` as in Promotion. Some
/// run has finished.
Promotion PromotionOf(const LibraryRun& library, const SweepResult& result, std::int64_t old_ns);

}  // namespace vostrand
