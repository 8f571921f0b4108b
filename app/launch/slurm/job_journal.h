#pragma once

#include <string>
#include <vector>

#include "execute/run_plan.h"

class QJsonObject;

namespace vostrand {

/// A job as the journal of jobs knows it.
struct JobNote {
  std::string job;                 ///< Its name on the cluster, which no other job has.
  std::string id;                  ///< The cluster's number; empty when the host died before it knew.
  std::string identity;            ///< Of the run.
  PlannedRun run;                  ///< Its name and its results alone.
  std::vector<std::size_t> steps;  ///< What the job performs, as indices in the run.
  double submitted = 0;            ///< Seconds since the epoch.
  bool ended = false;              ///< The host has seen its end.
};

/// Keeps, in a file of one JSON line per happening, what is needed to find the jobs again when the host was
/// killed at any moment.
class JobJournal {
 public:
  explicit JobJournal(std::string path) : path_(std::move(path)) {}
  ~JobJournal();
  JobJournal(const JobJournal&) = delete;
  JobJournal& operator=(const JobJournal&) = delete;

  /// In front of a submission; on the disk when it returns. False when that fails.
  bool Submitting(const JobNote& note);
  /// Should this line be lost, the job is found by its name.
  void Submitted(const std::string& job, const std::string& id);
  void Ended(const std::string& job);

  /// The notes in the order of submission; torn lines are skipped.
  static std::vector<JobNote> Read(const std::string& path);

 private:
  bool Write(const QJsonObject& line, bool to_disk);

  std::string path_;
  int file_ = -1;
};

}  // namespace vostrand
