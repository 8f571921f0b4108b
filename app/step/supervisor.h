#pragma once

#include <string>

namespace vostrand::step {

struct Command {
  std::string outcome_file;  ///< Written whole or not at all, when everything has ended.
  std::string
      output_file;        ///< Standard output and error are appended to it; empty means the supervisor's own.
  int grace_seconds = 2;  ///< Between SIGTERM and SIGKILL.
  int timeout_ms = 0;     ///< The program is ended after this; 0 means never.
  int parent = 0;         ///< Process id of whoever starts the supervisor, when it must not outlive it.
  std::string lease_file;      ///< The program is ended, too, once this file is gone; empty means none.
  int held_file = -1;          ///< An open file that the supervisor keeps and the program does not get.
  char** arguments = nullptr;  ///< The program's path and its arguments, closed by a null.
};

/// Runs the command in a process group of its own, with standard input from /dev/null, and waits until it and
/// every process that it left behind have ended. SIGTERM, SIGINT, SIGHUP, the death of the parent, the end
/// of its time and that of the lease end the group: SIGTERM, then SIGKILL after the grace or at the second
/// signal. Returns the exit code: the program's, 128 plus the signal that ended it, 127 when it cannot be
/// started, 124 when its time was over, or 126 when the outcome cannot be written.
int Supervise(const Command& command);

}  // namespace vostrand::step
