#pragma once

#include <map>
#include <string>
#include <vector>

#include "execute/run_plan.h"
#include "resume/journal.h"
#include "resume/sweep_store.h"

namespace vostrand {

/// What an earlier sweep with the same arguments finished, and what this one keeps for a later.
class Resumption {
 public:
  Resumption(const std::string& work_dir, const std::vector<std::string>& tool_arguments,
             const std::string& output_stem)
      : store_(work_dir, tool_arguments, output_stem) {}

  /// In front of planning: locks the sweep's state. Returns why that failed, or nothing. Without its state a
  /// sweep runs all the same, unless another has it.
  std::string Open() { return store_.Open(); }
  /// Adds a run that finished without its sweep to the earlier sweep's journal.
  void Adopt(const PlannedRun& run, KeptRun kept) const;
  /// Reads what the earlier sweep finished.
  void ReadEarlier();
  /// The folder that holds the sweep's state.
  const std::string& Folder() const { return store_.Folder(); }
  /// The state folders of sweeps with the same output and other arguments.
  std::vector<std::string> FoldersOfOutput() const { return store_.FoldersOfOutput(); }
  bool IsTaken() const { return store_.IsTaken(); }
  int LockFile() const { return store_.LockFile(); }
  /// Finished runs of the earlier sweep, whether or not they can be taken over.
  std::size_t EarlierCount() const { return earlier_.size(); }

  /// After planning: brings back the files of every run that finished with the same identity, and marks it in
  /// the plan. Everything else that was kept goes. `identities` has one entry a run. Returns how many runs of
  /// the plan had finished, but not as the same.
  std::size_t Restore(std::vector<PlannedRun>& plan, std::vector<std::string> identities);
  /// One record a run of the plan: the earlier one, or one with just its name.
  std::vector<RunRecord> Records(const std::vector<PlannedRun>& plan) const;
  /// Links the files of a run that has finished now, or returns what is kept of a restored one.
  KeptRun Keep(std::size_t index, const PlannedRun& run, const RunRecord& record);

  /// Gives up what is kept of every run but `best`.
  void DropOthers(const std::vector<PlannedRun>& plan, const std::string& best) const;

  /// Where the journal goes; empty when there is no state.
  std::string JournalFile() const { return store_.IsOpen() ? store_.JournalFile() : ""; }

 private:
  SweepStore store_;
  std::map<std::string, KeptRun> earlier_;
  std::vector<std::string> identities_;
};

}  // namespace vostrand
