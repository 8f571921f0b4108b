#pragma once

#include <string>
#include <vector>

#include "analysis/analyser.h"

namespace toolchain {

/// The clock period that the analysis is run with, in ns. Any would do: all flip-flops take the rising edge
/// and all paths start and end at one clock, so what a path needs is this period less its slack, whatever the
/// period.
inline constexpr double analysis_period = 10.0;

/// The analyser's commands for these preferences on a design whose files are in `folder`, with `procedures`
/// the path of the procedures they call.
std::string AnalyserScript(const RoutedDesign& design, const std::vector<BoundPreference>& preferences,
                           const AnalysisOptions& options, const std::string& procedures,
                           const std::string& folder);

}  // namespace toolchain
