#pragma once

#include "context/run_log.h"
#include "scoring/timing_report.h"
#include "ut/strobj.h"

/// One run's score table as the log shows it. The top is written before the run is scored, so that it stands
/// in the log in front of whatever the scoring has to say.
namespace orlo::vostrand_lib {

void WriteScoreTableTop(RunLog& log);

/// The preferences' completed rows and the total line.
void WriteScoreTableRows(RunLog& log, const ResultsMap& results, const UT_STROBJ& total_line);

/// "Total PSScore:" and the score, with its line end.
UT_STROBJ TotalLine(float score);

}  // namespace orlo::vostrand_lib
