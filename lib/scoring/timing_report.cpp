#include "scoring/timing_report.h"

#include <cstring>
#include <string_view>
#include <utility>

#include "context/message_line.h"
#include "context/messages.h"
#include "scoring/period.h"
#include "scoring/preference_name.h"
#include "ut/line_reader.h"
#include "ut/text.h"

namespace orlo::vostrand_lib {
namespace {

constexpr std::string_view heading =
    "Preference                              |   Constraint|       Actual|Levels";
constexpr std::string_view score_mark = "Score:";

// The log's table has two columns more than the report's. They are empty in every row but a preference's
// last.
constexpr const char* empty_columns = "      |          |\n";
constexpr unsigned long name_width = 40;
constexpr unsigned long value_width = 13;
// "|   Constraint|       Actual|Levels" behind the first "|", and behind the second.
constexpr unsigned long constraint_from_end = 34;
constexpr unsigned long actual_from_end = 20;
// A separator row of 69 characters with its empty columns and line end, and those of the row before it.
constexpr unsigned long separator_in_rows = 69 + 19 + 19;

// The table's rows of one preference, gathered until its separator row.
class Entry {
 public:
  // Takes the next row. True when it is a separator, which completes the entry.
  bool Add(std::string_view row) {
    const std::string_view piece = row.substr(0, name_width);
    rows_.append(row) += empty_columns;
    text_.append(piece);
    return ut_trimmed(piece).empty();
  }

  // Stores the complete entry, unless it is no timing preference with one ";".
  void StoreIn(ResultsMap& results) const;

 private:
  UT_STROBJ text_;
  UT_STROBJ rows_;
};

void SetActual(PrfResultVal& result, const UT_STROBJ& actual) {
  result.actualText = "-";
  result.unit = "";
  for (const auto& [unit, shown] : {std::pair("ns", "(ns)"), std::pair("MHz", "(MHz)")}) {
    if (!actual.contains(unit)) continue;
    result.actualText = actual.left(actual.size() - std::strlen(unit)).trimmed();
    result.unit = shown;
    break;
  }
  result.actualPeriod = GetStandardPeriod(&actual);
}

void Entry::StoreIn(ResultsMap& results) const {
  const unsigned long end = text_.find_char(';', 0);
  if (end >= text_.size() || text_.find_char(';', end + 1) < text_.size()) return;
  const UT_STROBJ preference = text_.left(end);
  const UT_STROBJ key = GetCleanedItemName(preference);
  const UT_STROBJ kind = GetPrfItemType(key);
  if (kind.empty()) return;

  // `left` keeps a text whole that is too short to lose so many characters.
  const UT_STROBJ rows = rows_.left(rows_.size() - separator_in_rows);
  const UT_STROBJ columns = rows.right(constraint_from_end);
  const UT_STROBJ constraint = columns.left(value_width).trimmed();
  const UT_STROBJ actual = columns.right(actual_from_end).left(value_width).trimmed();
  PrfResultVal& result = results[key];
  result.type = kind;
  result.reportRows = rows;
  result.prefText = preference;
  result.constraintText = constraint;
  result.constraintPeriod = GetStandardPeriod(&constraint);
  SetActual(result, actual);
}

bool IsRule(std::string_view line) {
  return line.starts_with('-');
}

// Moves behind the heading and the rule under it.
bool SkipToTable(ut_line_reader& lines) {
  std::string_view line;
  do
    if (!lines.next_with(heading, line)) return false;
  while (line != heading);
  while (lines.next(line))
    if (IsRule(line)) return true;
  return false;
}

void ReadTable(ut_line_reader& lines, ResultsMap& results) {
  Entry entry;
  for (std::string_view line; lines.next(line) && !IsRule(line);) {
    if (!entry.Add(line)) continue;
    entry.StoreIn(results);
    entry = Entry();
  }
}

UT_STROBJ ReadScore(ut_line_reader& lines) {
  std::string_view line;
  if (!lines.next_with(score_mark, line)) return "0";
  return UT_STROBJ(line.substr(line.find(score_mark) + score_mark.size()));
}

}  // namespace

UT_STROBJ GetPrfResultVal(UT_STROBJ twrPath, ResultsMap& prfResults) {
  ut_line_reader lines(twrPath.getstring());
  if (!lines.is_open()) {
    _ut_error(AboutFile("Unable to open twr file", twrPath).getstring(1));
    return "0";
  }
  if (!SkipToTable(lines)) return "0";
  ReadTable(lines, prfResults);
  return ReadScore(lines);
}

}  // namespace orlo::vostrand_lib
