#pragma once

#include <chrono>
#include <map>
#include <string>
#include <vector>

namespace toolchain {

/// A program to run and to wait for.
struct Command {
  std::string program;  ///< Searched on the PATH.
  std::vector<std::string> arguments;
  std::string folder;                              ///< To run in; empty means our own.
  std::map<std::string, std::string> environment;  ///< In addition to our own.
  std::chrono::seconds time_limit;
};

struct Outcome {
  bool timed_out = false;
  int signal = 0;      ///< That ended it; 0 for none.
  int exit_code = 0;   ///< When it ended by itself.
  std::string output;  ///< Standard and error output together.
};

/// From here on SIGINT, SIGTERM and SIGHUP do not end this program at once: they end the running command, and
/// then the program fails with 128 + the signal. One that is ignored stays so.
void CatchSignals();

/// Fails when a signal has come. For the stretches between commands.
void CheckSignals();

/// Runs a command with no input. It ends with this program, however that ends, and at its time limit.
/// Variables of Python and of the locale are kept from it. Fails when it cannot be started.
Outcome Run(const Command& command);

}  // namespace toolchain
