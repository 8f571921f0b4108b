#pragma once

#include "result/sweep_result.h"

namespace vostrand {

/// The result with all names, paths and messages as a terminal may get them.
SweepResult Printable(SweepResult result);

/// The summary, then the runs that did not finish and why; for `width` see ExplainText.
std::string ShowText(SweepResult result, std::size_t width);

/// What became of a run: "failed with 9: no licence".
std::string OutcomeText(const RunRecord& run);

}  // namespace vostrand
