#pragma once

#include <QObject>
#include <functional>
#include <string>
#include <vector>

namespace vostrand {

/// How one of the cluster's commands ended.
struct CommandResult {
  int exit_code = -1;  ///< -1 when it could not be started, was killed or took too long.
  std::string out;
  std::string err;
  bool started = true;  ///< False when there is no such command.

  bool Succeeded() const { return exit_code == 0; }
  /// The cluster's controller did not answer, or nobody knows whether it has heard the request: later the
  /// same command may succeed.
  bool IsUnanswered() const;
  /// What it said last, for a message.
  std::string Why() const;
};

/// Runs the cluster's own commands (sbatch, squeue, scancel, found in PATH), without waiting for them. They
/// see the user's environment but for what an outer job or the user's display habits would change their
/// meaning by.
class SlurmCommands {
 public:
  SlurmCommands() = default;
  /// What still runs is killed, and nobody is called.
  ~SlurmCommands();
  SlurmCommands(const SlurmCommands&) = delete;
  SlurmCommands& operator=(const SlurmCommands&) = delete;

  /// Runs the words with `input` on standard input; `then` is called once, from the event loop, unless this
  /// object goes before.
  void Run(const std::vector<std::string>& words, const std::string& input,
           std::function<void(const CommandResult& result)> then);
  /// The same, waiting for it; needs no event loop.
  static CommandResult RunAndWait(const std::vector<std::string>& words, const std::string& input);

 private:
  QObject children_;
};

}  // namespace vostrand
