#pragma once

#include "result/sweep_result.h"

namespace vostrand {

/// Finds the finished runs of these names, one or two; without names the best and the second. Returns why
/// there is nothing to explain; empty when `runs` holds their indices.
std::string ChooseRuns(const SweepResult& result, const std::vector<std::string>& names,
                       std::vector<std::size_t>& runs);

/// Why one of two runs beats the other, or what the score of one is made of: a sentence, then a table of the
/// preferences, those that count most first. Their names are cut, but not below ten
/// characters, so that lines have at most `width` (0: any number).
std::string ExplainText(const SweepResult& result, std::vector<std::size_t> runs, std::size_t width);

}  // namespace vostrand
