#include "observe/run_records.h"

namespace vostrand {

void RunRecords::On(const Event& event) {
  switch (event.kind) {
    case Event::Kind::run_started: {
      RunRecord& record = records_[event.run];
      record.started = true;
      record.slot = event.slot;
      record.started_seconds = event.at_seconds;
      return;
    }
    case Event::Kind::step_started: {
      if (event.callback) return;
      TryRecord attempt;
      attempt.step = event.step;
      attempt.number = event.try_number;
      attempt.started_seconds = event.at_seconds;
      records_[event.run].tries.push_back(attempt);
      return;
    }
    case Event::Kind::step_finished: {
      if (event.callback) return;
      TryRecord& attempt = records_[event.run].tries.back();
      attempt.ended_seconds = event.at_seconds;
      attempt.outcome = event.outcome;
      return;
    }
    case Event::Kind::run_finished: {
      RunRecord& record = records_[event.run];
      record.status = event.status;
      record.ended_seconds = event.at_seconds;
      record.message = event.message;
      record.verdict = event.verdict;
      return;
    }
    default:
      return;
  }
}

}  // namespace vostrand
