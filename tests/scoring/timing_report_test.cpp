#include "scoring/timing_report.h"

#include "common/scratch.h"
#include "scoring/period.h"
#include "ut/c_locale.h"

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
      {head + "-\n" + row_c + sep + "-", "[0]" + c + "100.000 MHz,200.000,(MHz),10,5}"},
      // No exact heading, no rule, a table that is not closed, and one closed by a row.
      {head.substr(0, 75) + " \n-\n" + row_a + sep + "-\nScore: 5\n", "[0]"},
      {open + "-" + row_b + sep + "Score: 5\n", "[ 5]" + shown_a},
      // Rows that run together, a preference of no kind, one without ";", a last one without separator.
      {head + "-\n" + row_c + row_b + sep + Row("WIDTH;", "", "") + sep + Row("PERIOD", "", "") + sep +
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

TEST_F(TimingReport, LaterReportsOverwriteRecordsAndTheirRows) {
  const std::string first = Row("FREQUENCY NET \"a_very_long_name_of_a_net", "1.000 ns", "2.000 ns");
  const std::string last = Row("_indeed\";", "100.000 MHz", "50.000 MHz");
  const UT_STROBJ key("FREQUENCYNET\"a_very_long_name_of_a_net_indeed\"");
  Results(head + "-\n" + first + last + sep + row_a + sep + "PERIOD A;\n\n-\n");
  EXPECT_EQ(results_[key].reportRows.view(),
            first.substr(0, 75) + "      |          |\n" + last.substr(0, 75));
  // Too short to lose a separator and the empty columns, these stay whole.
  EXPECT_STREQ(results_["PERIODA"].reportRows.getstring(),
               "PERIOD A;      |          |\n      |          |\n");

  results_.erase(key);
  const std::string now = Row("PERIOD A;", "9.000 ns", "-");
  EXPECT_EQ(Results(head + "-\n" + Row("PERIOD A;", "9.000 ns", "8.000 ns") + sep + now + sep),
            "[0]" + shown_a + " PERIODA{PERIOD,PERIOD A,9.000 ns,-,,9,0}");
  EXPECT_EQ(results_["PERIODA"].reportRows.view(), now.substr(0, 75));
}

// Floats compare exactly: the last bit tells 32-bit arithmetic from wider. Cutting more characters than a
// text holds cuts none.
TEST(TimingReportPeriod, OfAColumnText) {
  std::istringstream cases(
      "10.000 ns=10,5.425 ns=5.425,-1.250 ns=-1.25,16777.219 ns=0x1.0624e2p+14,4294967.297 ns=0.001,"
      "1 ns=0.011,10 ns=1.010,1000 ns=0,10.5 ns=0,ns=0,100.000 MHz=10,-50.000 MHz=-20,10 MHz=990.098999,"
      "5.000 MHz ns=0.005,0.000 MHz=1e8,0.001 MHz=999999.938,-0.010 MHz=1e8,-0.011 MHz=-90909.0938,"
      "-=0,5.425 NS=0,=0");
  for (std::string column, period; std::getline(cases, column, '=') && std::getline(cases, period, ',');) {
    const UT_STROBJ text(column.c_str());
    const auto expected = [&] {
      const ut_c_locale_scope c_locale;
      return std::stof(period);
    };
    EXPECT_EQ(GetStandardPeriod(&text), expected()) << column;
  }
}

}  // namespace
}  // namespace orlo::vostrand_lib
