#include <algorithm>
#include <cmath>
#include <limits>

#include "page/axis.h"
#include "page/sections.h"

namespace vostrand {
namespace {

constexpr double on_the_line = 0.001;   // Slack (ns) within which a preference is neither met nor missed.
constexpr std::size_t whole_rows = 40;  // Preferences shown each by itself: those missed most.

// One preference over all runs.
struct SlackRow {
  std::size_t preference = 0;  // Index in the result's `preferences`.
  // By run, in plan order; null where the run did not finish or did not report the preference.
  std::vector<const PreferenceScore*> runs;
  std::vector<double> slacks;  // What was reported, ns, sorted.
  std::size_t missed = 0;      // Runs that miss it.

  bool AlwaysMissed() const { return missed > 0 && missed == slacks.size(); }
};

// All preferences: those that most runs miss first, and of these the ones missed by most.
std::vector<SlackRow> SlackRows(const SweepResult& result) {
  std::vector<SlackRow> rows(result.preferences.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    rows[i].preference = i;
    rows[i].runs.resize(result.runs.size());
  }
  for (std::size_t run = 0; run < result.runs.size(); ++run)
    for (const PreferenceScore& score : result.runs[run].preferences) {
      const auto slack = static_cast<double>(score.slack_ns);
      if (score.carried_over || score.actual == "-" || !std::isfinite(slack)) continue;
      SlackRow& row = rows[score.preference];
      row.runs[run] = &score;
      row.slacks.push_back(slack);
      row.missed += slack < -on_the_line;
    }
  for (SlackRow& row : rows) std::sort(row.slacks.begin(), row.slacks.end());
  const auto worst = [](const SlackRow& row) {
    return row.slacks.empty() ? std::numeric_limits<double>::infinity() : row.slacks.front();
  };
  std::stable_sort(rows.begin(), rows.end(), [&](const SlackRow& a, const SlackRow& b) {
    return a.missed != b.missed ? a.missed > b.missed : worst(a) < worst(b);
  });
  return rows;
}

constexpr std::size_t shared_rows = 12;        // For the others.
constexpr std::size_t most_with_numbers = 14;  // Runs for which there is room to write slacks into cells.

// The worst of some preferences in one run, with its share of the constraint.
struct Cell {
  bool reported = false;
  double slack = 0;
  double share = 0;
};

Cell Worst(const SlackRow* from, const SlackRow* to, std::size_t run) {
  Cell worst;
  for (; from != to; ++from) {
    const PreferenceScore* score = from->runs[run];
    if (score == nullptr) continue;
    const auto slack = static_cast<double>(score->slack_ns);
    if (worst.reported && slack >= worst.slack) continue;
    worst = {true, slack, std::abs(slack) / std::max(static_cast<double>(score->constraint_ns), 1e-9)};
  }
  return worst;
}

std::string Look(const Cell& cell) {
  if (!cell.reported) return "x";
  if (std::abs(cell.slack) <= on_the_line) return "z";
  const int level = cell.share < 0.02 ? 1 : cell.share < 0.1 ? 2 : 3;
  return (cell.slack < 0 ? "r" : "g") + std::to_string(level);
}

void WriteHead(Html& page, const SweepResult& result, const std::vector<std::size_t>& runs) {
  page << "<thead><tr><th scope=col>Preference";
  for (const std::size_t run : runs) {
    page << "<th scope=col";
    if (run == result.order.front()) page << " class=best";
    page << "><span>" << result.runs[run].record.name << "</span>";
  }
  page << "</thead><tbody>";
}

void WriteMatrixRow(Html& page, const SlackRow* from, const SlackRow* to,
                    const std::vector<std::size_t>& runs, const SweepResult& result) {
  const auto shared = static_cast<std::size_t>(to - from);
  page << "<tr><th scope=row title=\"";
  if (shared == 1) {
    const std::string& name = result.preferences[from->preference].Title();
    page << name << "\"" << std::string(from->AlwaysMissed() ? " class=always" : "") << ">" << name;
  } else {
    for (const SlackRow* row = from; row != to; ++row)
      page << result.preferences[row->preference].Title() << "\n";
    page << "\">worst of " << shared << " more";
  }
  for (const std::size_t run : runs) {
    const Cell cell = Worst(from, to, run);
    page << "<td class=" << Look(cell) << ">" << (cell.reported ? Decimals(cell.slack) : "–");
  }
}

void WriteLead(Html& page, const std::vector<SlackRow>& rows, const SweepResult& result) {
  const auto hopeless = static_cast<std::size_t>(
      std::count_if(rows.begin(), rows.end(), [](const SlackRow& row) { return row.AlwaysMissed(); }));
  page << "<p class=lead>";
  if (hopeless == 0)
    page << "No preference is missed by every run.";
  else if (hopeless == 1)
    page << "<code>" << result.preferences[rows.front().preference].Title()
         << "</code> is missed by every run: that is the design or its constraint, not luck.";
  else
    page << hopeless
         << " preferences are missed by every run: that is the design or its constraints, not luck.";
  page << " Slack in ns; those that most runs miss come first.</p>";
}

constexpr double strip = 420;
constexpr double margin = 8;

void WriteStrip(Html& page, const SlackRow& row, std::size_t best, const Axis& axis) {
  page << "<svg class=strip viewBox='0 0 420 26' aria-hidden=true><path class=zero d='M" << axis.At(0)
       << " 0v26'/><path class=range d='M" << axis.At(row.slacks.front()) << " 13H"
       << axis.At(row.slacks.back()) << "'/>";
  for (const bool met : {true, false}) {
    page << "<path class=" << std::string(met ? "dots" : "misses") << " d='";
    for (const double slack : row.slacks)
      if (met == (slack >= -on_the_line)) page << "M" << std::round(axis.At(slack) * 2) / 2 << " 13h0";
    page << "'/>";
  }
  if (row.runs[best] != nullptr)
    page << "<circle class=bestdot cx=" << axis.At(static_cast<double>(row.runs[best]->slack_ns))
         << " cy=13 r=5 />";
  page << "</svg>";
}

void WriteSpreadRow(Html& page, const SlackRow& row, const SweepResult& result, const Axis& axis) {
  const Preference& preference = result.preferences[row.preference];
  page << "<tr><th scope=row title=\"" << preference.Title() << "\">" << preference.Title() << "<td class=n>"
       << preference.constraint << "<td>";
  if (!row.slacks.empty()) WriteStrip(page, row, result.order.front(), axis);
  const auto number = [&](std::size_t numerator) {
    page << "<td class=n>"
         << (row.slacks.empty() ? "–" : Decimals(row.slacks[(row.slacks.size() - 1) * numerator / 2]));
  };
  for (const std::size_t half : {0U, 1U, 2U}) number(half);
  page << "<td class='n " << std::string(row.missed > 0 ? "bad" : "good") << "'>" << row.missed << " of "
       << row.slacks.size();
}

void WriteTable(Html& page, const SlackRow* from, const SlackRow* to, const SweepResult& result,
                const Axis& axis) {
  OpenRegion(page, "Slack of each preference");
  page << "<table class=spread><thead><tr><th scope=col>Preference<th scope=col class=n>Constraint<th "
          "scope=col><span class=unseen>Slack, ns"
          "</span><svg class=strip viewBox='0 0 420 18' aria-hidden=true>";
  for (const Axis::Tick& tick : axis.Ticks(8))
    page << "<text class=mid x=" << std::clamp(axis.At(tick.value), 14.0, strip - 14) << " y=13>" << tick.text
         << "</text>";
  page << "</svg><th scope=col class=n>Worst<th scope=col class=n>Median<th scope=col class=n>Best"
          "<th scope=col class=n>Missed</thead><tbody>";
  for (; from != to; ++from) WriteSpreadRow(page, *from, result, axis);
  page << "</tbody></table></div>";
}

}  // namespace

void WriteSlackMatrix(Html& page, const SweepResult& result) {
  const std::vector<SlackRow> rows = SlackRows(result);
  if (rows.empty() || result.order.empty()) return;
  std::vector<std::size_t> runs = result.order;  // In plan order; what did not finish has no slack.
  std::sort(runs.begin(), runs.end());
  page << "<section id=slack><h2>Slack</h2>";
  WriteLead(page, rows, result);
  page << "<p class=legend><span class=r3></span><span class=r2></span><span class=r1></span> missed by over "
          "10 %, 2 to "
          "10 %, under 2 % of the constraint <span class=g1></span><span class=g2></span><span "
          "class=g3></span> met by "
          "as much <span class=z></span> within 0.001 ns <span class=x></span> not reported</p>";
  OpenRegion(page, "Slack by preference and run");
  page << "<table class='matrix" << std::string(runs.size() > most_with_numbers ? " dense" : "")
       << std::string(runs.size() > 45 ? " fine" : "") << "'>";
  WriteHead(page, result, runs);
  const SlackRow* const end = rows.data() + rows.size();
  const std::size_t rest = rows.size() - std::min(rows.size(), whole_rows);
  const std::size_t share = rest <= shared_rows ? 1 : (rest + shared_rows - 1) / shared_rows;
  for (const SlackRow* row = rows.data(); row != end;) {
    const std::size_t taken = static_cast<std::size_t>(row - rows.data()) < whole_rows ? 1 : share;
    const SlackRow* next = row + std::min(taken, static_cast<std::size_t>(end - row));
    WriteMatrixRow(page, row, next, runs, result);
    row = next;
  }
  page << "</tbody></table></div></section>";
}

void WriteSlackSpread(Html& page, const SweepResult& result) {
  const std::vector<SlackRow> rows = SlackRows(result);
  if (rows.empty() || result.order.empty()) return;
  std::vector<double> all;
  for (const SlackRow& row : rows) all.insert(all.end(), row.slacks.begin(), row.slacks.end());
  const Axis axis(all, margin, strip - margin, Axis::Scale::outliers);
  page << "<section id=spread><h2>Spread</h2><p class=lead>Slack in ns, a dot for each run, ringed "
          "the best run's. The line is the constraint: left of it is missed.</p>";
  const SlackRow* const middle = rows.data() + std::min(rows.size(), whole_rows);
  const SlackRow* const end = rows.data() + rows.size();
  WriteTable(page, rows.data(), middle, result, axis);
  if (middle != end) {
    page << "<details><summary>" << Count(static_cast<std::size_t>(end - middle), "more preference")
         << ", missed less often</summary>";
    WriteTable(page, middle, end, result, axis);
    page << "</details>";
  }
  page << "</section>";
}

}  // namespace vostrand
