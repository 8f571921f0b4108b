#include "analysis/analyser.h"

#include <QDir>
#include <QTemporaryDir>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <string_view>

#include "analysis/analyser_script.h"
#include "analysis/netlist_files.h"
#include "common/child_process.h"
#include "common/files.h"
#include "common/text.h"

namespace toolchain {
namespace {

using CellKind = RoutedDesign::CellKind;

constexpr std::chrono::seconds time_limit{120};

struct Point {
  std::string pin;  // "u12/I0", "p7"
  double arrival = 0.0;
};

Failure Failed(const std::string& output) {
  return {ExitCode::engine, "timing analysis failed:\n" + output};
}

std::vector<std::string_view> Split(std::string_view text, char by) {
  std::vector<std::string_view> parts;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find(by, at), text.size());
    parts.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return parts;
}

template <typename Number>
Number To(std::string_view text) {
  Number number{};
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || stop != text.data() + text.size())
    throw std::invalid_argument(std::string(text));
  return number;
}

// Turns the analyser's points into a listing. It gives arrival times from the edge at the clock's port on;
// the delay of the clock to the path's ends is worked out from the two.
TimingPath DescribePath(const RoutedDesign& design, const std::vector<Point>& points, double slack,
                        double limit) {
  using Step = TimingPath::Step;
  TimingPath path{.slack = slack, .total = limit - slack, .levels = 0, .steps = {}};
  double before = 0.0;
  const auto add = [&](Step step) { path.steps.push_back(std::move(step)); };
  const RoutedDesign::Cell* from = nullptr;
  for (const Point& point : points) {
    const std::size_t slash = point.pin.find('/');
    const auto& cell = design.cells.at(To<std::size_t>(std::string_view(point.pin).substr(1, slash - 1)));
    const double delay = point.arrival - before;
    before = point.arrival;
    const bool is_port = slash == std::string::npos;
    if (is_port) continue;
    const bool is_output = point.pin.ends_with("/O");
    if (!is_output) {
      if (from) add({.what = "net", .name = from->name, .place = {}, .delay = delay});
      continue;
    }
    from = &cell;
    if (cell.kind == CellKind::flip_flop) {
      const double clock_to_out = design.delays.clock_to_out / 1000.0;
      add({.what = "clock", .name = "to the start", .place = {}, .delay = delay - clock_to_out});
      add({.what = "clock to out", .name = cell.name, .place = cell.place, .delay = clock_to_out});
    } else {
      if (cell.kind == CellKind::lut) ++path.levels;
      add({.what = cell.kind == CellKind::lut ? "LUT" : "pad",
           .name = cell.name,
           .place = cell.place,
           .delay = delay});
    }
  }
  const std::string& last = points.back().pin;
  if (const std::size_t pin = last.find("/I"); pin != std::string::npos) {
    const auto& cell = design.cells.at(To<std::size_t>(std::string_view(last).substr(1, pin - 1)));
    const double setup =
        design.delays.setup.at(To<std::size_t>(std::string_view(last).substr(pin + 2))) / 1000.0;
    if (cell.logic) ++path.levels;
    add({.what = "setup", .name = cell.name, .place = cell.place, .delay = setup});
    add({.what = "clock", .name = "to the end", .place = {}, .delay = path.total - before - setup});
  }
  return path;
}

class ResultReader {
 public:
  ResultReader(const RoutedDesign& design, const std::vector<BoundPreference>& preferences)
      : design_(design), preferences_(preferences), results_(preferences.size()) {}

  void Read(std::string_view line) {
    const std::vector<std::string_view> fields = Split(line, '\t');
    if (fields[0] == "@point" && fields.size() == 3) {
      points_.push_back({std::string(fields[1]), To<double>(fields[2])});
      return;
    }
    EndPath();
    if (fields[0] == "@check" && fields.size() == 7) {
      preference_ = To<std::size_t>(fields[1]);
      PreferenceTiming& result = results_.at(preference_);
      TimingCheck& check = fields[2] == "hold" ? result.hold : result.setup;
      check = {.endpoints = To<int>(fields[3]),
               .failing = To<int>(fields[4]),
               .failing_sum = To<double>(fields[5]),
               .worst_slack = To<double>(fields[6])};
      if (&check == &result.setup && check.endpoints > 0) result.actual = Limit() - check.worst_slack;
    } else if (fields[0] == "@path" && fields.size() == 2) {
      slack_ = To<double>(fields[1]);
    } else if (fields[0] == "@done") {
      done_ = true;
    } else if (!line.empty()) {
      throw Failed(std::string(line));  // The analyser says nothing when all is well.
    }
  }

  std::vector<PreferenceTiming> Results(const std::string& output) {
    if (!done_) throw Failed(output);
    return std::move(results_);
  }

 private:
  double Limit() const { return preferences_.at(preference_).preference.Nanoseconds(); }

  void EndPath() {
    if (!points_.empty())
      results_.at(preference_).paths.push_back(DescribePath(design_, points_, slack_, Limit()));
    points_.clear();
  }

  const RoutedDesign& design_;
  const std::vector<BoundPreference>& preferences_;
  std::vector<PreferenceTiming> results_;
  std::vector<Point> points_;
  std::size_t preference_ = 0;
  double slack_ = 0.0;
  bool done_ = false;
};

}  // namespace

std::vector<PreferenceTiming> Analyse(const RoutedDesign& design,
                                      const std::vector<BoundPreference>& preferences,
                                      const AnalysisOptions& options) {
  if (preferences.empty()) return {};
  const QTemporaryDir scratch(QDir::tempPath() + "/vostrand-XXXXXX");
  if (!scratch.isValid()) throw Failure(ExitCode::output, "cannot make a temporary folder");
  const std::string folder = scratch.path().toStdString();
  WriteFile(folder + "/cells.lib", CellLibrary(design.delays));
  WriteFile(folder + "/design.v", StructuralNetlist(design));
  WriteFile(folder + "/delays.sdf", WireDelays(design));
  WriteFile(folder + "/procedures.tcl", ReadFile(EngineFile("analyse.tcl"), "the analyser's procedures"));
  WriteFile(folder + "/analyse.tcl", AnalyserScript(design, preferences, options, "procedures.tcl", "."));
  // In the scratch folder by plain names: to the analyser a path is a piece of script.
  const Outcome outcome = Run({.program = "sta",
                               .arguments = {"-no_splash", "-no_init", "-exit", "analyse.tcl"},
                               .folder = folder,
                               .environment = {},
                               .time_limit = time_limit});
  if (outcome.timed_out)
    throw Failure(ExitCode::too_long, Format("timing analysis did not end within %lld s",
                                             static_cast<long long>(time_limit.count())));
  ResultReader reader(design, preferences);
  try {
    for (const std::string_view line : Split(outcome.output, '\n')) reader.Read(line);
  } catch (const std::logic_error&) {
    throw Failed(outcome.output);
  }
  return reader.Results(outcome.output);
}

TimingSummary Summarise(const std::vector<PreferenceTiming>& results, TimingCheck PreferenceTiming::*check) {
  TimingSummary summary;
  double failing_sum = 0.0;
  for (const PreferenceTiming& result : results) {
    const TimingCheck& one = result.*check;
    if (one.endpoints == 0) continue;
    summary.worst_slack = std::min(summary.worst_slack.value_or(one.worst_slack), one.worst_slack);
    summary.failing += one.failing;
    failing_sum += one.failing_sum;
  }
  summary.score = std::lround(failing_sum * 1000.0);
  return summary;
}

}  // namespace toolchain
