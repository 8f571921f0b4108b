#include "par/reports.h"

#include <ctime>
#include <map>

#include "analysis/preference_table.h"
#include "common/text.h"
#include "par/engine_run.h"

namespace toolchain {
namespace {

constexpr const char* results_heading =
    "Level/       Number       Worst        Timing       Worst        Timing       Run          NCD\n"
    "Cost [ncd]   Unrouted     Slack        Score        Slack(hold)  Score(hold)  Time         Status\n"
    "----------   --------     -----        ------       -----------  -----------  ----         ------\n";

std::string Now() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  ::localtime_r(&now, &local);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
  return text;
}

std::string Utilization(const RoutedDesign& design) {
  std::string text;
  for (const auto& [kind, used] : design.utilization)
    text += Format("%s%d of %d %s", text.empty() ? "" : ", ", used.used, used.available,
                   kind == "GENERIC_IOB" ? "pads" : "slices");
  return text;
}

std::string Header(const ParRequest& request, const RoutedDesign& design) {
  std::string text = "Place and route by par\n\n";
  const auto line = [&](const char* what, const std::string& value) {
    text += Format("%-13s%s\n", what, value.c_str());
  };
  line("Date:", Now());
  line("Engine:", design.engine);
  line("Design:", request.design);
  line("Output:", request.netlist);
  line("Preferences:", request.preferences);
  line("Options:", request.options);
  if (request.cleanups) line("", "-c has no counterpart in this engine; it changed nothing.");
  line("Effort:", Format("%d, %s; seed %d; at most %lld s", request.effort, EffortInWords(request.effort),
                         request.seed, static_cast<long long>(TimeLimit(request).count())));
  line("Used:", Utilization(design));
  line("Pins:", request.pins);
  return text;
}

// A column of the results table; a wider value keeps a blank behind it.
std::string Column(const std::string& value) {
  return Format("%-12s ", value.c_str());
}

std::string ResultColumns(const TimingSummary& summary) {
  if (!summary.worst_slack) return Column("-") + Column("-");
  return Column(Format("%.3f", *summary.worst_slack)) + Column(Format("%ld", summary.score));
}

}  // namespace

std::string PinList(const RoutedDesign& design) {
  std::map<std::string, const RoutedDesign::Cell*> pads;
  for (const RoutedDesign::Cell& cell : design.cells)
    if (cell.kind == RoutedDesign::CellKind::input || cell.kind == RoutedDesign::CellKind::output)
      pads[cell.name] = &cell;
  std::string text = Format("%-10s %-14s %s\n", "Direction", "Pad", "Port") + std::string(40, '-') + '\n';
  for (const Port& port : design.ports)
    text += Format("%-10s %-14s %s\n",
                   port.is_clock   ? "clock"
                   : port.is_input ? "input"
                                   : "output",
                   pads.at(port.name)->place.c_str(), port.name.c_str());
  return text;
}

std::string ParReport(const ParRequest& request, const RoutedDesign& design,
                      const std::vector<BoundPreference>& preferences,
                      const std::vector<PreferenceTiming>& results, std::chrono::seconds run_time) {
  const auto seconds = static_cast<long long>(run_time.count());
  return Header(request, design) + "\n" + PreferenceTable(preferences, results) + "\n" + results_heading +
         Column(request.row_name + "   *") + Column(std::to_string(design.unrouted)) +
         ResultColumns(Summarise(results, &PreferenceTiming::setup)) +
         ResultColumns(Summarise(results, &PreferenceTiming::hold)) +
         Column(Format("%02lld:%02lld", seconds / 60, seconds % 60)) + "Complete\n\n" +
         "*  The design was saved. Slacks in ns; scores are the failing endpoints' slacks added up, in ps.\n";
}

}  // namespace toolchain
