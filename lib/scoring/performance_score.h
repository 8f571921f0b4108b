#pragma once

#include "context/weights.h"
#include "export.h"
#include "results/par_ranking.h"
#include "scoring/timing_report.h"
#include "ut/strobj.h"

/// The performance score: one number for how well a run meets the timing preferences; higher is better.
/// Called on the thread of the tool run, which owns the maps and tables.
namespace orlo::vostrand_lib {

/// One run's performance score. A run that was not scored keeps an empty `csvText`.
struct PSScoreInfo {
  float score = 0.0F;     ///< Sum over the preferences of slack (ns) times weight or penalty.
  UT_STROBJ timingScore;  ///< The timing score as the timing report states it, trimmed.
  UT_STROBJ
  csvText;  ///< The run's cells of the report file: per preference actual value and score, then total.
};

/// Scores the run whose timing report is `twrPath`. The report's records are added to `prfResults` or
/// overwrite those there; then every record of the map counts, one that this report does not list with the
/// values of the report that last did. Slack is constraint minus achieved period: beaten by more than 0.001
/// ns it is multiplied by the preference's weight, missed by more by its penalty, and nothing otherwise.
/// Completes `reportRows` of every record with the factor and the contribution. A report that cannot be
/// opened is reported and gives timing score "0".
VOSTRAND_API PSScoreInfo GetPSScore(UT_STROBJ twrPath, ResultsMap& prfResults, WeightsMap weights);

/// The same, for a table of weights that need not be copied for every run.
PSScoreInfo ScoreRun(const UT_STROBJ& twrPath, ResultsMap& prfResults, const WeightsMap& weights);

/// Reorders `order[0..count-1]`, indices into both tables: highest score first, equal scores by
/// place-and-route result, ties as they were.
VOSTRAND_API void sortscore(PSScoreInfo* scores, ParScoreVal* results, int count, int* order);

/// Index of the first of `count` records with the greatest score; 0 for fewer than two.
VOSTRAND_API int FindMaxScore(PSScoreInfo* scores, int count);

}  // namespace orlo::vostrand_lib
