#pragma once

#include "export.h"
#include "results/par_result.h"
#include "ut/strobj.h"

namespace orlo::vostrand_lib {

/// Writes the summary file at `path` (a full path): banner, headings, and the result rows of the runs
/// `order[0..count-1]` (indices into `results`) in that order, leaving out runs without one. A file that
/// cannot be opened is reported as a status through the thread's run; write errors are not noticed.
VOSTRAND_API void OutputParRpt(ParScoreVal* results, int count, int* order, const UT_STROBJ& path);

}  // namespace orlo::vostrand_lib
