#pragma once

#include <optional>

#include "observe/sweep_state.h"

namespace vostrand {

/// Expected seconds until the last run ends; `now` is in seconds of the sweep. Nothing until every step has
/// ended well once. A sweep that is stopping only waits for what runs.
std::optional<double> SecondsLeft(const SweepState& state, double now);

}  // namespace vostrand
