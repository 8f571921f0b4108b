#include "results/par_ranking.h"

namespace orlo::vostrand_lib {

bool RanksBefore(const ParScoreVal& b, const ParScoreVal& a) {
  if (!b.valid) return false;
  // Unsigned, so that the score of a run that has none comes after every real one.
  return !a.valid || static_cast<std::uint64_t>(b.score) < static_cast<std::uint64_t>(a.score);
}

void sortscore(ParScoreVal* results, int count, int* order) {
  SortOrder(count, order, [=](int b, int a) { return RanksBefore(results[b], results[a]); });
}

}  // namespace orlo::vostrand_lib
