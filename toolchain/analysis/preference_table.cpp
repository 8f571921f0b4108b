#include "analysis/preference_table.h"

#include "common/text.h"

namespace toolchain {
namespace {

constexpr std::size_t text_width = 40;

// The readers of a report know the columns by their places, and a separator row by its 69 characters.
std::string Row(const std::string& text, const std::string& constraint, const std::string& actual) {
  return Format("%-40s|%13s|%13s|", text.c_str(), constraint.c_str(), actual.c_str());
}

// How much of the text goes into the next row. A row that begins with "-" would end the table, so the
// character before it moves down with it; blanks within a statement count nowhere.
std::size_t NextPiece(const std::string& text) {
  std::size_t size = text_width;
  while (size > 1 && text[size] == '-') --size;
  return size;
}

std::string RowsOf(const Preference& preference, const PreferenceTiming& result) {
  std::string rows;
  std::string rest = preference.text;
  while (rest.size() > text_width) {
    const std::size_t piece = NextPiece(rest);
    rows += Row(rest.substr(0, piece), "", "") + '\n';
    rest.erase(0, piece);
  }
  const std::string actual = result.actual ? InUnitOf(preference, *result.actual) : "-";
  const std::string levels = result.paths.empty() ? "-" : Format("%d", result.paths.front().levels);
  const std::string constraint = InUnitOf(preference, preference.Nanoseconds());
  return rows + Row(rest, constraint, actual) + Format("%6s\n", levels.c_str());
}

}  // namespace

std::string PreferenceTable(const std::vector<BoundPreference>& preferences,
                            const std::vector<PreferenceTiming>& results) {
  const std::string rule = std::string(75, '-') + '\n';
  const std::string separator = Row("", "", "") + '\n';
  std::string table =
      "Preference                              |   Constraint|       Actual|Levels\n" + rule + separator;
  for (std::size_t i = 0; i < preferences.size(); ++i)
    table += RowsOf(preferences[i].preference, results[i]) + separator;
  return table + rule;
}

}  // namespace toolchain
