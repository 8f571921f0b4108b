#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "analysis/analyser.h"
#include "par/command_line.h"

namespace toolchain {

/// The pin list (.pad): each port with its direction and its pad.
std::string PinList(const RoutedDesign& design);

/// The result (.par): what was asked for, what was achieved, and the results table with this run's row.
std::string ParReport(const ParRequest& request, const RoutedDesign& design,
                      const std::vector<BoundPreference>& preferences,
                      const std::vector<PreferenceTiming>& results, std::chrono::seconds run_time);

}  // namespace toolchain
