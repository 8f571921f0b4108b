#pragma once

#include "context/weights.h"
#include "export.h"
#include "results/par_result.h"
#include "scoring/performance_score.h"
#include "scoring/timing_report.h"
#include "ut/stream.h"
#include "ut/strobj.h"
#include "ut/typed_arrays.h"

/// The comma-separated report file. Called on the thread of the tool run, which owns the maps and tables.
namespace orlo::vostrand_lib {

/// Puts `order[0..count-1]`, the finished runs' indices into `scores`, `results` and `csvLabels`, into their
/// final order and writes the report file at `reportPath`: the preferences with their weights, the runs best
/// first, and the best run's label. A file that cannot be opened is reported as a status, and the order stays
/// as it was; no finished run leaves the banner line alone. Cells are not quoted. The last argument, the
/// number of results, is not read.
VOSTRAND_API void OutputReport(PSScoreInfo* scores, ParScoreVal* results, int count, int* order,
                               UT_STROBJ& reportPath, const DARRAY_UT_STROBJ& csvLabels,
                               const ResultsMap& prfResults, WeightsMap& weights, int);

/// Writes the preference heading and one row per preference to `stream`.
VOSTRAND_API void OutputRptHead(const ResultsMap& prfResults, WeightsMap& weights, UT_STREAM* stream);

}  // namespace orlo::vostrand_lib
