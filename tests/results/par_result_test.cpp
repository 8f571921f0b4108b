#include "results/par_result.h"

#include "common/scratch.h"
#include "results/par_report.h"

using namespace orlo::vostrand_lib;

namespace {

constexpr std::int64_t kLost = -77;  // Expected of a file in which no row counts.

struct Case {
  const char* what;
  std::string file;
  std::int64_t score;
  std::string line;
};

Case Row(const char* what, const std::string& row, std::int64_t score) {
  return {what, ParReport(row), score, row};
}

using ParResultTest = ScratchTest;

TEST_F(ParResultTest, ReadsTheFirstRowUnderTheHeadings) {
  const std::string headings = kParHeadings, met = ParRow("5_1", "0"), blanks(300, ' ');
  const std::size_t end1 = headings.find('\n') + 1, end2 = headings.find('\n', end1) + 1;
  const std::string h1 = headings.substr(0, end1), h2 = headings.substr(end1, end2 - end1),
                    h3 = headings.substr(end2);
  const std::string rule = h3.substr(0, h3.size() - 1);
  const auto padded_rule = [&](std::size_t width) { return (rule + blanks).substr(0, width) + "\n"; };
  const std::string long_row = met + blanks;
  const Case cases[] = {
      Row("missed", ParRow("5_1", "1234.9x"), 1234),
      Row("no digits", ParRow("5_1", "met"), 0),
      Row("too large", ParRow("5_1", "99999999999999999999"), INT64_MAX),
      Row("complete without a score", ParRow("5_1", "-"), 0),
      Row("incomplete without a score", ParRow("5_1", "-", "Partial"), -1),
      Row("a blank in the run time shifts the status", "5_1 * 0 1 - 1 0 2 min Complete", -1),
      Row("all white space separates", "\t5_1\v*\f0 1 7\t1 0 1 Complete and more", 7),
      {"indented, CR LF", " \t" + h1 + "\b" + h2 + rule + " \r\n  " + met + "\r\n", 0, "  " + met},
      {"no line end", headings + met, 0, met},
      {"long row", headings + long_row, 0, long_row.substr(0, 254)},
      {"rule of 253 characters", h1 + h2 + padded_rule(253) + met, 0, met},
      {"rule of 254 characters, whose line end is an empty row", h1 + h2 + padded_rule(254) + met, kLost, ""},
      {"first heading twice", h1 + headings + met, kLost, ""},
      {"first heading twice, then a whole table", h1 + h1 + headings + met, 0, met},
      {"blank line among the headings", h1 + h2 + "\n" + h3 + met, kLost, ""},
      {"other case", "level/" + headings.substr(6) + met, kLost, ""},
      {"nothing under the headings", headings, kLost, ""},
      {"blank line under the headings", headings + "\n" + met, kLost, ""},
      {"second row", headings + ParRow("5_2", "0") + "\n" + met, kLost, ""},
      {"name goes on", headings + ParRow("5_10", "0"), kLost, ""},
      {"design not saved", headings + "5_1 - 0 0.150 0 0.286 0 02:13 Complete", kLost, ""},
      {"eight tokens", headings + "5_1 * 0 0.150 0 0.286 0 Complete", kLost, ""},
  };
  for (const auto& [what, file, score, line] : cases) {
    ParScoreVal result;
    result.name = "5_1";
    result.score = kLost;
    EXPECT_EQ(GetParResult(Write("5_1.par", file).c_str(), result), score != kLost) << what;
    EXPECT_EQ(result.valid, score != kLost) << what;
    EXPECT_EQ(result.score, score) << what;
    EXPECT_EQ(result.line.view(), line) << what;
  }
  ParScoreVal result;
  EXPECT_FALSE(GetParResult(Path("missing.par").c_str(), result));
  EXPECT_FALSE(GetParResult(Root().c_str(), result));
}

}  // namespace
