#pragma once

#include <string>

#include "result/sweep_result.h"

namespace vostrand {

/// The result as a JUnit test report: one test case per run. A run that failed is an error, one that was
/// cancelled or never started is skipped. With `options.require_timing` a finished run is a failure unless
/// its place-and-route result says that it meets timing.
std::string JUnit(const SweepResult& result);

}  // namespace vostrand
