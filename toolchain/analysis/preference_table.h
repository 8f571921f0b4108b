#pragma once

#include <string>
#include <vector>

#include "analysis/analyser.h"

namespace toolchain {

/// The preference summary of a report: for each preference its statement, over as many rows as it needs, what
/// it asks for, what was achieved ("-" when it has no path) and the levels of logic of its worst path; the
/// closing rule.
std::string PreferenceTable(const std::vector<BoundPreference>& preferences,
                            const std::vector<PreferenceTiming>& results);

}  // namespace toolchain
