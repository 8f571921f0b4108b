#pragma once

namespace orlo::kelpn {

/// The host's logger. A tool run hands it complete lines that end in "\n"; it adds nothing. It is called on
/// the thread of the run that writes; a logger shared by runs on several threads must be safe to call from
/// them. The library never deletes a logger: the class has two virtual operations, in this order, and no
/// virtual destructor.
class ILogger {
 public:
  /// Receives status text.
  virtual void onStdout(const char* text) = 0;
  /// Receives warning and error text.
  virtual void onStderr(const char* text) = 0;

 protected:
  ~ILogger() = default;
};

}  // namespace orlo::kelpn
