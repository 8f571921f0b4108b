#pragma once

#include <sys/types.h>

#include <QSocketNotifier>
#include <QTemporaryDir>
#include <map>
#include <memory>
#include <string>

#include "execute/launcher.h"
#include "launch/tool_finder.h"

namespace vostrand {

/// Runs commands on this machine, each under vostrand-step. Names pass as the bytes they are.
class LocalLauncher final : public Launcher {
 public:
  /// `supervisor` is the path of vostrand-step; commands run in `work_dir`, each `timeout_seconds` at most; 0
  /// means as long as it takes.
  LocalLauncher(std::string supervisor, std::string work_dir, ToolFinder tools, double timeout_seconds);
  ~LocalLauncher() override;

  /// Why nothing can be run; empty when it can.
  std::string Unusable() const;

  /// The supervisors inherit this open file. A lock on it is held until the last of them has ended, also when
  /// this program is killed.
  void Hold(int file) { held_file_ = file; }

  void Start(const StepRequest& request, Done done) override;
  void Cancel(std::size_t run) override;

 private:
  struct Running {
    std::size_t run = 0;
    pid_t supervisor = -1;
    int ended_file = -1;  // Readable when the supervisor has ended.
    std::unique_ptr<QSocketNotifier> ended;
    std::string outcome_file;
    Done done;
  };

  void Fail(std::string message, Done done);
  void Ended(int id);

  std::string supervisor_;
  std::string work_dir_;
  ToolFinder tools_;
  double timeout_seconds_;
  int held_file_ = -1;
  QTemporaryDir outcomes_;
  QObject queue_;  // Results that are known at once still arrive from the event loop.
  std::map<int, Running> running_;
  int next_id_ = 0;
};

}  // namespace vostrand
