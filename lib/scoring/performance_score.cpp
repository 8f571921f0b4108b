#include "scoring/performance_score.h"

#include "scoring/preference_weights.h"

namespace orlo::vostrand_lib {
namespace {

struct Contribution {
  float factor;  // As shown: the weight, the negative penalty, or 0.
  float value;   // Rounded to 32 bits before it is added up.
};

Contribution Contribute(const PrfResultVal& result, const WPValue& weights) {
  const float slack = result.constraintPeriod - result.actualPeriod;
  const auto wide = static_cast<double>(slack);
  if (wide > 0.001) return {weights.weight, slack * weights.weight};
  if (wide < -0.001) return {-weights.penalty, slack * weights.penalty};
  return {0.0F, 0.0F};
}

}  // namespace

PSScoreInfo GetPSScore(UT_STROBJ twrPath, ResultsMap& prfResults, WeightsMap weights) {
  return ScoreRun(twrPath, prfResults, weights);
}

PSScoreInfo ScoreRun(const UT_STROBJ& twrPath, ResultsMap& prfResults, const WeightsMap& weights) {
  PSScoreInfo run;
  run.timingScore = GetPrfResultVal(twrPath, prfResults).trimmed();
  UT_STROBJ text;
  for (auto& [name, result] : prfResults) {
    const Contribution part = Contribute(result, FindWeights(name, result.type, weights));
    run.score += part.value;
    const auto value = static_cast<double>(part.value);
    result.reportRows += text.str_format("|%10.3f|%13.3f\n", static_cast<double>(part.factor), value);
    run.csvText += text.str_format("%s,%13.3f,", result.actualText.getstring(), value);
  }
  run.csvText += text.str_format("%.3f", static_cast<double>(run.score));
  return run;
}

void sortscore(PSScoreInfo* scores, ParScoreVal* results, int count, int* order) {
  SortOrder(count, order, [=](int b, int a) {
    if (scores[b].score > scores[a].score) return true;
    return scores[b].score == scores[a].score && RanksBefore(results[b], results[a]);
  });
}

int FindMaxScore(PSScoreInfo* scores, int count) {
  int best = 0;
  for (int i = 1; i < count; ++i)
    if (scores[i].score > scores[best].score) best = i;
  return best;
}

}  // namespace orlo::vostrand_lib
