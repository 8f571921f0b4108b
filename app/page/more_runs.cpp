#include <algorithm>
#include <cmath>

#include "page/axis.h"
#include "page/sections.h"

namespace vostrand {
namespace {

constexpr double left = 62;
constexpr double right = 600;

// `bests` holds the best score so far, by finished run.
void WriteCurves(Html& page, const OddsReport& odds, const std::vector<double>& bests) {
  const double next = bests.back() + (odds.has_gain ? odds.gain : 0);
  std::vector<double> values = bests;
  for (const OddsReport::Best& point : odds.best) values.push_back(point.score);
  values.push_back(next);
  const Axis up(values, 232, 30, Axis::Scale::tight);
  const auto runs = static_cast<double>(bests.size());
  const auto at = [&](double n) { return left + 14 + (right - left - 28) * (n - 1) / runs; };
  OpenRegion(page, "Best score against number of runs");
  page << "<svg class='chart half' viewBox='0 0 620 260' role=img aria-label='Best score against number of "
          "runs'>"
          "<text x=0 y=12>best score</text>";
  up.WriteGrid(page, left, right);
  for (double n = 1; n <= runs + 1; n += std::ceil((runs + 1) / 12))
    page << "<text class=mid x=" << at(n) << " y=252>" << n << "</text>";
  page << "<path class=seen d='M" << at(1) << " " << up.At(bests[0]);
  for (std::size_t i = 1; i < bests.size(); ++i)
    page << "H" << at(static_cast<double>(i + 1)) << "V" << up.At(bests[i]);
  page << "'/><path class=expected d='";
  for (const OddsReport::Best& point : odds.best)
    page << std::string(&point == odds.best.data() ? "M" : "L") << at(point.runs) << " "
         << up.At(point.score);
  page << "'/>";
  if (odds.has_gain)
    page << "<path class=next d='M" << at(runs) << " " << up.At(bests.back()) << "L" << at(runs + 1) << " "
         << up.At(next) << "'/><circle class=bestdot cx=" << at(runs + 1) << " cy=" << up.At(next)
         << " r=5><title>One more run: " << Decimals(next) << "</title></circle>";
  page << "</svg></div><p class=legend><span class=swatch-seen></span> best so far in plan order <span "
          "class=swatch-expected></span> expected of so many runs <span class=swatch-next></span> of one "
          "more</p>";
}

std::string Percent(double share) {
  return Decimals(share * 100, share > 0 && share < 0.1 ? 1 : 0) + " %";
}

void WriteChances(Html& page, const OddsReport& odds) {
  page << "<table class=chances><caption>Chance that one of some more runs meets "
          "timing</caption><thead><tr><th scope=col "
          "class=n>More runs<th scope=col class=n>Chance<th scope=col class=n>95 % interval</thead><tbody>";
  for (const OddsReport::Chance& chance : odds.chances)
    page << "<tr><th scope=row class=n>" << chance.runs << "<td class=n>" << Percent(chance.mean)
         << "<td class=n>" << Percent(chance.low) << " to " << Percent(chance.high);
  page << "</tbody></table>";
}

}  // namespace

void WriteMoreRuns(Html& page, const SweepResult& result) {
  std::vector<double> bests;
  for (const RunResult& run : result.runs) {
    if (!run.score || !std::isfinite(*run.score)) continue;
    const auto score = static_cast<double>(*run.score);
    bests.push_back(bests.empty() ? score : std::max(bests.back(), score));
  }
  if (bests.empty() && result.odds.chances.empty()) return;
  page << "<section id=more><h2>More runs</h2><p class=lead>" << result.odds.Sentence()
       << ".</p><div class=pair>";
  if (!bests.empty()) {
    page << "<div>";
    WriteCurves(page, result.odds, bests);
    page << "</div>";
  }
  if (!result.odds.chances.empty()) WriteChances(page, result.odds);
  page << "</div></section>";
}

}  // namespace vostrand
