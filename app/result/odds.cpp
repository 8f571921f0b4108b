#include "result/odds.h"

#include <algorithm>
#include <boost/math/special_functions/beta.hpp>
#include <charconv>
#include <cmath>

namespace vostrand {
namespace {

// Runs to come that chances are told for.
constexpr int numbers_of_runs[] = {1, 2, 5, 10};
constexpr std::size_t longest_best = 100;
constexpr double tail = 0.025;  // Outside either end of a 95 % interval.

// That at least one of `runs` runs meets, each with the chance `p`: 1 - (1 - p)^runs, also for a tiny `p`.
double AtLeastOne(double p, int runs) {
  return -std::expm1(runs * std::log1p(-p));
}

std::vector<OddsReport::Chance> Chances(std::size_t known, std::size_t met) {
  std::vector<OddsReport::Chance> chances;
  if (known == 0) return chances;  // The prior alone would be made up.
  // A uniform prior: before any run every count of runs that meet is as likely as every other.
  const double a = static_cast<double>(met) + 1;
  const double b = static_cast<double>(known - met) + 1;
  const double low = boost::math::ibeta_inv(a, b, tail);
  const double high = boost::math::ibetac_inv(a, b, tail);
  for (const int runs : numbers_of_runs) {
    double none = 1;  // B(a, b + runs) / B(a, b), the mean of (1 - p)^runs.
    for (int i = 0; i < runs; ++i) none *= (b + i) / (a + b + i);
    chances.push_back({runs, 1 - none, AtLeastOne(low, runs), AtLeastOne(high, runs)});
  }
  return chances;
}

// Finite scores, ascending.
std::vector<double> Scores(const std::vector<Verdict>& finished) {
  std::vector<double> scores;
  for (const Verdict& verdict : finished)
    if (verdict.score && std::isfinite(*verdict.score)) scores.push_back(double{*verdict.score});
  std::sort(scores.begin(), scores.end());
  return scores;
}

// The best of n scores drawn without replacement falls short of the best of all m by every gap between
// neighbours that the draw lies below: draws of n from the lowest i are C(i, n) of C(m, n). Unlike the sum
// over the scores themselves this adds no positive to negative numbers, so that equal scores stay exactly
// equal and more runs are never worse by rounding.
std::vector<OddsReport::Best> ExpectedBest(const std::vector<double>& scores) {
  const std::size_t m = scores.size();
  std::vector<double> below(m, 1);  // [i]: C(i, n) / C(m, n)
  std::vector<OddsReport::Best> best;
  for (std::size_t n = 1; n <= std::min(m, longest_best); ++n) {
    double shortfall = 0;
    for (std::size_t i = n; i < m; ++i) {
      below[i] *= static_cast<double>(i - n + 1) / static_cast<double>(m - n + 1);
      shortfall += below[i] * (scores[i] - scores[i - 1]);
    }
    best.push_back({static_cast<int>(n), scores.back() - shortfall});
  }
  return best;
}

// Two decimals, or two significant digits of less than 0.1. Scores are shown with three decimals: a smaller
// gain could not be seen.
std::string GainText(double gain) {
  if (gain < 0.001) return "less than 0.001";
  const int decimals = gain < 0.00995 ? 4 : gain < 0.0995 ? 3 : 2;  // 0.0996 is 0.10.
  char text[64];
  const auto end = std::to_chars(text, text + sizeof text, gain, std::chars_format::fixed, decimals).ptr;
  return {text, end};
}

}  // namespace

std::string OddsReport::Sentence() const {
  if (finished == 0) return "";
  std::string text = "whether runs met timing is unknown";
  if (known > 0) {
    text = std::to_string(met) + " of " + std::to_string(known) + (known == 1 ? " run" : " runs") +
           " met timing";
    if (known < finished) text += ", " + std::to_string(finished - known) + " unknown";
  }
  if (!has_gain) return text;
  if (gain == 0) return text + "; one more run is not expected to improve the best";
  return text + "; one more run improves the best by " + GainText(gain) + " on average";
}

OddsReport OddsOf(const std::vector<Verdict>& finished) {
  OddsReport odds;
  odds.finished = finished.size();
  for (const Verdict& verdict : finished) {
    if (verdict.met) ++odds.known;
    if (verdict.met.value_or(false)) ++odds.met;
  }
  odds.chances = Chances(odds.known, odds.met);

  const std::vector<double> scores = Scores(finished);
  const std::size_t m = scores.size();
  odds.best = ExpectedBest(scores);
  odds.has_gain = m >= 2;
  // Each run is as likely as every other to have been the last, and only the best one improved on the rest.
  if (odds.has_gain) odds.gain = (scores[m - 1] - scores[m - 2]) / static_cast<double>(m);
  return odds;
}

}  // namespace vostrand
