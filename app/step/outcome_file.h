#pragma once

#include <string>

namespace vostrand::step {

/// How a program ended and what it took.
struct Outcome {
  int exit_code = 0;           ///< The program's, 128 plus the signal, or 127 when it could not be started.
  int signal = 0;              ///< That ended it; 0 when none did.
  bool cancelled = false;      ///< Ended because the supervisor was told to.
  double elapsed_seconds = 0;  ///< Wall clock.
  double cpu_seconds = 0;      ///< User and system time of all its processes.
  long peak_kib = 0;           ///< Largest resident set of any of its processes.
  std::string message;         ///< Why it could not be started; one line, empty otherwise.
};

/// Writes the outcome as lines "name value", beside the file first, so that it is there whole or not at all.
/// False when it cannot be written.
bool WriteOutcome(const std::string& path, const Outcome& outcome);

/// Reads what WriteOutcome wrote. False when the file is not there or not whole.
bool ReadOutcome(const std::string& path, Outcome& outcome);

}  // namespace vostrand::step
