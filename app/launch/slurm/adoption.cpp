#include "launch/slurm/adoption.h"

#include <QDateTime>
#include <QEventLoop>
#include <QJsonDocument>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <thread>
#include <utility>

#include "launch/slurm/job_script.h"
#include "launch/slurm/slurm_commands.h"
#include "launch/slurm/submission.h"
#include "records/event_json.h"
#include "signals.h"

namespace vostrand {
namespace {

constexpr auto poll_interval = std::chrono::seconds(1);
constexpr auto orphan_patience = std::chrono::seconds(5);
constexpr int most_silent_polls = 300;  // Each takes a second or two then.

std::string Ids(const std::vector<JobStatus>& jobs) {
  std::string text;
  for (const JobStatus& job : jobs) text += (text.empty() ? "" : " ") + job.id;
  return text;
}

std::string WaitingText(const std::vector<JobStatus>& live) {
  const auto waiting =
      std::count_if(live.begin(), live.end(), [](const JobStatus& job) { return job.IsWaiting(); });
  return "waiting for jobs of the earlier sweep: " +
         std::to_string(static_cast<std::ptrdiff_t>(live.size()) - waiting) + " running, " +
         std::to_string(waiting) + " queued";
}

// When the sweep of this journal started, in seconds since the epoch.
double StartOf(const std::string& journal) {
  std::string line;
  std::ifstream file(journal, std::ios::binary);
  std::getline(file, line);
  EventHeader header;
  FromJson(QJsonDocument::fromJson(QByteArray::fromStdString(line)).object(), header);
  const QDateTime start = QDateTime::fromString(QString::fromStdString(header.started), Qt::ISODate);
  return static_cast<double>(start.toMSecsSinceEpoch()) / 1000;
}

// Nothing unless every step of the job ended well.
std::optional<RunRecord> RecordOf(const JobNote& note, const JobFolder& folder, double sweep_start) {
  RunRecord record;
  record.name = note.run.name;
  record.status = 0;
  record.started = true;
  record.started_seconds = record.ended_seconds = note.submitted - sweep_start;
  for (const std::size_t step : note.steps) {
    TryRecord attempt;
    if (!step::ReadOutcome(folder.Outcome(step), attempt.outcome) || attempt.outcome.exit_code != 0 ||
        attempt.outcome.cancelled)
      return {};
    attempt.step = step;
    attempt.outcome.node = folder.Node();
    if (step == note.steps.front()) attempt.outcome.queue_seconds = folder.QueueSeconds();
    attempt.started_seconds = record.ended_seconds;
    record.ended_seconds += attempt.outcome.queue_seconds + attempt.outcome.elapsed_seconds;
    attempt.ended_seconds = record.ended_seconds;
    record.tries.push_back(attempt);
  }
  return record;
}

}  // namespace

Adoption::Adoption(std::string state_folder, std::function<void(const std::string& line)> say)
    : folder_(std::move(state_folder)), say_(std::move(say)) {
  std::map<std::string, JobNote> last;
  for (JobNote& note : JobJournal::Read(folder_ + "/jobs.jsonl")) last[note.run.name] = std::move(note);
  for (auto& [name, note] : last)
    if (!note.ended) notes_.push_back(std::move(note));
}

std::optional<std::vector<JobStatus>> Adoption::Live() {
  const CommandResult result = SlurmCommands::RunAndWait(QueueCommand(), "");
  unanswered_ = result.Succeeded() ? "" : result.Why();
  if (!result.Succeeded()) return {};
  std::vector<JobStatus> live;
  lost_.clear();
  for (const JobStatus& job : ReadQueue(result.out)) {
    const bool ours =
        std::any_of(notes_.begin(), notes_.end(), [&](const JobNote& note) { return note.job == job.name; });
    if (ours && job.IsLost()) lost_.push_back(job.name);
    if (ours && !job.HasEnded()) live.push_back(job);
  }
  return live;
}

std::string Adoption::WhyRefused() {
  if (notes_.empty()) return {};
  const auto live = Live();
  if (!live)
    return "jobs of an earlier sweep may still run, and the cluster does not answer (" + unanswered_ +
           "); try again later, or remove " + folder_ + "/jobs.jsonl once none does";
  if (live->empty()) {
    EndOrphans();
    return {};
  }
  return "jobs of an earlier sweep are still on the cluster; take them up with --resume, or end them with: "
         "scancel " +
         Ids(*live);
}

std::string Adoption::Wait() {
  const BlockedInterrupts blocked;
  QEventLoop loop;
  const Signals signals([&](int signal) {
    interrupted_by_ = signal;
    loop.quit();
  });
  std::string said;
  for (int silent = 0; !notes_.empty() && silent < most_silent_polls;) {
    const auto live = Live();
    if (live && live->empty()) {
      EndOrphans();
      return {};
    }
    silent = live ? 0 : silent + 1;
    const std::string text = live ? WaitingText(*live) : silent_controller + std::string("; waiting for it");
    if (text != said) say_(said = text);
    if (interrupted_by_ != 0 && !live) break;
    if (interrupted_by_ != 0) Cancel(*live);
    QTimer::singleShot(poll_interval, &loop, &QEventLoop::quit);
    loop.exec();
  }
  if (notes_.empty()) return {};
  std::string left;
  for (const JobNote& note : notes_) left += " " + (note.id.empty() ? "--name=" + note.job : note.id);
  return silent_controller + std::string("; these jobs may still be there: scancel") + left;
}

// What a lost node's daemon left running ends itself soon after its lease is gone; planning empties the
// folder that it writes to.
void Adoption::EndOrphans() const {
  bool any = !lost_.empty();
  for (const JobNote& note : notes_) {
    const JobFolder folder(folder_ + "/jobs/" + note.job);
    step::Outcome last;
    any = any || (!folder.Node().empty() && !step::ReadOutcome(folder.Outcome(note.steps.back()), last));
    folder.GiveUp();
  }
  if (any) std::this_thread::sleep_for(orphan_patience);
}

void Adoption::Cancel(const std::vector<JobStatus>& live) const {
  std::vector<std::string> words = {"scancel"};
  for (const JobStatus& job : live) {
    JobFolder(folder_ + "/jobs/" + job.name).GiveUp();
    if (job.state != "COMPLETING") words.push_back(job.id);
  }
  if (words.size() > 1) SlurmCommands::RunAndWait(words, "");
}

std::vector<AdoptedRun> Adoption::Finished() const {
  std::vector<AdoptedRun> finished;
  const double sweep_start = StartOf(folder_ + "/journal.jsonl");
  for (const JobNote& note : notes_) {
    if (std::find(lost_.begin(), lost_.end(), note.job) != lost_.end()) continue;
    const auto record = RecordOf(note, JobFolder(folder_ + "/jobs/" + note.job), sweep_start);
    if (!record) continue;
    AdoptedRun& run = finished.emplace_back();
    run.run = note.run;
    run.kept.identity = note.identity;
    run.kept.record = *record;
  }
  return finished;
}

void Adoption::Clear() const {
  std::error_code error;
  std::filesystem::remove(folder_ + "/jobs.jsonl", error);
  std::filesystem::remove_all(folder_ + "/jobs", error);
}

}  // namespace vostrand
