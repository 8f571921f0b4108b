#include <algorithm>
#include <map>

#include "page/axis.h"
#include "page/sections.h"

namespace vostrand {
namespace {

constexpr double left = 62;
constexpr double width = 1000;
constexpr double top = 26;
constexpr double lane = 26;
constexpr double letter = 7;  // Of a run's name, about.

void WriteTip(Html& page, const RunRecord& record) {
  page << "<title>" << record.name << ": " << std::string(record.Outcome()) << ", "
       << Duration(record.started_seconds) << " to " << Duration(record.ended_seconds);
  for (const TryRecord& attempt : record.tries)
    page << "\nstep " << attempt.step + 1
         << (attempt.number > 1 ? ", try " + std::to_string(attempt.number) : "") << ": "
         << Duration(attempt.ended_seconds - attempt.started_seconds)
         << (attempt.outcome.queue_seconds > 0
                 ? ", of it " + Duration(attempt.outcome.queue_seconds) + " queued"
                 : "")
         << (attempt.outcome.node.empty() ? "" : ", on " + attempt.outcome.node)
         << (attempt.outcome.timed_out ? ", timed out" : "");
  page << "</title>";
}

// The run as a bar; every other try is underlined, so that steps and retries can be told apart.
void WriteRun(Html& page, const RunRecord& record, bool best, double y, const Axis& axis) {
  const bool cancelled = record.status == cancelled_status;
  const bool failed = record.status > 0 && !cancelled;
  const std::string look = cancelled ? "cancelled" : failed ? "trouble" : best ? "bestbar" : "above";
  const auto box = [&](const std::string& kind, double from, double to, double offset, double height) {
    page << "<rect class=" << kind << " x=" << axis.At(from) << " y=" << y + offset
         << " width=" << std::max(axis.At(to) - axis.At(from), 1.0) << " height=" << height << " />";
  };
  page << "<g>";
  WriteTip(page, record);
  box(look, record.started_seconds, record.ended_seconds, 0, lane - 6);
  for (std::size_t i = 1; i < record.tries.size(); i += 2)
    box("part", record.tries[i].started_seconds, record.tries[i].ended_seconds, lane - 11, 5);
  for (const TryRecord& attempt : record.tries)  // What it waited for a machine is drawn pale.
    if (attempt.outcome.queue_seconds > 0)
      box("queued", attempt.started_seconds,
          std::min(attempt.started_seconds + attempt.outcome.queue_seconds, attempt.ended_seconds), 0,
          lane - 6);
  const std::string text = (cancelled ? "– " : failed ? "× " : "") + record.name;
  const double wide = axis.At(record.ended_seconds) - axis.At(record.started_seconds);
  if (static_cast<double>(text.size()) * letter < wide)
    page << "<text class='onbar " << look << "' x=" << axis.At(record.started_seconds) + 4 << " y=" << y + 13
         << ">" << text << "</text>";
  page << "</g>";
}

}  // namespace

void WriteTimeline(Html& page, const SweepResult& result) {
  std::map<std::size_t, double> lanes;  // Where each slot is drawn.
  std::vector<double> ends = {result.elapsed_seconds};
  double busy = 0;
  std::size_t restored = 0;
  for (const RunResult& run : result.runs) {
    restored += run.record.restored;
    if (!run.record.started || run.record.restored) continue;
    busy += run.record.ElapsedSeconds();
    ends.push_back(run.record.ended_seconds);
    lanes[run.record.slot] = 0;
  }
  if (lanes.empty()) return;
  double bottom = top;
  for (auto& [slot, y] : lanes) {
    y = bottom;
    bottom += lane;
  }
  const double share = busy / std::max(static_cast<double>(lanes.size()) * result.elapsed_seconds, 1e-9);
  page << "<section id=timeline><h2>Timeline</h2><p class=lead>" << Count(lanes.size(), "run")
       << " at once; the job slots were busy " << Decimals(share * 100, 0) << " % of the time. ";
  if (restored > 0) page << Count(restored, "run") << " kept from before not drawn. ";
  page << "Seconds since the start; failed runs bear ×, cancelled ones –.</p>";
  OpenRegion(page, "Timeline");
  page << "<svg class=chart viewBox='0 0 1000 " << bottom + 4
       << "' role=img aria-label='Runs over job slots'>";
  const Axis axis(ends, left, width - 2);
  for (const Axis::Tick& tick : axis.Ticks(10))
    page << "<path class=grid d='M" << axis.At(tick.value) << " 18V" << bottom
         << "'/><text class=mid x=" << std::min(axis.At(tick.value), width - 20) << " y=12>" << tick.text
         << "</text>";
  for (const auto& [slot, y] : lanes) page << "<text x=0 y=" << y + 14 << ">job " << slot + 1 << "</text>";
  for (std::size_t i = 0; i < result.runs.size(); ++i) {
    const RunRecord& record = result.runs[i].record;
    const bool best = !result.order.empty() && result.order.front() == i;
    if (record.started && !record.restored) WriteRun(page, record, best, lanes.at(record.slot), axis);
  }
  page << "</svg></div></section>";
}

}  // namespace vostrand
