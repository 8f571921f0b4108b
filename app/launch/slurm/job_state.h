#pragma once

#include <optional>
#include <string>
#include <vector>

#include "step/outcome_file.h"

namespace vostrand {

/// A job as the cluster's queue shows it.
struct JobStatus {
  std::string id;
  std::string state;    ///< "PENDING", "RUNNING", "COMPLETED", "NODE_FAIL", ...; empty once it is forgotten.
  int wait_status = 0;  ///< Of the job's script, as wait(2) gives it.
  std::string reason;   ///< Why it waits.
  std::string node;     ///< Or nodes; empty while it waits.
  std::string name;

  bool IsWaiting() const;
  /// Its state does not change any more, and nothing of it runs where its node is alive.
  bool HasEnded() const;
  /// Of two jobs of one name: which one is at the run.
  bool TellsMoreThan(const JobStatus& other) const;
  /// The machine's fault: somewhere else it may do.
  bool IsLost() const;
};

/// What asks for all jobs of this user, those that ended a while ago too, in one request.
std::vector<std::string> QueueCommand();
/// Reads what it printed. Lines that are too short are skipped.
std::vector<JobStatus> ReadQueue(const std::string& text);

/// Exit code of a step whose job ended without the step's own outcome.
constexpr int job_failed = 123;

/// How a step ended whose job has ended: by the job's state and what the step left, never by an exit code
/// alone.
step::Outcome OutcomeOf(const JobStatus& job, const std::optional<step::Outcome>& marker);

/// An outcome that says only this.
step::Outcome JobError(const std::string& message);
/// Of a step that was cancelled; what it took is in the marker, when it left one.
step::Outcome JobCancelled(const std::optional<step::Outcome>& marker = {});

}  // namespace vostrand
