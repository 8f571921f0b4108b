#pragma once

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

/// What the place-and-route tool and the timing analyser leave behind, without running them. Writes what a
/// run named `name` leaves in the output directory `output_dir` (a full path): its result, its own directory
/// with the design, and its timing report.
struct PretendedRun {
  std::string name;
  double clock_mhz;   ///< Achieved, against a constraint of 100 MHz.
  double setup_ns;    ///< Achieved, against a constraint of 5 ns.
  long timing_score;  ///< Of the place-and-route result.

  void LeaveIn(const std::string& output_dir) const {
    std::filesystem::create_directories(output_dir + "/" + name + ".dir");
    std::ofstream(output_dir + "/" + name + ".par") << ParResult();
    std::ofstream(output_dir + "/" + name + ".twr") << TimingReport();
    std::ofstream(output_dir + "/" + name + ".dir/" + name + ".ncd") << "design of " + name + "\n";
    std::ofstream(output_dir + "/" + name + ".dir/" + name + ".pad") << "pins of " + name + "\n";
  }

  std::string ParResult() const {
    return "Place and route of " + name +
           "\n\n"
           "Level/       Number       Worst        Timing       Worst        Timing       Run          NCD\n"
           "Cost [ncd]   Unrouted     Slack        Score        Slack(hold)  Score(hold)  Time         "
           "Status\n"
           "----------   --------     -----        ------       -----------  -----------  ----         "
           "------\n" +
           Format("%-13s0            0.150        %-13ld0.286        0            02:13        Complete\n",
                  (name + "   *").c_str(), timing_score) +
           "\n* : Design saved.\n";
  }

  std::string TimingReport() const {
    const std::string rule = std::string(75, '-') + "\n";
    return "Timing report of " + name + "\n\n" +
           "Preference                              |   Constraint|       Actual|Levels\n" + rule +
           Row("", "", "") +
           Row("FREQUENCY NET \"clk_c\" 100.000000 MHz ;", "100.000 MHz", Decimal(clock_mhz) + " MHz") +
           "     4\n" + Row("", "", "") + Row("INPUT_SETUP PORT \"data_with_a_long_name\"", "", "") +
           Row(" 5.000 ns CLKPORT \"clk\" ;", "5.000 ns", Decimal(setup_ns) + " ns") + "     2\n" +
           Row("", "", "") + rule + Format("\nTiming Score: %ld\n", timing_score);
  }

 private:
  template <typename... Values>
  static std::string Format(const char* format, Values... values) {
    char text[128];
    std::snprintf(text, sizeof text, format, values...);
    return text;
  }

  // Three decimals, "." in every locale.
  static std::string Decimal(double value) {
    const long thousandths = std::lround(value * 1000);
    return Format("%ld.%03ld", thousandths / 1000, thousandths % 1000);
  }

  // A row of the summary table, up to its last column; a row without values ends there.
  static std::string Row(const std::string& preference, const std::string& constraint,
                         const std::string& actual) {
    return Format("%-40s|%13s|%13s|%s", preference.c_str(), constraint.c_str(), actual.c_str(),
                  actual.empty() ? "\n" : "");
  }
};
