#include "sorv/timing_report.h"

#include "analysis/preference_table.h"
#include "common/text.h"

namespace toolchain {
namespace {

std::string Listing(const TimingPath& path) {
  std::string text = Format("  Slack %.3f ns, levels of logic: %d\n\n", path.slack, path.levels) +
                     "       delay        sum  step\n";
  double sum = 0.0;
  for (const TimingPath::Step& step : path.steps) {
    sum += step.delay;
    const std::string place = step.place.empty() ? "" : "  (" + step.place + ")";
    text += Format("  %10.3f %10.3f  %-12s  %s%s\n", step.delay, sum, step.what.c_str(), step.name.c_str(),
                   place.c_str());
  }
  return text + "\n";
}

std::string PathsOf(const BoundPreference& bound, const PreferenceTiming& result) {
  std::string text = bound.preference.text + "\n";
  if (!result.actual) return text + "  no path\n\n";
  text += Format("  %d endpoints, %d fail by %.3f ns together", result.setup.endpoints, result.setup.failing,
                 result.setup.failing_sum);
  if (bound.preference.IsClock())
    text += Format("; hold: worst slack %.3f ns, %d fail", result.hold.worst_slack, result.hold.failing);
  text += "\n\n";
  for (const TimingPath& path : result.paths) text += Listing(path);
  return text;
}

}  // namespace

std::string TimingReport(const std::string& design_path, const std::string& preferences_path,
                         const std::vector<BoundPreference>& preferences,
                         const std::vector<PreferenceTiming>& results) {
  const TimingSummary setup = Summarise(results, &PreferenceTiming::setup);
  std::string text = Format("Timing report by sorv\n\n%-13s%s\n%-13s%s\n\n", "Design:", design_path.c_str(),
                            "Preferences:", preferences_path.c_str()) +
                     PreferenceTable(preferences, results);
  // The score stands before the paths: a net's name in them could look like it.
  text +=
      Format("\nTiming errors: %d\nTiming Score: %ld\n\nWorst paths, in ns\n\n", setup.failing, setup.score);
  for (std::size_t i = 0; i < preferences.size(); ++i) text += PathsOf(preferences[i], results[i]);
  return text;
}

}  // namespace toolchain
