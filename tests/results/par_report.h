#pragma once

#include <string>

inline constexpr const char* kParHeadings =
    "Level/       Number       Worst        Timing       Worst        Timing       Run          NCD\n"
    "Cost [ncd]   Unrouted     Slack        Score        Slack(hold)  Score(hold)  Time         Status\n"
    "----------   --------     -----        ------       -----------  -----------  ----         ------\n";

inline std::string ParRow(const std::string& name, const std::string& score,
                          const char* status = "Complete") {
  return name + "   *   0   0.150   " + score + "   0.286   0   02:13   " + status;
}

/// What the place-and-route tool leaves behind for one run: its results table amid other text.
inline std::string ParReport(const std::string& row) {
  return "Place & Route Report\n\n" + (kParHeadings + row) + "\n\n* : Design saved.\n";
}
