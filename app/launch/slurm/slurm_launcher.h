#pragma once

#include <QTimer>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "execute/clock.h"
#include "execute/launcher.h"
#include "launch/slurm/job_journal.h"
#include "launch/slurm/job_script.h"
#include "launch/slurm/job_state.h"
#include "launch/slurm/slurm_commands.h"
#include "launch/slurm/submission.h"
#include "launch/tool_finder.h"

namespace vostrand {

/// Runs each run as one job of a Slurm cluster, through its commands alone. The job performs the run's
/// remaining commands; each of the run's Starts waits for one of them, and a command that is tried again
/// begins a new job. One request a poll asks for all jobs, however many they are.
class SlurmLauncher final : public Launcher {
 public:
  /// `say` shows a line to the user.
  SlurmLauncher(SlurmSettings settings, ToolFinder tools, const Clock& clock,
                std::function<void(const std::string& line)> say);

  std::string Unusable() const { return WhyRefusedByCluster(settings_, say_); }
  /// In front of the first Start: what the journal of jobs says of each run.
  void Prepare(const std::vector<PlannedRun>& plan, const std::vector<std::string>& identities);

  void Start(const StepRequest& request, Done done) override;
  void Cancel(std::size_t run) override;
  void Withdraw(std::size_t run) override;

 private:
  struct Job {
    enum class Stage { to_submit, submitting, unsure, submitted };
    Stage stage = Stage::to_submit;
    JobNote note;
    std::string script;
    std::optional<JobFolder> folder;
    std::size_t step = 0;  // What is waited for; what the host has seen the end of lies before it.
    bool waited_for = false;
    Done done;
    Placed placed;
    std::optional<Place> told_place;
    JobStatus status;
    int known_since = 0;  // The poll before which the cluster knew the job.
    int missed = 0;       // Polls that did not show it.
    int unnamed = 0;      // Submissions that ended well and named no job.
    int cancels = 0;
    bool withdrawn = false;
    double cancelled_at = 0;
    std::optional<double> ended_at;  // When its end was first seen.
  };

  Job* Find(std::size_t run);
  std::vector<JobStep> StepsOf(const StepRequest& request, std::string& missing) const;
  void Soon(std::function<void()> then);
  void SubmitNext();
  void Submit(std::size_t run);
  void Submitted(std::size_t run, const CommandResult& result);
  void IsSilent(const CommandResult& result, double since);
  void HasId(std::size_t run, const std::string& id);
  void Poll();
  void Polled(const CommandResult& result);
  void Update(std::size_t run, const JobStatus* status);
  void TellPlace(Job& job) const;
  void LookForStep(std::size_t run);
  void Conclude(std::size_t run);
  void CancelAgain(std::size_t run);
  void EndWithoutController(double silent_seconds);
  void ScancelSoon(const std::vector<std::string>& options, const std::string& id);
  void Scancel();
  void StepEnded(std::size_t run, step::Outcome outcome);
  void JobEnded(std::size_t run, step::Outcome outcome);
  step::Outcome WithPlace(const Job& job, step::Outcome outcome) const;

  const SlurmSettings settings_;
  const ToolFinder tools_;
  const Clock& clock_;
  const std::function<void(const std::string& line)> say_;
  SlurmCommands commands_;
  JobJournal journal_;
  std::string session_;  // Part of the jobs' names.
  int job_count_ = 0;
  std::vector<JobNote> runs_;
  std::map<std::size_t, Job> jobs_;  // By run.
  std::deque<std::size_t> to_submit_;
  bool submitting_ = false;
  int polls_ = 0;
  bool polling_ = false;
  double poll_began_ = 0;
  std::optional<double> silent_since_;  // The controller does not answer.
  std::map<std::vector<std::string>, std::vector<std::string>> to_scancel_;  // Ids by options.
  QTimer timer_;
};

}  // namespace vostrand
