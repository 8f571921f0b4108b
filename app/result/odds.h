#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "execute/events.h"

namespace vostrand {

/// How likely more runs are to help, judged by the finished ones. Formulas and what they assume:
/// docs/odds.md.
struct OddsReport {
  /// That at least one of the next `runs` runs meets timing, from 0 to 1: posterior mean and 95 % interval.
  struct Chance {
    int runs = 0;
    double mean = 0;
    double low = 0;
    double high = 0;
  };
  /// The expected best score of `runs` runs, drawn from those that have one.
  struct Best {
    int runs = 0;
    double score = 0;
  };

  std::size_t finished = 0;
  std::size_t known = 0;        ///< Of these, those with a place-and-route result row.
  std::size_t met = 0;          ///< Of these, those that meet timing.
  std::vector<Chance> chances;  ///< For 1, 2, 5 and 10 more runs; empty when nothing is known.
  std::vector<Best> best;       ///< For 1 up to as many runs as have a score, but 100 at most.
  double gain = 0;              ///< By which one more run improves the best score on average; never below 0.
  bool has_gain = false;        ///< Two scored runs at least.

  /// "5 of 12 runs met timing; one more run improves the best by 0.21 on average"; says so when it is not
  /// known whether runs met timing. Empty when no run finished.
  std::string Sentence() const;
};

/// The odds after these finished runs, in any order. A score that is not finite counts as none.
OddsReport OddsOf(const std::vector<Verdict>& finished);

}  // namespace vostrand
