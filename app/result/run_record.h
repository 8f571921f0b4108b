#pragma once

#include <string>
#include <vector>

#include "execute/events.h"

namespace vostrand {

/// One try of one step. Times are seconds since the sweep started.
struct TryRecord {
  std::size_t step = 0;  ///< Index in the run.
  int number = 1;        ///< 2 is the first retry.
  double started_seconds = 0;
  double ended_seconds = 0;
  step::Outcome outcome;
};

/// What became of one run, as its events told.
struct RunRecord {
  std::string name;
  int status = cancelled_status;  ///< 0 finished, `cancelled_status`, or the code of the step that failed.
  bool started = false;           ///< False for a run that was skipped; then there are no times.
  bool restored = false;  ///< Finished in an earlier sweep; its times are that sweep's and may be below 0.
  std::size_t slot = 0;
  double started_seconds = 0;
  double ended_seconds = 0;
  std::string message;           ///< Why it could not be started.
  std::vector<TryRecord> tries;  ///< Of its command steps, in order.
  Verdict verdict;

  /// "finished", "failed", "cancelled" or "not started".
  const char* Outcome() const;
  double ElapsedSeconds() const { return started ? ended_seconds - started_seconds : 0; }
  double CpuSeconds() const;
  /// The largest of its steps'.
  long PeakKib() const;
};

}  // namespace vostrand
