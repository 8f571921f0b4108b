#pragma once

#include <functional>
#include <stdexcept>
#include <string>

namespace toolchain {

/// What a program of the tool chain ends with. 128 + the signal when one ended it.
enum class ExitCode {
  done = 0,
  usage = 1,     ///< The command line.
  input = 2,     ///< A file given by the user cannot be read or is wrong.
  engine = 3,    ///< The engine or the analyser failed: a design that does not fit, for instance.
  missing = 4,   ///< A program or a file of the tool chain itself is not there.
  too_long = 5,  ///< A time limit was reached.
  output = 6,    ///< A result cannot be written.
};

/// Ends the program with a message for the user.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& message) : Failure(static_cast<int>(code), message) {}
  Failure(int exit_code, const std::string& message) : std::runtime_error(message), exit_code_(exit_code) {}
  int exit_code() const { return exit_code_; }

 private:
  int exit_code_;
};

/// Runs the body of a program's main and returns its exit code. A failure becomes "<program>: error:
/// <message>" on the standard error output.
int RunProgram(const char* program, const std::function<void()>& body);

}  // namespace toolchain
