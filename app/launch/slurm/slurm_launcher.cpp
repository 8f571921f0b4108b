#include "launch/slurm/slurm_launcher.h"

#include <QRandomGenerator>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <utility>

#include "execute/events.h"
#include "resume/left_files.h"

namespace vostrand {
namespace {

// A shared file system may show a file late; what a lost node left running may need to end.
constexpr double marker_patience = 5;
constexpr double cancel_patience = 20;  // For a controller that does not answer.
constexpr double cancel_again = 5;
constexpr int never_arrived = 5;       // Answers without a submission that nobody confirmed.
constexpr int most_resubmissions = 3;  // Of a job that is taken and never seen.
constexpr std::size_t ids_per_command = 500;
constexpr int cannot_start = 127;

double EpochSeconds() {
  return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

step::Outcome CannotStart(const std::string& message) {
  step::Outcome outcome;
  outcome.exit_code = cannot_start;
  outcome.message = message;
  return outcome;
}

}  // namespace

SlurmLauncher::SlurmLauncher(SlurmSettings settings, ToolFinder tools, const Clock& clock,
                             std::function<void(const std::string& line)> say)
    : settings_(std::move(settings)),
      tools_(std::move(tools)),
      clock_(clock),
      say_(std::move(say)),
      journal_(settings_.state_folder + "/jobs.jsonl"),
      session_(QString::number(QRandomGenerator::system()->generate(), 36).toStdString()) {
  timer_.setInterval(std::chrono::milliseconds(static_cast<int>(settings_.poll_seconds * 1000)));
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Poll(); });
}

void SlurmLauncher::Prepare(const std::vector<PlannedRun>& plan, const std::vector<std::string>& identities) {
  runs_.resize(plan.size());
  for (std::size_t i = 0; i < plan.size(); ++i) {
    runs_[i].identity = identities[i];
    runs_[i].run.name = plan[i].name;
    runs_[i].run.results_folder = plan[i].results_folder;
    runs_[i].run.results = plan[i].results;
  }
}

SlurmLauncher::Job* SlurmLauncher::Find(std::size_t run) {
  const auto found = jobs_.find(run);
  return found == jobs_.end() ? nullptr : &found->second;
}

void SlurmLauncher::Soon(std::function<void()> then) {
  QTimer::singleShot(0, &timer_, std::move(then));
}

std::vector<JobStep> SlurmLauncher::StepsOf(const StepRequest& request, std::string& missing) const {
  std::vector<JobStep> steps = {{request.step, request.words}};
  for (const auto& [step, words] : request.following) steps.push_back({step, words});
  for (JobStep& step : steps) {
    const std::string program = tools_.Find(step.words.front());
    if (program.empty()) missing = "there is no program " + step.words.front() + " in " + tools_.Places();
    step.words.front() = program;
  }
  return steps;
}

void SlurmLauncher::Start(const StepRequest& request, Done done) {
  if (!timer_.isActive()) timer_.start();
  Job* job = Find(request.run);
  if (!job) {
    JobPlan plan;
    std::string missing;
    plan.steps = StepsOf(request, missing);
    if (!missing.empty()) {
      Soon([outcome = CannotStart(missing), done = std::move(done)] { done(outcome); });
      return;
    }
    job = &jobs_[request.run];
    job->note = runs_[request.run];
    job->note.job = JobName(job->note.run.name, session_, ++job_count_);
    for (const JobStep& step : plan.steps) job->note.steps.push_back(step.step);
    job->folder.emplace(settings_.state_folder + "/jobs/" + job->note.job);
    plan.work_dir = settings_.work_dir;
    plan.folder = job->folder->Path();
    plan.supervisor = settings_.supervisor;
    plan.output_file = request.output_file;
    plan.timeout_seconds = settings_.timeout_seconds;
    if (const char* const locale = std::getenv("LC_ALL")) plan.locale = locale;
    job->script = JobScript(plan);
    to_submit_.push_back(request.run);
    Soon([this] { SubmitNext(); });
  }
  job->step = request.step;
  job->waited_for = true;
  job->done = std::move(done);
  job->placed = request.placed;
}

void SlurmLauncher::SubmitNext() {
  // One after the other: the cluster takes jobs in the order of their submission, which is the plan's.
  while (!submitting_ && !to_submit_.empty() && !silent_since_) {
    const std::size_t run = to_submit_.front();
    to_submit_.pop_front();
    Submit(run);
  }
}

void SlurmLauncher::Submit(std::size_t run) {
  Job* const job = Find(run);
  if (!job || job->stage != Job::Stage::to_submit) return;
  if (job->cancels > 0 || job->withdrawn) return JobEnded(run, JobCancelled());
  job->note.submitted = EpochSeconds();
  if (!job->folder->Make(job->script) || !journal_.Submitting(job->note)) {
    JobEnded(run, CannotStart("cannot write " + job->folder->Path()));
    return;
  }
  job->stage = Job::Stage::submitting;
  submitting_ = true;
  commands_.Run(SubmitCommand(settings_, "--job-name=" + job->note.job), job->script,
                [this, run](const CommandResult& result) { Submitted(run, result); });
}

void SlurmLauncher::Submitted(std::size_t run, const CommandResult& result) {
  submitting_ = false;
  const std::string id = result.out.substr(0, result.out.find_first_not_of("0123456789"));
  if (result.Succeeded() && !id.empty()) {
    HasId(run, id);
  } else if (result.Succeeded() || result.IsUnanswered()) {
    // The cluster may have it all the same: later answers show whether it knows the name.
    jobs_.at(run).stage = Job::Stage::unsure;
    jobs_.at(run).known_since = polls_ + 1;
    if (result.Succeeded())
      ++jobs_.at(run).unnamed;
    else
      IsSilent(result, clock_.Now());
  } else {
    JobEnded(run, JobError("cannot be submitted: " + result.Why()));
  }
  SubmitNext();
}

void SlurmLauncher::IsSilent(const CommandResult& result, double since) {
  if (silent_since_) return;
  silent_since_ = since;
  say_(silent_controller + std::string("; waiting for it (") + result.Why() + ")");
}

void SlurmLauncher::HasId(std::size_t run, const std::string& id) {
  Job& job = jobs_.at(run);
  job.stage = Job::Stage::submitted;
  job.note.id = job.status.id = id;
  job.script = {};
  job.known_since = polls_ + 1;
  journal_.Submitted(job.note.job, id);
  if (job.cancels > 0) ScancelSoon({}, id);
  if (job.withdrawn) ScancelSoon({"--state=PENDING"}, id);
}

void SlurmLauncher::Poll() {
  if (jobs_.empty()) return;
  if (polling_) {
    // Cancelled jobs alone do not wait for the poll's own end: with the others an answer is still welcome.
    const double silence = clock_.Now() - silent_since_.value_or(poll_began_);
    EndWithoutController(std::min(silence, settings_.patience_seconds));
    return;
  }
  polling_ = true;
  poll_began_ = clock_.Now();
  ++polls_;
  commands_.Run(QueueCommand(), "", [this](const CommandResult& result) { Polled(result); });
}

void SlurmLauncher::Polled(const CommandResult& result) {
  polling_ = false;
  if (!result.Succeeded()) {
    IsSilent(result, poll_began_);
    EndWithoutController(clock_.Now() - *silent_since_);
    return;
  }
  if (silent_since_) say_("the cluster's controller answers");
  silent_since_.reset();
  std::map<std::string, const JobStatus*> by_name;
  const std::vector<JobStatus> queue = ReadQueue(result.out);
  for (const JobStatus& status : queue) {
    // Two jobs have one name when a submission arrived that was thought lost: one of them does nothing.
    const JobStatus*& known = by_name[status.name];
    if (known && known->IsWaiting() != status.IsWaiting())
      ScancelSoon({"--state=PENDING"}, (status.IsWaiting() ? status : *known).id);
    if (!known || status.TellsMoreThan(*known)) known = &status;
  }
  // What is told here may end jobs and begin others.
  std::vector<std::pair<std::size_t, std::string>> known;
  for (const auto& [run, job] : jobs_)
    if (job.stage >= Job::Stage::unsure && job.known_since <= polls_) known.emplace_back(run, job.note.job);
  for (const auto& [run, name] : known) {
    const Job* const job = Find(run);
    if (!job || job->note.job != name) continue;
    const auto found = by_name.find(name);
    Update(run, found == by_name.end() ? nullptr : found->second);
  }
  SubmitNext();
}

void SlurmLauncher::Update(std::size_t run, const JobStatus* status) {
  Job& job = jobs_.at(run);
  if (job.stage == Job::Stage::unsure) {
    if (status) return HasId(run, status->id);
    if (++job.missed < never_arrived) return;
    if (job.unnamed > most_resubmissions && job.cancels == 0 && !job.withdrawn)
      return JobEnded(run, JobError("the cluster takes the job and never shows it"));
    job.missed = 0;
    job.stage = Job::Stage::to_submit;
    to_submit_.push_front(run);
    return;
  }
  job.missed = status ? 0 : job.missed + 1;
  if (status) {
    job.status = *status;
    job.note.id = status->id;
    if (!status->HasEnded()) job.ended_at.reset();
    TellPlace(job);
  } else if (job.missed > 1) {
    job.status.state.clear();  // The queue forgets a job some minutes after its end.
  }
  if (job.status.HasEnded() || job.missed > 1)
    Conclude(run);
  else if (job.cancels > 0 || job.withdrawn)
    CancelAgain(run);
  else if (status && !status->IsWaiting())
    LookForStep(run);
}

void SlurmLauncher::TellPlace(Job& job) const {
  Place place;
  if (!job.status.IsWaiting()) place.node = job.status.node;
  if (job.status.IsWaiting() && job.status.reason != "None") place.reason = job.status.reason;
  const bool says_nothing = place.node.empty() && !job.status.IsWaiting();
  if (says_nothing || !job.waited_for || !job.placed || job.told_place == place) return;
  job.told_place = place;
  job.placed(place);
}

// A command that ended well while its job goes on with the next.
void SlurmLauncher::LookForStep(std::size_t run) {
  if (const Job* const job = Find(run)) AskAgain(job->folder->Path());
  for (;;) {
    const Job* const job = Find(run);
    step::Outcome outcome;
    if (!job || !job->waited_for || job->cancels > 0 || job->step == job->note.steps.back() ||
        !step::ReadOutcome(job->folder->Outcome(job->step), outcome) || outcome.exit_code != 0 ||
        outcome.cancelled)
      return;
    StepEnded(run, WithPlace(*job, outcome));
  }
}

void SlurmLauncher::Conclude(std::size_t run) {
  if (!jobs_.at(run).status.IsLost()) LookForStep(run);
  Job* const job = Find(run);
  if (!job || !job->waited_for) return;
  if (!job->ended_at) job->ended_at = clock_.Now();
  AskAgain(job->folder->Path());
  std::optional<step::Outcome> marker(std::in_place);
  if (!step::ReadOutcome(job->folder->Outcome(job->step), *marker)) marker.reset();
  step::Outcome outcome = OutcomeOf(job->status, marker);
  if (job->cancels > 0 && outcome.exit_code != 0) outcome = JobCancelled(marker);
  if (!marker && !outcome.cancelled && clock_.Now() - *job->ended_at < marker_patience) {
    // What a dead node's daemon left running ends itself, and may say so.
    if (outcome.lost) job->folder->GiveUp();
    return;
  }
  const std::string said = marker || outcome.cancelled ? "" : job->folder->LastWords();
  if (!said.empty()) outcome.message += ": " + said;
  JobEnded(run, WithPlace(*job, std::move(outcome)));
}

step::Outcome SlurmLauncher::WithPlace(const Job& job, step::Outcome outcome) const {
  outcome.node = job.folder->Node();
  if (outcome.node.empty()) outcome.node = job.status.node;
  if (job.step == job.note.steps.front()) outcome.queue_seconds = job.folder->QueueSeconds();
  return outcome;
}

void SlurmLauncher::StepEnded(std::size_t run, step::Outcome outcome) {
  Job& job = jobs_.at(run);
  job.waited_for = false;
  const Done done = std::move(job.done);
  AskAgain(job.note.run.results_folder);
  done(outcome);
}

void SlurmLauncher::JobEnded(std::size_t run, step::Outcome outcome) {
  const Job job = std::move(jobs_.extract(run).mapped());
  const bool was_noted = job.stage != Job::Stage::to_submit;
  if (outcome.exit_code != 0) job.folder->GiveUp();
  AskAgain(job.note.run.results_folder);
  job.done(outcome);
  // Behind what is done with the outcome: until then the job's folder is the only one that knows.
  if (was_noted) journal_.Ended(job.note.job);
  if (outcome.exit_code == 0) job.folder->Remove();
}

void SlurmLauncher::Cancel(std::size_t run) {
  Job* const job = Find(run);
  if (!job) return;
  ++job->cancels;
  job->cancelled_at = clock_.Now();
  if (job->stage == Job::Stage::to_submit) return Soon([this, run] { Submit(run); });
  if (job->stage == Job::Stage::submitted)
    ScancelSoon(
        job->cancels == 1 ? std::vector<std::string>{} : std::vector<std::string>{"--signal=KILL", "--full"},
        job->note.id);
  job->folder->GiveUp();
}

void SlurmLauncher::Withdraw(std::size_t run) {
  Job* const job = Find(run);
  if (!job || job->withdrawn) return;
  job->withdrawn =
      job->stage != Job::Stage::submitted || job->status.state.empty() || job->status.IsWaiting();
  if (job->stage == Job::Stage::to_submit)
    Soon([this, run] { Submit(run); });
  else if (job->withdrawn && job->stage == Job::Stage::submitted)
    ScancelSoon({"--state=PENDING"}, job->note.id);
}

// A request that was not heard, or a withdrawal that came too late: then the job goes on.
void SlurmLauncher::CancelAgain(std::size_t run) {
  Job& job = jobs_.at(run);
  if (job.cancels == 0 && !job.status.IsWaiting()) {
    job.withdrawn = false;
    LookForStep(run);
    return;
  }
  if (job.status.state == "COMPLETING" || clock_.Now() - job.cancelled_at < cancel_again) return;
  job.cancelled_at = clock_.Now();
  ScancelSoon(job.cancels > 0 ? std::vector<std::string>{} : std::vector<std::string>{"--state=PENDING"},
              job.note.id);
}

// Told to end, a sweep does not wait for long: what may be left is named.
void SlurmLauncher::EndWithoutController(double silent_seconds) {
  std::vector<std::size_t> given_up;
  for (const auto& [run, job] : jobs_) {
    const bool in_vain = job.cancels > 0
                             ? std::min(silent_seconds, clock_.Now() - job.cancelled_at) > cancel_patience
                             : silent_seconds > settings_.patience_seconds;
    if (job.stage != Job::Stage::submitting && in_vain) given_up.push_back(run);
  }
  for (const std::size_t run : given_up) {
    const Job* const job = Find(run);
    if (!job) continue;
    step::Outcome outcome = job->cancels > 0 ? JobCancelled() : JobError("");
    outcome.message = silent_controller;
    if (job->stage != Job::Stage::to_submit)
      outcome.message += "; once it does, end what is left with: scancel " +
                         (job->note.id.empty() ? "--name=" + job->note.job : job->note.id);
    JobEnded(run, outcome);
  }
}

void SlurmLauncher::ScancelSoon(const std::vector<std::string>& options, const std::string& id) {
  if (to_scancel_.empty()) Soon([this] { Scancel(); });
  to_scancel_[options].push_back(id);
}

void SlurmLauncher::Scancel() {
  for (const auto& [options, ids] : std::exchange(to_scancel_, {}))
    for (std::size_t i = 0; i < ids.size(); i += ids_per_command) {
      std::vector<std::string> words = {"scancel"};
      words.insert(words.end(), options.begin(), options.end());
      const auto end = std::min(ids.size(), i + ids_per_command);
      words.insert(words.end(), ids.begin() + static_cast<std::ptrdiff_t>(i),
                   ids.begin() + static_cast<std::ptrdiff_t>(end));
      // Whether it was heard, the next poll shows.
      commands_.Run(words, "", [](const CommandResult&) {});
    }
}

}  // namespace vostrand
