#pragma once

#include "page/html.h"
#include "result/sweep_result.h"

/// The parts of the page, each written into `page` from the one result. All are readable without scripts;
/// what the scripts need of them they find by id, class and data attribute.
namespace vostrand {

/// The outcome in one sentence, and what went wrong.
void WriteVerdict(Html& page, const SweepResult& result);
/// Every run, best first, those that did not finish at the end.
void WriteRanking(Html& page, const SweepResult& result);
/// The scores in plan order.
void WriteScores(Html& page, const SweepResult& result);
/// Preference by run: what is red in a whole row no seed will mend.
void WriteSlackMatrix(Html& page, const SweepResult& result);
/// Each preference's slack over all runs, against its constraint.
void WriteSlackSpread(Html& page, const SweepResult& result);
/// What more runs would bring.
void WriteMoreRuns(Html& page, const SweepResult& result);
/// The runs over the job slots.
void WriteTimeline(Html& page, const SweepResult& result);
/// Time and memory per run.
void WriteCost(Html& page, const SweepResult& result);
/// Program, host, command line, inputs, tools and promoted files.
void WriteOrigin(Html& page, const SweepResult& result);

}  // namespace vostrand
