#pragma once

#include <cstddef>
#include <string>

#include "step/outcome_file.h"

namespace vostrand {

/// Status of a run that was cancelled or never started.
inline constexpr int cancelled_status = 65280;

/// What happens in a sweep. Everything that is shown or kept is drawn from these.
struct Event {
  enum class Kind {
    sweep_started,
    run_started,
    step_started,
    step_finished,
    run_finished,
    run_skipped,
    sweep_finished
  };

  explicit Event(Kind event_kind, std::size_t run_index = 0, std::size_t step_index = 0, int run_status = 0)
      : kind(event_kind), run(run_index), step(step_index), status(run_status) {}

  Kind kind;
  std::size_t run = 0;    ///< Index in the plan; nothing for sweep events.
  std::size_t step = 0;   ///< Index in the run; for step events.
  int status = 0;         ///< Of the run; for run_finished and run_skipped.
  step::Outcome outcome;  ///< For step_finished.
  std::string message;    ///< Why a run could not be started.
};

/// Hears every event once, in order, on the host's one thread.
class Observer {
 public:
  virtual ~Observer() = default;
  virtual void On(const Event& event) = 0;
};

}  // namespace vostrand
