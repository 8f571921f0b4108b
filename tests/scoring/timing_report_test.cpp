#include "scoring/timing_report.h"

#include "common/scratch.h"
#include "common/tool_run.h"
#include "context/thread_context.h"

namespace orlo::vostrand_lib {
namespace {

std::string Row(const char* name, const char* constraint, const char* actual) {
  return UT_STROBJ().str_format("%-40s|%13s|%13s|     4\n", name, constraint, actual).getstring();
}

const std::string head = "Preference                              |   Constraint|       Actual|Levels\n";
const std::string sep = Row("", "", "").substr(0, 69) + "\n";
const std::string row_a = Row("PERIOD \"a\" 10 ns ;", "10.000 ns", "8.500 ns");
const std::string row_b = Row("CLOCK_TO_OUT b;", "5.000 ns", "-");
const std::string row_c = Row("FREQUENCY c;", "100.000 MHz", "200.000 MHz");
const std::string shown_a = " PERIOD\"a\"10ns{PERIOD,PERIOD \"a\" 10 ns ,10.000 ns,8.500,(ns),10,8.5}";
const std::string shown_b = " CLOCK_TO_OUTb{CLOCK_TO_OUT,CLOCK_TO_OUT b,5.000 ns,-,,5,0}";

class TimingReport : public ScratchTest {
 protected:
  // The timing score, then " key{all members but the rows}" for every record.
  std::string Results(const std::string& report) {
    std::ostringstream shown;
    shown << '[' << GetPrfResultVal(Write("a.twr", report).c_str(), results_).getstring() << ']';
    for (const auto& [key, r] : results_) {
      shown << ' ' << key.getstring() << '{';
      for (const UT_STROBJ& text : {r.type, r.prefText, r.constraintText, r.actualText, r.unit})
        shown << text.getstring() << ',';
      shown << r.constraintPeriod << ',' << r.actualPeriod << '}';
    }
    return shown.str();
  }

  ResultsMap results_;
};

TEST_F(TimingReport, GivesTheRecordsAndTheScore) {
  const std::string whole =
      "x\n" + head + "x\n-x\n" + sep + row_a + sep + row_b + sep + "-\nx\nTotal Score: 1 \n";
  std::string with_returns;
  for (const char c : whole) with_returns += c == '\n' ? "\r\n" : std::string(1, c);
  const std::string open = head + "-\n" + row_a + sep;
  const std::string kept = "[0]" + shown_a;
  const std::string c = " FREQUENCYc{FREQUENCY,FREQUENCY c,";
  const std::pair<std::string, std::string> cases[] = {
      {whole + "Score: 2", "[ 1 ]" + shown_b + shown_a},
      {with_returns, "[ 1 ]" + shown_b + shown_a},
      {"Score: 5\n" + open + "-\n", kept},
      {open + "-\nScore:1 Score: 2", "[1 Score: 2]" + shown_a},
      {head + "-\n" + row_c + sep + "-", "[0]" + c + "100.000 MHz,200.000,(MHz),10,5}"},
      // No exact heading, no rule, a table that is not closed, and one closed by a row.
      {head.substr(0, 75) + " \n-\n" + row_a + sep + "-\nScore: 5\n", "[0]"},
      {head + row_a + sep + "Score: 5\n", "[0]"},
      {open + "Score: 5\n", kept},
      {open + "-" + row_b + sep + "Score: 5\n", "[ 5]" + shown_a},
      // Rows that run together, a preference of no kind, one without ";", a last one without separator.
      {head + "-\n" + row_a + row_b + sep + Row("WIDTH;", "", "") + sep + Row("PERIOD", "", "") + sep +
           row_a + sep + row_b + "-\n",
       kept},
      // The kind is that of the name without blanks; "ns" goes before "MHz", units are cut before blanks.
      {head + "-\n" + Row("FREQUENCY PER\tIOD;", "-", "7.000 ns MHz") + sep,
       "[0] FREQUENCYPERIOD{PERIOD,FREQUENCY PER\tIOD,-,7.000 ns M,(ns),0,0.007}"},
      // Columns count from the end: of a row with more text, one without a whole separator, a full piece.
      {head + "-\n" + row_c.substr(0, 75) + "zz\n" + sep,
       "[0]" + c + "100.000 MHz|,200.000 M,(MHz),10000,5000}"},
      {head + "-\n" + row_c + "\n", "[0]" + c + "FREQUE,-,,0,0}"},
      {head + "-\n" + row_c.substr(0, 75) + std::string(179, ' ') + "\n", "[0]" + c + ",-,,0,0}"}};
  for (const auto& [report, results] : cases) {
    results_.clear();
    EXPECT_EQ(Results(report), results) << report;
  }
}

TEST_F(TimingReport, RowsAreTheLogsTableAndLaterReportsOverwriteThem) {
  const std::string first = Row("FREQUENCY NET \"a_very_long_name_of_a_net", "1.000 ns", "2.000 ns");
  const std::string last = Row("_indeed\";", "100.000 MHz", "50.000 MHz");
  const std::string key = "FREQUENCYNET\"a_very_long_name_of_a_net_indeed\"";
  const auto rows = [&](const std::string& name) {
    return std::string(results_[name.c_str()].reportRows.view());
  };
  const std::string shown = Results(head + "-\n" + first + last + sep + row_b + sep + "PERIOD A;\n\n-\n");
  const std::string kept = "[0]" + shown_b + " " + key +
                           "{FREQUENCY,FREQUENCY NET \"a_very_long_name_of_a_net_indeed\"," +
                           "100.000 MHz,50.000,(MHz),10,20} PERIODA{PERIOD,PERIOD A,";
  EXPECT_EQ(shown, kept + "|,-,,0,0}");
  EXPECT_EQ(rows(key), first.substr(0, 75) + "      |          |\n" + last.substr(0, 75));
  EXPECT_EQ(rows("CLOCK_TO_OUTb"), row_b.substr(0, 75));
  // Too short to lose a separator and the empty columns, these stay whole.
  EXPECT_EQ(rows("PERIODA"), "PERIOD A;      |          |\n      |          |\n");

  const std::string now = Row("PERIOD A;", "9.000 ns", "9.500 ns");
  EXPECT_EQ(Results(head + "-\n" + now + sep), kept + "9.000 ns,9.500,(ns),9,9.5}");
  EXPECT_EQ(rows("PERIODA"), now.substr(0, 75));
  EXPECT_EQ(rows("CLOCK_TO_OUTb"), row_b.substr(0, 75));
}

TEST_F(TimingReport, ThatCannotBeOpenedIsAnErrorThatNamesIt) {
  ToolRun run(Root());
  StartRun(run.record);
  EXPECT_STREQ(GetPrfResultVal(Path("100%s.twr").c_str(), results_).getstring(), "0");
  EXPECT_EQ(run.logger.err, "ERROR - vostrand: Unable to open twr file \"" + Path("100%s.twr") + "\".\n");
}

}  // namespace
}  // namespace orlo::vostrand_lib
