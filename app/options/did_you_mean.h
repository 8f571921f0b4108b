#pragma once

#include <string>
#include <vector>

namespace vostrand {

/// The candidate that `word` was most likely meant to be; empty when none is close.
std::string ClosestTo(const std::string& word, const std::vector<std::string>& candidates);

}  // namespace vostrand
