#include "results/score_table.h"

namespace orlo::vostrand_lib {
namespace {

constexpr const char* rule =
    "--------------------------------------------------"
    "--------------------------------------------------\n";
constexpr const char* heading =
    "Preference                              |   Constraint|       Actual|Levels|       w/p|      PSScore\n";
constexpr const char* spacer =
    "                                        |             |             |      |          |\n";

}  // namespace

void WriteScoreTableTop(RunLog& log) {
  log << rule << heading << rule << spacer;
}

void WriteScoreTableRows(RunLog& log, const ResultsMap& results, const UT_STROBJ& total_line) {
  for (const auto& [name, result] : results) log << result.reportRows.getstring() << spacer;
  log << rule << total_line.getstring() << rule << "\n";
}

UT_STROBJ TotalLine(float score) {
  return UT_STROBJ().str_format("Total PSScore:%10.3f\n", static_cast<double>(score));
}

}  // namespace orlo::vostrand_lib
