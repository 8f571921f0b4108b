#pragma once

#include <string>

#include "step/outcome_file.h"

namespace vostrand::step {

struct Command {
  std::string
      output_file;        ///< Standard output and error are appended to it; empty means the supervisor's own.
  int grace_seconds = 2;  ///< Between SIGTERM and SIGKILL.
  int timeout_ms = 0;     ///< The program is ended after this; 0 means never.
  std::string lease_file;      ///< The program is ended, too, once this file is gone; empty means none.
  char** arguments = nullptr;  ///< The program's path and its arguments, closed by a null.
};

/// Prepares this process for supervising: it becomes the parent of what its programs leave behind, and takes
/// its signals one by one. It does so for good; call it once, before anything else.
class Supervisor {
 public:
  /// Whoever starts commands through the socket `host` (-1 when nobody does) ends them through it, too.
  explicit Supervisor(int host = -1);
  ~Supervisor();
  Supervisor(const Supervisor&) = delete;
  Supervisor& operator=(const Supervisor&) = delete;

  /// Runs the command in a process group of its own, with standard input from /dev/null, and waits until it
  /// and every process that it left behind have ended. SIGTERM, SIGINT, SIGHUP, a packet from the host or its
  /// going, the end of the command's time and that of its lease end the group: SIGTERM, then SIGKILL after
  /// the grace or at the second request. The outcome's exit code: the program's, 128 plus the signal that
  /// ended it, 127 when it cannot be started, 124 when its time was over.
  Outcome Run(const Command& command);

  /// Waits for a packet of the host, whose first byte tells what it wants; empty once it has gone.
  std::string NextPacket();

 private:
  int host_;
  int signals_;  // Where they are taken from.
};

}  // namespace vostrand::step
