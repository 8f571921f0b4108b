#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "step/outcome_file.h"

namespace vostrand {

/// Status of a run that was cancelled or never started.
inline constexpr int cancelled_status = 65280;

/// What a run is worth, as far as it is known while the sweep runs.
struct Verdict {
  std::optional<bool> met;     ///< It meets timing; nothing when there is no place-and-route result row.
  std::optional<float> score;  ///< Performance score of its own timing report alone; nothing without one.
};

/// What happens in a sweep. Everything that is shown or kept is drawn from these.
struct Event {
  enum class Kind {
    sweep_started,
    run_restored,  ///< Finished in an earlier sweep and taken over: instead of run_started to run_finished.
    run_started,
    step_started,
    step_placed,  ///< A scheduler has it: it waits there, `message` says why, or it runs on `node`.
    step_finished,
    run_finished,
    run_skipped,  ///< Never started.
    stopping,     ///< Nothing more is started; `message` says why. Once.
    sweep_finished
  };

  explicit Event(Kind event_kind, std::size_t run_index = 0) : kind(event_kind), run(run_index) {}

  Kind kind;
  double at_seconds = 0;    ///< Since the sweep started.
  std::size_t run = 0;      ///< Index in the plan; for run and step events.
  std::size_t slot = 0;     ///< The job slot, from 0, that the run occupies; for run and step events.
  std::size_t step = 0;     ///< Index in the run; for step events.
  int try_number = 1;       ///< For step events: 2 is the first retry.
  bool callback = false;    ///< For step events: the step is a callback, which takes no time.
  int status = 0;           ///< Of the run; for run_finished and run_skipped.
  bool will_retry = false;  ///< For step_finished: the step failed and is tried again.
  step::Outcome outcome;    ///< For step_finished of a command.
  std::string node;         ///< For step_placed: the machine that it runs on; empty while it waits.
  Verdict verdict;          ///< For run_restored, and run_finished with status 0.
  std::string message;      ///< Why a run could not be started, why the sweep stops, why a step waits.
};

/// Hears every event once, in order, on the host's one thread.
class Observer {
 public:
  virtual ~Observer() = default;
  virtual void On(const Event& event) = 0;
};

}  // namespace vostrand
