#include "analysis/analyser_script.h"

#include <map>
#include <set>
#include <stdexcept>

#include "analysis/netlist_files.h"
#include "common/text.h"

namespace toolchain {
namespace {

class Script {
 public:
  Script(const RoutedDesign& design, int paths) : design_(design), paths_(paths) {
    for (std::size_t i = 0; i < design.cells.size(); ++i) {
      const RoutedDesign::CellKind kind = design.cells[i].kind;
      if (kind == RoutedDesign::CellKind::input || kind == RoutedDesign::CellKind::output)
        pads_[design.cells[i].name] = PortName(i);
    }
  }

  void AddClocks(const std::vector<BoundPreference>& preferences, bool ideal) {
    std::set<std::size_t> clocks;
    for (const BoundPreference& preference : preferences) clocks.insert(preference.clock);
    std::string groups;
    for (const std::size_t clock : clocks) {
      text += "create_clock -name " + Clock(clock) + Format(" -period %.3f", analysis_period) +
              " [get_ports " + Pad(clock) + "]\n";
      groups += " -group " + Clock(clock);
    }
    if (!ideal && !clocks.empty()) text += "set_propagated_clock [all_clocks]\n";
    if (clocks.size() > 1) text += "set_clock_groups -asynchronous" + groups + "\n";
  }

  // Clocks are checked before outputs and these before inputs: no check may meet the paths that the external
  // delays of a later one bring in.
  void AddCheck(std::size_t index, const BoundPreference& bound) {
    const std::string clock = "[get_clocks " + Clock(bound.clock) + "]";
    // Not "from the clock": that would take in paths on which the clock itself is data, with half a period.
    const std::string start = "[all_registers -clock " + clock + " -clock_pins]";
    const double shift = analysis_period - bound.preference.Nanoseconds();
    if (bound.preference.IsClock()) {
      AddFind(index, "setup", "max", "-from " + start + " -to " + clock, shift, paths_, false);
      AddFind(index, "hold", "min", "-from " + start + " -to " + clock, 0.0, 0, false);
      return;
    }
    const bool is_setup = bound.preference.kind == PreferenceKind::input_setup;
    std::string pads;
    for (const std::size_t port : bound.ports) pads += ' ' + Pad(port);
    text += "set pads [get_ports {" + pads + " }]\n";
    // At 0: the time that the preference gives is taken off the slack.
    text += std::string(is_setup ? "set_input_delay" : "set_output_delay") + " 0 -clock " +
            Clock(bound.clock) + " -add_delay $pads\n";
    const std::string route = is_setup ? "-from $pads -to " + clock : "-from " + start + " -to $pads";
    AddFind(index, "setup", "max", route, shift, paths_, !is_setup);
  }

  std::string text;

 private:
  const std::string& Pad(std::size_t port) const { return pads_.at(design_.ports[port].name); }
  static std::string Clock(std::size_t port) { return Format("c%zu", port); }

  void AddFind(std::size_t index, const char* check, const char* delay, const std::string& route,
               double shift, int paths, bool ports) {
    text += Format("check %zu %s [find_timing_paths -path_delay %s %s -group_count 1000000] %.9f %d %d\n",
                   index, check, delay, route.c_str(), shift, paths, ports ? 1 : 0);
  }

  const RoutedDesign& design_;
  int paths_;
  std::map<std::string, std::string> pads_;  // The analyser's port by the design's.
};

}  // namespace

std::string AnalyserScript(const RoutedDesign& design, const std::vector<BoundPreference>& preferences,
                           const AnalysisOptions& options, const std::string& procedures,
                           const std::string& folder) {
  Script script(design, options.paths);
  script.text = "source {" + procedures + "}\nanalyse {\nread_design {" + folder + "}\n";
  script.AddClocks(preferences, options.ideal_clocks);
  const auto add_checks = [&](auto wanted) {
    for (std::size_t i = 0; i < preferences.size(); ++i)
      if (wanted(preferences[i].preference)) script.AddCheck(i, preferences[i]);
  };
  add_checks([](const Preference& preference) { return preference.IsClock(); });
  add_checks([](const Preference& preference) { return preference.kind == PreferenceKind::clock_to_out; });
  add_checks([](const Preference& preference) { return preference.kind == PreferenceKind::input_setup; });
  return script.text + "}\n";
}

}  // namespace toolchain
