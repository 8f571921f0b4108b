#pragma once

#include <string>

namespace vostrand::step {

/// How a program ended and what it took.
struct Outcome {
  int exit_code = 0;       ///< The program's, 128 plus the signal, 127 when it could not be started, or 124.
  int signal = 0;          ///< That ended it; 0 when none did.
  bool cancelled = false;  ///< Ended because the supervisor was told to.
  bool timed_out = false;  ///< Ended because its time was over; `exit_code` is 124 then.
  double elapsed_seconds = 0;  ///< Wall clock.
  double cpu_seconds = 0;      ///< User and system time of all its processes.
  long peak_kib = 0;           ///< Largest resident set of any of its processes.
  std::string message;         ///< Why it could not be started or was ended; one line, empty otherwise.
  // Not the supervisor's to know:
  double queue_seconds = 0;  ///< What it waited for a machine, which is no part of `elapsed_seconds`.
  std::string node;          ///< The machine that it ran on; empty for this one.
  bool lost = false;         ///< Its machine failed or was taken from it; it may do elsewhere.
};

/// The outcome as lines "name value", and such lines read again; false when they are not whole.
std::string AsText(const Outcome& outcome);
bool FromText(const std::string& text, Outcome& outcome);

/// Writes that text, beside the file first, so that it is there whole or not at all.
/// With `to_disk` that holds through a failure of the machine as well, which costs milliseconds. False when
/// it cannot be written.
bool WriteOutcome(const std::string& path, const Outcome& outcome, bool to_disk);

/// Reads what WriteOutcome wrote. False when the file is not there or not whole.
bool ReadOutcome(const std::string& path, Outcome& outcome);

}  // namespace vostrand::step
