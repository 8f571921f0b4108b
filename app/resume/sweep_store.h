#pragma once

#include <string>
#include <vector>

#include "execute/run_plan.h"
#include "resume/kept_run.h"

namespace vostrand {

/// The folder that keeps a sweep's state, `<work_dir>/.vostrand/<hash of the tool arguments>/`: the journal,
/// and links to the files of finished runs, which planning would remove. Planning happens after it has been
/// opened, so the name depends on nothing that planning decides.
class SweepStore {
 public:
  /// `output_stem` is what the arguments name as output, without ".ncd", relative to `work_dir`.
  SweepStore(const std::string& work_dir, const std::vector<std::string>& tool_arguments,
             const std::string& output_stem);
  ~SweepStore();
  SweepStore(const SweepStore&) = delete;
  SweepStore& operator=(const SweepStore&) = delete;

  /// Makes the folder and locks it against a second sweep with the same output, as long as this object or a
  /// process with the open lock file lives: what a killed sweep had running may need a moment to end, and is
  /// waited for that long. The lock is a file in ".vostrand" beside the output, whatever name its folder goes
  /// by and whoever made it; beside the folder where there is none and none can be made; and in the folder as
  /// "lock". Returns why that failed, or nothing.
  std::string Open();
  /// The open lock file; -1 when there is none.
  int LockFile() const { return lock_; }
  bool IsOpen() const { return lock_ >= 0; }
  /// Another process holds the lock.
  bool IsTaken() const { return taken_; }
  const std::string& Folder() const { return folder_; }
  /// The folders beside it that share its lock: those of sweeps with the same output and other arguments.
  std::vector<std::string> FoldersOfOutput() const;
  std::string JournalFile() const { return folder_ + "/journal.jsonl"; }

  /// Links a finished run's files; what was kept under its name before goes.
  std::vector<KeptFile> Keep(const PlannedRun& run) const;
  /// Brings a run's files back into the folder of the results, in place of whatever is there. False, with
  /// nothing brought back, unless every one of them is still as it was kept.
  bool Restore(const PlannedRun& run, const KeptRun& kept) const;
  /// Removes the kept files of every run but these.
  void DropAllBut(const std::vector<const PlannedRun*>& runs) const;
  /// Removes the journal and all kept files.
  void Clear() const;

 private:
  int MakeAndLock();
  int TryLock();
  void Drop(const PlannedRun& run) const;
  std::string PathOf(const std::string& name) const { return folder_ + "/files/" + name; }

  std::string folder_;
  std::string lock_file_;
  std::string own_lock_file_;  // In its place where others do not let us write.
  int lock_ = -1;
  bool taken_ = false;
};

}  // namespace vostrand
