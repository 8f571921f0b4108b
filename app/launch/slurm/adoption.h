#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "launch/slurm/job_journal.h"
#include "launch/slurm/job_state.h"
#include "resume/kept_run.h"

namespace vostrand {

/// A run that finished on the cluster while its host was not there to see it.
struct AdoptedRun {
  PlannedRun run;  ///< Its name and its results.
  KeptRun kept;    ///< Without its files.
};

/// The jobs that a killed host left on the cluster. Planning empties the folder that they write to, so they
/// have to have ended before.
class Adoption {
 public:
  /// `say` shows a line to the user.
  Adoption(std::string state_folder, std::function<void(const std::string& line)> say);

  /// For a sweep that starts anew: why it must not while jobs are left; empty when none are.
  std::string WhyRefused();
  /// Waits until the last job has ended; an interrupt cancels them all. Returns why that failed, or nothing.
  std::string Wait();
  /// The signal that interrupted the waiting; 0 when none did.
  int InterruptedBy() const { return interrupted_by_; }
  /// Those whose every step ended well, by the clock of the sweep that started them.
  std::vector<AdoptedRun> Finished() const;
  /// Forgets all jobs.
  void Clear() const;

 private:
  std::optional<std::vector<JobStatus>> Live();
  void Cancel(const std::vector<JobStatus>& live) const;
  void EndOrphans() const;

  std::string folder_;
  std::function<void(const std::string& line)> say_;
  std::vector<JobNote> notes_;     // Whose end nobody has seen, the last one of each run.
  std::vector<std::string> lost_;  // Names of the jobs that their node took with it.
  std::string unanswered_;
  int interrupted_by_ = 0;
};

}  // namespace vostrand
