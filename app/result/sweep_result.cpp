#include "result/sweep_result.h"

#include <algorithm>

namespace vostrand {
namespace {

std::size_t Count(const SweepResult& result, bool (*wanted)(int status)) {
  return static_cast<std::size_t>(
      std::count_if(result.runs.begin(), result.runs.end(),
                    [=](const RunResult& run) { return wanted(run.record.status); }));
}

}  // namespace

std::size_t SweepResult::Finished() const {
  return Count(*this, [](int status) { return status <= 0; });
}

std::size_t SweepResult::Cancelled() const {
  return Count(*this, [](int status) { return status == cancelled_status; });
}

std::size_t SweepResult::Failed() const {
  return runs.size() - Finished() - Cancelled();
}

int ExitCode(const SweepResult& result) {
  if (result.interrupted_by != 0) return 128 + result.interrupted_by;
  if (result.Finished() == 0) return 5;
  if (!result.missing.empty()) return 6;
  return result.Failed() > 0 ? 4 : 0;
}

}  // namespace vostrand
