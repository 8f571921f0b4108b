#include "result/run_record.h"

#include <algorithm>

namespace vostrand {

const char* RunRecord::Outcome() const {
  if (status <= 0) return "finished";
  if (status != cancelled_status) return "failed";
  return started ? "cancelled" : "not started";
}

double RunRecord::CpuSeconds() const {
  double seconds = 0;
  for (const TryRecord& attempt : tries) seconds += attempt.outcome.cpu_seconds;
  return seconds;
}

long RunRecord::PeakKib() const {
  long peak = 0;
  for (const TryRecord& attempt : tries) peak = std::max(peak, attempt.outcome.peak_kib);
  return peak;
}

}  // namespace vostrand
