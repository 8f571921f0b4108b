#pragma once

#include <sys/types.h>

#include <QSocketNotifier>
#include <map>
#include <memory>
#include <string>

#include "execute/launcher.h"
#include "launch/tool_finder.h"

namespace vostrand {

/// Runs commands on this machine, each under a vostrand-step. One that has done its command takes the next:
/// starting another would cost as much as a command that does nothing. Names pass as the bytes they are.
class LocalLauncher final : public Launcher {
 public:
  /// `supervisor` is the path of vostrand-step; commands run in `work_dir`, each `timeout_seconds` at most; 0
  /// means as long as it takes.
  LocalLauncher(std::string supervisor, std::string work_dir, ToolFinder tools, double timeout_seconds);
  /// Waits for the supervisors that have nothing to do; others end their commands and go.
  ~LocalLauncher() override;

  /// Why nothing can be run; empty when it can.
  std::string Unusable() const;

  /// The supervisors inherit this open file. A lock on it is held until the last of them has ended, also when
  /// this program is killed.
  void Hold(int file) { held_file_ = file; }

  void Start(const StepRequest& request, Done done) override;
  void Cancel(std::size_t run) override;

 private:
  struct Supervisor {
    pid_t process = -1;
    int socket = -1;
    std::unique_ptr<QSocketNotifier> heard;
    Done done;            // Empty while it has nothing to do.
    std::size_t run = 0;  // What it works for.
    pid_t group = 0;      // Of the command.
  };

  void Fail(std::string message, Done done);
  /// The id of one that has taken the command; -1 and why when there is none.
  int GiveTo(const std::string& packet, std::string& why);
  int NewSupervisor(std::string& why);
  void Heard(int id);
  void Remove(int id);
  void EndOrphans() const;

  std::string supervisor_;
  std::string work_dir_;
  ToolFinder tools_;
  double timeout_seconds_;
  int held_file_ = -1;
  QObject queue_;  // Results that are known at once still arrive from the event loop.
  std::map<int, Supervisor> supervisors_;
  int next_id_ = 0;
  bool has_other_children_ = false;  // That whoever became this program had started.
};

}  // namespace vostrand
