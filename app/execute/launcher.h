#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "step/outcome_file.h"

namespace vostrand {

/// Where a command is that was handed to a scheduler.
struct Place {
  std::string node;    ///< The machine that it runs on; empty while it waits for one.
  std::string reason;  ///< Why it waits, in the scheduler's words.

  bool operator==(const Place&) const = default;
};
using Placed = std::function<void(const Place& place)>;

/// One command to be run somewhere.
struct StepRequest {
  std::size_t run;
  std::size_t step;
  std::vector<std::string> words;  ///< The program and its arguments.
  std::string output_file;         ///< Standard output and error are appended to it.
  /// The run's commands behind this one, each with its step: who takes the whole run at once is asked for
  /// them one by one all the same.
  std::vector<std::pair<std::size_t, std::vector<std::string>>> following;
  Placed placed;  ///< Called from the event loop whenever the place changes; never on this machine.
};

/// Where and how commands run: on this machine, on a cluster, or, in tests, nowhere.
class Launcher {
 public:
  using Done = std::function<void(const step::Outcome& outcome)>;

  virtual ~Launcher() = default;
  /// Starts the command and calls `done` once, from the event loop, when it has ended; never from inside
  /// Start. A run has one command at a time.
  virtual void Start(const StepRequest& request, Done done) = 0;
  /// Asks the run's command to end; a second time, makes it. Nothing happens when it has none.
  virtual void Cancel(std::size_t run) = 0;
  /// Takes back the run's command if it still waits for a machine; its outcome is "cancelled" then.
  virtual void Withdraw(std::size_t) {}
};

}  // namespace vostrand
