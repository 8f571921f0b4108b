#include "results/par_result.h"

#include <array>
#include <optional>
#include <string_view>

#include "ut/line_reader.h"
#include "ut/number.h"
#include "ut/text.h"

namespace orlo::vostrand_lib {
namespace {

enum column : std::size_t { level_cost = 0, saved_mark = 1, timing_score = 4, status = 8 };
constexpr std::size_t columns_read = 9;

using Tokens = std::array<std::string_view, columns_read>;

// The row's first nine tokens; nothing when it has fewer.
std::optional<Tokens> SplitRow(std::string_view row) {
  Tokens tokens;
  std::size_t at = 0;
  for (std::string_view& token : tokens) {
    while (at < row.size() && ut_is_space(row[at])) ++at;
    const std::size_t begin = at;
    while (at < row.size() && !ut_is_space(row[at])) ++at;
    if (begin == at) return std::nullopt;
    token = row.substr(begin, at - begin);
  }
  return tokens;
}

std::int64_t ScoreOf(const Tokens& row) {
  constexpr std::int64_t none = -1;
  if (row[timing_score] != "-") return ut_leading_integer(row[timing_score]);
  return row[status] == "Complete" ? 0 : none;
}

// Moves behind the three headings. A line that breaks their sequence is not tried as its beginning.
bool SkipHeadings(ut_line_reader& lines) {
  constexpr std::size_t headings = std::size(par_table_headings);
  std::string_view line;
  for (std::size_t seen = 0; seen < headings;) {
    const char* const heading = par_table_headings[seen];
    if (!(seen == 0 ? lines.next_with(heading, line) : lines.next(line))) return false;
    seen = ut_trimmed(line) == heading ? seen + 1 : 0;
  }
  return true;
}

}  // namespace

bool GetParResult(const UT_STROBJ& parFile, ParScoreVal& result) {
  ut_line_reader lines(parFile.getstring());
  std::string_view row;
  if (!SkipHeadings(lines) || !lines.next(row)) return false;
  const std::optional<Tokens> tokens = SplitRow(row);
  if (!tokens || (*tokens)[level_cost] != result.name.view() || (*tokens)[saved_mark] != "*") return false;
  result.score = ScoreOf(*tokens);
  result.line = UT_STROBJ(row);
  result.valid = true;
  return true;
}

}  // namespace orlo::vostrand_lib
