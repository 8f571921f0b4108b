#pragma once

#include <string>
#include <vector>

#include "analysis/analyser.h"

namespace toolchain {

/// The timing report (.twr): the preference summary, the timing score, and the worst paths of each
/// preference.
std::string TimingReport(const std::string& design_path, const std::string& preferences_path,
                         const std::vector<BoundPreference>& preferences,
                         const std::vector<PreferenceTiming>& results);

}  // namespace toolchain
