#pragma once

#include <map>
#include <string>
#include <vector>

#include "plan/library_run.h"
#include "result/sweep_result.h"
#include "results/par_result.h"
#include "scoring/performance_score.h"

namespace vostrand {

/// The weights by which a tool run's scores are made, as its report reads them; the library's own stay as
/// they are.
orlo::vostrand_lib::WeightsMap ReadWeights(LibraryRun& library);

/// The place-and-route result of one run, read before the report, which moves files.
orlo::vostrand_lib::ParScoreVal ReadResultRow(LibraryRun& library, std::size_t run);

/// Judges runs while the sweep goes on, each by its own files alone.
class Judge {
 public:
  explicit Judge(LibraryRun& library) : library_(library), weights_(ReadWeights(library)) {}
  Verdict operator()(std::size_t run) const;

 private:
  LibraryRun& library_;
  orlo::vostrand_lib::WeightsMap weights_;
};

/// The scores and the order that the library keeps to itself, worked out again with its own functions, in
/// plan order and on copies of its maps. Made before the report, asked after it.
class Scores {
 public:
  explicit Scores(LibraryRun& library);

  /// Fills in `timing`, `preferences`, `order` and what the runs' rows, scores and preferences say; `runs`
  /// has all runs, with their status. Between the report and the library's exit.
  void Complete(SweepResult& result);
  /// Between Complete and the library's exit: what the library has written only in part or from other
  /// readings, which a full or failing disk brings about without a word. `result` is complete.
  std::vector<std::string> Unwritten(const SweepResult& result);

 private:
  // One record of a score while preferences have no index yet.
  struct Named {
    std::string name;
    PreferenceScore score;
  };

  void TakeRows(SweepResult& result) const;
  std::vector<Named> ScoreRun(std::size_t run, orlo::vostrand_lib::PSScoreInfo& score);
  void Index(SweepResult& result, const std::vector<std::vector<Named>>& scores);
  Preference About(const std::string& name, const orlo::vostrand_lib::PrfResultVal& listed);

  LibraryRun& library_;
  orlo::vostrand_lib::WeightsMap defaults_;  // By kind, before annotations.
  orlo::vostrand_lib::WeightsMap weights_;
  orlo::vostrand_lib::ResultsMap preferences_;
  std::map<std::string, UT_STROBJ> texts_;  // By name, as a report last had it.
  std::vector<orlo::vostrand_lib::ParScoreVal> rows_;
  std::vector<orlo::vostrand_lib::PSScoreInfo> scores_;
};

}  // namespace vostrand
