#pragma once

#include <string>
#include <vector>

#include "plan/library_run.h"
#include "results/par_result.h"

namespace vostrand {

/// One finished run's place in the ranking.
struct RankedRun {
  std::size_t run = 0;            ///< Index in the plan.
  bool has_result = false;        ///< The place-and-route result could be read.
  std::int64_t timing_score = 0;  ///< Of that result; 0 meets timing, -1 is none.
  bool has_score = false;
  float score = 0;  ///< Performance score.
};

/// The order that the library keeps to itself, worked out again with its own functions, in plan order and on
/// copies of its maps. Made before the report, which moves files; asked after it.
class Ranking {
 public:
  /// Reads the place-and-route results, which the report may replace by files of the runs' own directories.
  explicit Ranking(LibraryRun& library);

  /// The finished runs, best first: the promoted one leads. Between the report and the library's exit.
  std::vector<RankedRun> Ordered();

 private:
  LibraryRun& library_;
  orlo::vostrand_lib::WeightsMap weights_;
  std::vector<orlo::vostrand_lib::ParScoreVal> results_;
};

}  // namespace vostrand
