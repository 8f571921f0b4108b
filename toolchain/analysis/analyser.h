#pragma once

#include <optional>
#include <string>
#include <vector>

#include "analysis/design_ports.h"
#include "analysis/routed_design.h"

namespace toolchain {

/// Static timing analysis of a routed design against preferences. Every preference is measured by itself;
/// paths from one clock to another and from an input straight to an output belong to none. Times are in ns.

/// How the paths of one preference meet it: the worst at each endpoint counts.
struct TimingCheck {
  int endpoints = 0;
  int failing = 0;
  double failing_sum = 0.0;  ///< By which the failing ones miss, added up.
  double worst_slack = 0.0;  ///< When there are endpoints.
};

struct TimingPath {
  struct Step {
    std::string what;  ///< "net", "LUT", "setup" ...
    std::string name;
    std::string place;
    double delay = 0.0;
  };

  double slack = 0.0;
  double total = 0.0;  ///< The sum of the steps: what the path needs of the preference's time.
  int levels = 0;      ///< LUTs on it.
  std::vector<Step> steps;
};

struct PreferenceTiming {
  TimingCheck setup;
  TimingCheck hold;               ///< Of clocks only.
  std::optional<double> actual;   ///< What the worst path needs; nothing when the preference has no path.
  std::vector<TimingPath> paths;  ///< The worst ones, worst first.
};

struct AnalysisOptions {
  bool ideal_clocks = false;  ///< Every flip-flop sees its clock at once, as the engine assumes.
  int paths = 1;              ///< To give for each preference.
};

/// Runs the analyser once. The results stand in the order of the preferences.
std::vector<PreferenceTiming> Analyse(const RoutedDesign& design,
                                      const std::vector<BoundPreference>& preferences,
                                      const AnalysisOptions& options);

/// All preferences taken together.
struct TimingSummary {
  std::optional<double> worst_slack;  ///< Nothing when no preference has a path.
  long score = 0;                     ///< By which failing endpoints miss their preferences, added up, in ps.
  int failing = 0;
};

TimingSummary Summarise(const std::vector<PreferenceTiming>& results, TimingCheck PreferenceTiming::*check);

}  // namespace toolchain
