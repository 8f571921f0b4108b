#pragma once

#include <utility>

#include "export.h"
#include "results/par_result.h"

/// Orderings of runs: arrays of run indices, best first.
namespace orlo::vostrand_lib {

/// True when the run `b` has a result and `a` has none, or both have one and b's timing score is lower.
bool RanksBefore(const ParScoreVal& b, const ParScoreVal& a);

/// Sorts `order[0..count-1]` so that no neighbour ranks before the one on its left; `ranks_before(b, a)`
/// takes run indices. Runs that rank alike keep their places. A bubble sort, which ends for any answers, also
/// those of scores that cannot be compared; there are 99 runs at most.
template <typename RanksBeforeRun>
void SortOrder(int count, int* order, RanksBeforeRun ranks_before) {
  for (int pass = count - 1; pass > 0; --pass)
    for (int j = 0; j < pass; ++j)
      if (ranks_before(order[j + 1], order[j])) std::swap(order[j], order[j + 1]);
}

/// Reorders `order[0..count-1]`, indices into `results`, by place-and-route result alone: lowest timing score
/// first, runs without a result last, ties as they were.
VOSTRAND_API void sortscore(ParScoreVal* results, int count, int* order);

}  // namespace orlo::vostrand_lib
