#pragma once

#include <string>

#include "result/sweep_result.h"

namespace vostrand {

/// The ranking, counts, odds, best run and its files, for people.
std::string SummaryText(const SweepResult& result);

/// "met", "318 ps", "not complete" or "no result".
std::string TimingText(const RunResult& run);

}  // namespace vostrand
