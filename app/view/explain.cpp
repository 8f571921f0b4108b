#include "view/explain.h"

#include <QString>
#include <algorithm>
#include <cmath>

#include "observe/progress_text.h"
#include "result/summary.h"
#include "view/show.h"

namespace vostrand {
namespace {

using Runs = std::vector<const RunResult*>;  // One, or the winner and the other.

// One preference and what it gave each of the runs; null where the run's score does not know it.
struct Row {
  std::string name;
  double difference = 0;  // The first run's contribution less the second's.
  std::vector<const PreferenceScore*> parts;
};

// The same in every locale.
std::string Format(const char* format, auto... values) {
  return QString::asprintf(format, values...).toStdString();
}

// Without its middle: long names differ at their ends.
std::string Cut(const std::string& name, std::size_t width) {
  const auto kept = static_cast<qsizetype>(std::max<std::size_t>(width, 10) - 3);
  const QString text = QString::fromStdString(name);
  if (width == 0 || text.size() <= kept + 3) return name;
  return (text.left(kept / 2) + "..." + text.right(kept - kept / 2)).toStdString();
}

double ScoreOf(const RunResult* run) {
  return static_cast<double>(*run->score);
}

std::ptrdiff_t PlaceOf(const SweepResult& result, std::size_t run) {
  return std::find(result.order.begin(), result.order.end(), run) - result.order.begin();
}

// By the size of the difference; one that is no number counts most.
bool CountsMore(const Row& a, const Row& b) {
  const auto size = [](double value) { return std::isnan(value) ? HUGE_VAL : std::abs(value); };
  return size(a.difference) > size(b.difference);
}

std::vector<Row> RowsOf(const SweepResult& result, const Runs& runs) {
  std::vector<Row> rows(result.preferences.size());
  for (Row& row : rows) row.parts.resize(runs.size());
  for (std::size_t side = 0; side < runs.size(); ++side)
    for (const PreferenceScore& part : runs[side]->preferences) {
      Row& row = rows[part.preference];
      row.name = result.preferences[part.preference].Title();
      row.parts[side] = &part;
      row.difference += (side == 0 ? 1 : -1) * static_cast<double>(part.contribution);
    }
  std::erase_if(rows, [](const Row& row) { return !row.parts.front() && !row.parts.back(); });
  std::stable_sort(rows.begin(), rows.end(), CountsMore);
  return rows;
}

std::string PartText(const PreferenceScore* part) {
  if (!part) return Format("%9s%8s%7s", "-", "-", "-");
  const auto slack = static_cast<double>(part->slack_ns), factor = static_cast<double>(part->factor);
  const std::string by = slack < 0 ? Format("p%.4g", 0 - factor) : Format("w%.4g", factor);
  return Format(" %8.3f %7.3f%c%6s", static_cast<double>(part->contribution), slack,
                part->carried_over ? '*' : ' ', std::abs(slack) > 0.001 ? by.c_str() : "0");
}

std::string PreferencesText(const Runs& runs, const std::vector<Row>& rows, std::size_t width) {
  const bool two = runs.size() == 2;
  std::string text = two ? "\ndifference" : "\n";
  std::string total = two ? Format("%10.3f", ScoreOf(runs[0]) - ScoreOf(runs[1])) : "";
  bool carried = false;
  for (const RunResult* run : runs) {
    text += Format("%9s%8s%7s", Shown(run->record.name, 8).c_str(), "slack", "by");
    total += Format(" %8.3f%15s", ScoreOf(run), "");
    for (const PreferenceScore& part : run->preferences) carried |= part.carried_over;
  }
  text += "  preference\n";
  // 0 stands for any width.
  const std::size_t left = width == 0 ? 0 : std::max(width, total.size() + 3) - total.size() - 2;
  for (const Row& row : rows) {
    if (two) text += Format("%10.3f", row.difference);
    for (const PreferenceScore* part : row.parts) text += PartText(part);
    text += "  " + Cut(row.name, left) + "\n";
  }
  return text + total +
         "  total\n\nUnder a run's name: what the preference adds to its score, the slack (ns) times the\n"
         "weight (w) or, if negative, the penalty (p); nothing (0) within 0.001 ns.\n" +
         (carried ? "* Not in the run's own report: an earlier run's values stand.\n" : "");
}

// What tells runs apart that no score does.
std::string ResultsText(const Runs& runs) {
  const std::string one = TimingText(*runs[0]), other = TimingText(*runs[1]);
  return one == other
             ? "the place-and-route result is the same too (" + one + "), so the plan's order stands.\n"
             : "the place-and-route result decides, " + one + " against " + other + ".\n";
}

// Follows "A beats B".
std::string WhyText(const Runs& runs, const std::vector<Row>& rows) {
  const double gap = ScoreOf(runs[0]) - ScoreOf(runs[1]);
  if (gap == 0)
    return ". The score is the same, " + Format("%.3f", ScoreOf(runs[0])) + ": " + ResultsText(runs);
  const std::string by = Format(gap < 0.0005 ? "%.3g" : "%.3f", gap);
  const auto most = std::max_element(rows.begin(), rows.end(),
                                     [](const Row& a, const Row& b) { return a.difference < b.difference; });
  if (most == rows.end()) return " by " + by + ".\n";
  const std::string gives = " by " + by + ": " + most->name + " gives " + Format("%.3f", most->difference);
  const double back = most->difference - gap;
  return back < 0.0005 ? gives + " of it.\n"
                       : gives + ", the others take " + Format("%.3f", back) + " back.\n";
}

}  // namespace

std::string ChooseRuns(const SweepResult& result, const std::vector<std::string>& names,
                       std::vector<std::size_t>& runs) {
  runs.clear();
  if (names.size() > 2) return "only two runs can be compared";
  for (const std::string& name : names) {
    const auto has_name = [&](const RunResult& run) { return run.record.name == Shown(name); };
    const auto run = std::find_if(result.runs.begin(), result.runs.end(), has_name);
    if (run == result.runs.end()) return "there is no run " + name;
    if (run->record.status > 0)
      return "run " + run->record.name + " has no score: " + OutcomeText(run->record);
    runs.push_back(static_cast<std::size_t>(run - result.runs.begin()));
  }
  if (runs.size() == 2 && runs[0] == runs[1]) return "a run does not differ from itself";
  for (const std::size_t run : result.order)
    if (names.empty() && runs.size() < 2) runs.push_back(run);
  return runs.empty() ? "no run finished" : "";
}

std::string ExplainText(const SweepResult& result, std::vector<std::size_t> runs, std::size_t width) {
  const auto beats = [&](std::size_t a, std::size_t b) {
    const std::optional<float> one = result.runs[a].score, other = result.runs[b].score;
    return one && other && *one != *other ? *one > *other : PlaceOf(result, a) < PlaceOf(result, b);
  };
  if (beats(runs.back(), runs.front())) std::swap(runs.front(), runs.back());
  Runs all;
  for (const std::size_t run : runs) all.push_back(&result.runs[run]);
  const bool scored = all.front()->score && all.back()->score;
  const std::vector<Row> rows = RowsOf(result, all);
  std::string text = all.front()->record.name;
  if (runs.size() == 1)
    text += ": " + (scored ? "score " + Format("%.3f", ScoreOf(all[0])) : "no score") + ", rank " +
            std::to_string(PlaceOf(result, runs[0]) + 1) + " of " + std::to_string(result.order.size()) +
            ", timing " + TimingText(*all[0]) + ".\n";
  else
    text += " beats " + all[1]->record.name +
            (scored          ? WhyText(all, rows)
             : result.timing ? ". Not both have a score that is a number.\n"
                             : ". Without timing there are no scores: " + ResultsText(all));
  if (PlaceOf(result, runs.back()) < PlaceOf(result, runs.front()))
    text += "The ranking has " + all[1]->record.name + " first all the same.\n";
  return scored ? text + PreferencesText(all, rows, width) : text;
}

}  // namespace vostrand
