#include "scoring/preference_file.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "context/message_line.h"
#include "context/messages.h"
#include "scoring/annotation.h"
#include "scoring/preference_name.h"
#include "ut/line_reader.h"
#include "ut/number.h"
#include "ut/text.h"

namespace orlo::vostrand_lib {
namespace {

// Decided at its first character that is not blank: most lines need no search for a "#".
bool IsBlankOrComment(std::string_view line) {
  const auto text = std::find_if_not(line.begin(), line.end(), ut_in_trim_set);
  return text == line.end() || *text == '#';
}

// The next statement whole, its comment included, trimmed. Blank lines and comment lines take no part; a ";"
// in a comment ends a statement like any other. An unfinished statement at the end of the file is none.
bool NextStatement(ut_line_reader& lines, std::string& statement) {
  statement.clear();
  for (std::string_view line; lines.next(line);) {
    if (IsBlankOrComment(line)) continue;
    statement += line;
    if (line.find(';') == std::string_view::npos) continue;
    statement = ut_trimmed(statement);
    return true;
  }
  return false;
}

// Narrowed to 32 bits before it is multiplied: scores must come out the same to the last digit.
static_assert(std::numeric_limits<float>::is_iec559, "a number too large is infinite");
float ToFactor(std::string_view number) {
  return static_cast<float>(ut_leading_decimal(number));
}

bool RecordAnnotation(const Annotation& annotation, WeightsMap& weights) {
  const UT_STROBJ preference(annotation.preference);
  const UT_STROBJ kind = GetPrfItemType(preference);
  if (kind.empty()) return false;
  WPValue& own = weights[GetCleanedItemName(preference)];  // A kind's bare name is the kind's default itself.
  const WPValue& kind_default = weights[kind];
  own = kind_default;
  if (annotation.weight) own.weight = ToFactor(*annotation.weight) * kind_default.weight;
  if (annotation.penalty) own.penalty = ToFactor(*annotation.penalty) * kind_default.penalty;
  return true;
}

}  // namespace

int GetWPFromPrf(UT_STROBJ prfPath, WeightsMap& weights) {
  ut_line_reader lines(prfPath.getstring());
  if (!lines.is_open()) {
    _ut_error(AboutFile("Unable to open preference file", prfPath).getstring(1));
    return 0;
  }
  int count = 0;
  for (std::string statement; NextStatement(lines, statement);) {
    const std::optional<Annotation> annotation = ReadAnnotation(statement);
    if (annotation && RecordAnnotation(*annotation, weights)) ++count;
  }
  return count;
}

}  // namespace orlo::vostrand_lib
