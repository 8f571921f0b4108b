#include "scoring/preference_file.h"

#include <string>
#include <string_view>

#include "context/messages.h"
#include "scoring/annotation.h"
#include "scoring/preference_name.h"
#include "ut/line_reader.h"
#include "ut/number.h"
#include "ut/text.h"

namespace orlo::vostrand_lib {
namespace {

// The next statement whole, its comment included, trimmed. Blank lines and comment lines take no part; a ";"
// in a comment ends a statement like any other. An unfinished statement at the end of the file is none.
bool next_statement(ut_line_reader& lines, std::string& statement) {
  statement.clear();
  for (std::string_view line; lines.next(line);) {
    if (ut_trimmed(line.substr(0, line.find('#'))).empty()) continue;
    statement += line;
    if (line.find(';') == std::string_view::npos) continue;
    statement = ut_trimmed(statement);
    return true;
  }
  return false;
}

// Narrowed to 32 bits before it is multiplied: scores must come out the same to the last digit.
float factor(std::string_view number) {
  return static_cast<float>(ut_leading_decimal(number));
}

bool record(const Annotation& annotation, std::map<UT_STROBJ, WPValue>& weights) {
  const UT_STROBJ preference(annotation.preference);
  const UT_STROBJ kind = GetPrfItemType(preference);
  if (kind.empty()) return false;
  WPValue& own = weights[GetCleanedItemName(preference)];  // A kind's bare name is the kind's default itself.
  const WPValue& kind_default = weights[kind];
  own = kind_default;
  if (annotation.weight) own.weight = factor(*annotation.weight) * kind_default.weight;
  if (annotation.penalty) own.penalty = factor(*annotation.penalty) * kind_default.penalty;
  return true;
}

}  // namespace

int GetWPFromPrf(UT_STROBJ prfPath, std::map<UT_STROBJ, WPValue>& weights) {
  ut_line_reader lines(prfPath.getstring());
  if (!lines.is_open()) {
    _ut_error(
        UT_STROBJ().str_format("Unable to open preference file \"%s\".", prfPath.getstring()).getstring(1));
    return 0;
  }
  int count = 0;
  for (std::string statement; next_statement(lines, statement);) {
    const std::optional<Annotation> annotation = ReadAnnotation(statement);
    if (annotation && record(*annotation, weights)) ++count;
  }
  return count;
}

WPValue GetWPByPrfName(const UT_STROBJ& name, const UT_STROBJ& type, std::map<UT_STROBJ, WPValue>& weights) {
  const auto own = weights.find(name);
  return own != weights.end() ? own->second : weights[type];
}

}  // namespace orlo::vostrand_lib
