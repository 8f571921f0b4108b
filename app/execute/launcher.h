#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "step/outcome_file.h"

namespace vostrand {

/// One command to be run somewhere.
struct StepRequest {
  std::size_t run;
  std::size_t step;
  std::vector<std::string> words;  ///< The program and its arguments.
  std::string output_file;         ///< Standard output and error are appended to it.
};

/// Where and how commands run: on this machine, on a cluster, or, in tests, nowhere.
class Launcher {
 public:
  using Done = std::function<void(const step::Outcome& outcome)>;

  virtual ~Launcher() = default;
  /// Starts the command and calls `done` once, from the event loop, when it has ended; never from inside
  /// Start.
  virtual void Start(const StepRequest& request, Done done) = 0;
  /// Asks everything that runs to end; a second time, makes it.
  virtual void CancelAll() = 0;
};

}  // namespace vostrand
