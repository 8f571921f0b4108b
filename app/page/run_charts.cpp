#include <algorithm>
#include <cmath>
#include <limits>

#include "page/axis.h"
#include "page/sections.h"

namespace vostrand {
namespace {

constexpr double left = 62;
constexpr double top = 30;
constexpr double bottom = 232;
constexpr double letter = 7.2;  // Of an axis text, about.
constexpr double widest_bar = 56;

// One run's bar in a chart of all runs.
struct RunBar {
  std::string run;
  double value = 0;      // Not finite: nothing is known, which is shown as such.
  double part = 0;       // Of the value, drawn within it: 0 for none.
  std::string tip;       // Shown behind the run's name.
  bool best = false;     // The best run's: drawn in its colour, and named.
  bool trouble = false;  // The run failed or was cancelled.
};

void WriteBox(Html& page, const std::string& look, double middle, double thick, const Axis& axis,
              double value) {
  const double y = axis.At(std::max(value, 0.0));
  page << "<rect class=" << look << " x=" << middle - thick / 2 << " y=" << y << " width=" << thick
       << " height=" << std::max(axis.At(std::min(value, 0.0)) - y, 1.0) << " />";
}

void WriteBar(Html& page, const RunBar& bar, double middle, double thick, const Axis& axis) {
  page << "<g><title>" << bar.run << ": " << bar.tip << "</title>";
  const std::string sign = bar.value < 0 ? "below" : "above";
  if (!std::isfinite(bar.value))
    page << "<text class='mid bad' x=" << middle << " y=" << axis.At(0) - 5 << ">×</text>";
  else
    WriteBox(page, bar.best ? "bestbar" : bar.trouble ? "trouble" : sign, middle, thick, axis, bar.value);
  if (bar.part > 0) WriteBox(page, "part", middle, thick, axis, std::min(bar.part, bar.value));
  page << "</g>";
}

// One bar for each run, in plan order. `what` describes the chart, `unit` stands at its axis.
void WriteRunBars(Html& page, const std::string& what, const std::string& unit,
                  const std::vector<RunBar>& bars, Axis::Scale scale = Axis::Scale::with_zero) {
  std::vector<double> values;
  std::size_t longest = 1;
  for (const RunBar& bar : bars) {
    values.push_back(bar.value);
    longest = std::max(longest, bar.run.size());
  }
  const Axis axis(values, bottom, top, scale);
  const bool few = bars.size() <= 8;
  const double width = few ? 560 : 1000;
  const double pitch = (width - left) / static_cast<double>(bars.size());
  const auto middle = [&](std::size_t i) { return left + pitch * (static_cast<double>(i) + 0.5); };
  OpenRegion(page, what);
  page << "<svg class='chart " << std::string(few ? "half" : "") << "' viewBox='0 0 " << width
       << " 260' role=img aria-label=\"" << what << "\"><text x=0 y=12>" << unit << "</text>";
  axis.WriteGrid(page, left, width);
  for (std::size_t i = 0; i < bars.size(); ++i) {
    WriteBar(page, bars[i], middle(i), std::min(pitch * 0.72, widest_bar), axis);
    if (!bars[i].best || !std::isfinite(bars[i].value)) continue;
    page << "<path class=leader d='M" << middle(i) << " " << axis.At(std::max(bars[i].value, 0.0)) << "V"
         << top - 12 << "'/><text class='mid strong' x=" << std::clamp(middle(i), left + 40, width - 40)
         << " y=" << top - 16 << ">" << bars[i].run << " best</text>";
  }
  // As many names as there is room for.
  const auto stride = static_cast<std::size_t>(std::ceil(static_cast<double>(longest + 1) * letter / pitch));
  for (std::size_t i = 0; i < bars.size(); i += stride)
    page << "<text class=mid x=" << middle(i) << " y=" << bottom + 20 << ">" << bars[i].run << "</text>";
  page << "</svg></div>";
}

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

RunBar BarOf(const SweepResult& result, std::size_t index, double value, const std::string& tip) {
  const RunRecord& record = result.runs[index].record;
  RunBar bar;
  bar.run = record.name;
  bar.value = value;
  bar.trouble = record.status > 0;
  bar.tip = bar.trouble ? std::string(record.Outcome()) + (tip.empty() ? "" : ", " + tip) : tip;
  bar.best = !result.order.empty() && result.order.front() == index;
  return bar;
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t half = values.size() / 2;
  return values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2;
}

}  // namespace

void WriteScores(Html& page, const SweepResult& result) {
  std::vector<RunBar> bars;
  std::vector<double> scores;
  for (std::size_t i = 0; i < result.runs.size(); ++i) {
    const std::optional<float>& score = result.runs[i].score;
    const double value = score ? static_cast<double>(*score) : unknown;
    bars.push_back(BarOf(result, i, value, score ? Decimals(value) : ""));
    if (score) scores.push_back(value);
  }
  if (scores.empty()) return;
  const auto [worst, best] = std::minmax_element(scores.begin(), scores.end());
  page << "<section id=scores><h2>Scores</h2><p class=lead>A run each, in plan order. From "
       << Decimals(*worst) << " to " << Decimals(*best) << ", median " << Decimals(Median(scores))
       << "; higher is better.</p>";
  WriteRunBars(page, "Score of each run in plan order", "score", bars, Axis::Scale::outliers);
  page << "</section>";
}

void WriteCost(Html& page, const SweepResult& result) {
  std::vector<RunBar> times;
  std::vector<RunBar> memory;
  std::vector<double> seconds;
  std::vector<double> kib;
  for (std::size_t i = 0; i < result.runs.size(); ++i) {
    const RunRecord& record = result.runs[i].record;
    const double elapsed = record.started ? record.ElapsedSeconds() : unknown;
    const double peak = record.started ? static_cast<double>(record.PeakKib()) : unknown;
    times.push_back(
        BarOf(result, i, elapsed, Duration(elapsed) + ", processor " + Duration(record.CpuSeconds())));
    times.back().part = record.CpuSeconds();
    memory.push_back(BarOf(result, i, peak / 1024, record.started ? Memory(peak) : ""));
    if (!record.started) continue;
    seconds.push_back(elapsed);
    kib.push_back(peak);
  }
  if (seconds.empty()) return;
  page << "<section id=cost><h2>Time and memory</h2><p class=lead>A run takes " << Duration(Median(seconds))
       << " and " << Memory(Median(kib)) << " in the middle, "
       << Duration(*std::max_element(seconds.begin(), seconds.end())) << " and "
       << Memory(*std::max_element(kib.begin(), kib.end()))
       << " at most. The dark part of a time is the processor's.</p>";
  WriteRunBars(page, "Time of each run in seconds", "time, s", times);
  WriteRunBars(page, "Peak memory of each run in MiB", "peak memory, MiB", memory);
  page << "</section>";
}

}  // namespace vostrand
