#include "sweep.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QSysInfo>
#include <QThread>
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>

#include "execute/executor.h"
#include "launch/free_memory.h"
#include "launch/local_launcher.h"
#include "launch/slurm/adoption.h"
#include "launch/slurm/slurm_launcher.h"
#include "launch/system_clock.h"
#include "observe/fan_out.h"
#include "observe/harmless.h"
#include "observe/progress.h"
#include "observe/run_records.h"
#include "plan/command_words.h"
#include "plan/file_guard.h"
#include "plan/library_run.h"
#include "plan/planned_runs.h"
#include "plan/record_names.h"
#include "plan/tool_files.h"
#include "records/event_log.h"
#include "records/write_records.h"
#include "result/file_hasher.h"
#include "result/promotion_check.h"
#include "result/report_runs.h"
#include "result/retain.h"
#include "result/scores.h"
#include "result/summary.h"
#include "resume/left_files.h"
#include "resume/resumption.h"
#include "resume/run_identity.h"
#include "resume/run_inputs.h"
#include "signals.h"

namespace vostrand {
namespace {

constexpr int cannot_be_run = 2;
constexpr int files_changed = 125;  // Status of a run whose files are not the ones that it left.

// One sweep, from the accepted command line to the exit code: the steps of Run, in this order, over the
// members.
class Sweep {
 public:
  Sweep(const HostOptions& options, const std::vector<std::string>& tool_arguments,
        const std::string& own_folder);

  int Run();

 private:
  std::string WhyRefused();
  std::string TakeUpJobs();
  void LookAtInputs();
  void WarnOfUnread() const;
  void Execute();
  void CheckPromotion();
  void Finish();

  EventHeader Header() const;
  ExecutorHooks Hooks(const Judge& judge);
  bool HaveInputsChanged();
  void FailChanged(const LeftFiles& left);
  void Interrupted(int signal);
  void Warn(const std::string& text) const;

  const std::vector<std::string>& tool_arguments_;
  std::string work_dir_;
  SystemClock clock_;
  LibraryRun library_;
  ToolFinder tools_;
  LocalLauncher launcher_;
  Resumption resumption_;
  Progress* progress_ = nullptr;  // While runs are executed.
  std::optional<SlurmLauncher> slurm_;
  std::optional<EventLog> event_log_;
  std::vector<PlannedRun> plan_;
  SweepResult result_;
  std::string changed_input_;
  std::int64_t old_ns_ = 0;  // See Promotion.
  double began_ = 0;
  std::function<void()> end_what_goes_on_;  // Called at an interrupt.
};

SlurmSettings SettingsFor(const HostOptions& options, const std::string& own_folder,
                          const std::string& work_dir, const std::string& state_folder) {
  SlurmSettings settings;
  settings.supervisor = own_folder + "/vostrand-step";
  settings.work_dir = std::filesystem::absolute(work_dir).lexically_normal();
  settings.state_folder = std::filesystem::absolute(state_folder).lexically_normal();
  settings.sbatch_arguments = SplitCommand(options.slurm_args);
  settings.timeout_seconds = options.timeout_seconds;
  return settings;
}

Sweep::Sweep(const HostOptions& options, const std::vector<std::string>& tool_arguments,
             const std::string& own_folder)
    : tool_arguments_(tool_arguments),
      work_dir_(options.work_dir.empty() ? "." : options.work_dir),
      library_(options.work_dir, options.verbose),
      tools_(options.toolchain, work_dir_, own_folder),
      launcher_(own_folder + "/vostrand-step", work_dir_, tools_, options.timeout_seconds),
      resumption_(work_dir_, tool_arguments, FilesOf(tool_arguments).output) {
  result_.program_version = VOSTRAND_VERSION;
  result_.host_name = QSysInfo::machineHostName().toStdString();
  result_.work_dir = std::filesystem::canonical(work_dir_);
  result_.tool_arguments = tool_arguments;
  result_.options = options;
  if (options.launcher == "slurm") {
    slurm_.emplace(SettingsFor(options, own_folder, work_dir_, resumption_.Folder()), tools_, clock_,
                   [this](const std::string& line) { Warn(line); });
  } else if (result_.options.jobs == 0) {
    result_.options.jobs = QThread::idealThreadCount();
  }
}

void Sweep::Warn(const std::string& text) const {
  const std::string line = "vostrand: " + Harmless(text) + "\n";
  if (progress_)
    progress_->Print(line);
  else
    std::cerr << line;
}

std::string Sweep::WhyRefused() {
  std::string why = WhyRunNamesAreRefused(FilesOf(tool_arguments_), work_dir_);
  if (why.empty()) why = WhyFilesAreRefused(FilesOf(tool_arguments_), tool_arguments_, work_dir_);
  if (why.empty()) why = WhyRecordsAreRefused(result_.options, FilesOf(tool_arguments_));
  if (why.empty()) why = launcher_.Unusable();
  if (why.empty() && slurm_) why = slurm_->Unusable();
  if (!why.empty()) return why;
  const std::string no_state = resumption_.Open();
  if (resumption_.IsTaken() || (slurm_ && !no_state.empty())) return no_state;
  if (no_state.empty()) why = TakeUpJobs();
  if (!why.empty()) return why;
  if (result_.options.resume) resumption_.ReadEarlier();
  launcher_.Hold(resumption_.LockFile());
  if (!no_state.empty()) Warn(no_state + "; the sweep cannot be resumed");
  if (result_.options.resume && resumption_.EarlierCount() == 0)
    Warn("no run of an earlier sweep with these arguments has finished; all are run");
  if (result_.options.events_file.empty()) return {};
  event_log_.emplace(result_.options.events_file);
  return event_log_->Message();
}

// What a killed host has left on a cluster, whatever this sweep runs on: planning would empty its folder.
std::string Sweep::TakeUpJobs() {
  for (const std::string& folder : resumption_.FoldersOfOutput()) {
    const std::string why = Adoption(folder, [this](const std::string& line) { Warn(line); }).WhyRefused();
    if (!why.empty()) return why;
  }
  Adoption adoption(resumption_.Folder(), [this](const std::string& line) { Warn(line); });
  const std::string why = result_.options.resume ? adoption.Wait() : adoption.WhyRefused();
  result_.interrupted_by = adoption.InterruptedBy();
  if (!why.empty()) return why;
  if (result_.options.resume)
    for (const AdoptedRun& adopted : adoption.Finished()) resumption_.Adopt(adopted.run, adopted.kept);
  adoption.Clear();
  return result_.interrupted_by == 0 ? "" : "interrupted; what has finished can be resumed";
}

void Sweep::Interrupted(int signal) {
  if (result_.interrupted_by == 0)
    Warn(progress_ ? "ending what runs; once more ends it at once" : "interrupted; the report is still made");
  result_.interrupted_by = signal;
  if (end_what_goes_on_) end_what_goes_on_();
}

// What the runs are made from, and which of them an earlier sweep has made from the very same.
void Sweep::LookAtInputs() {
  FileHasher hasher;
  end_what_goes_on_ = [&] { hasher.Cancel(); };
  std::vector<FileRecord> files = InputFiles(library_, tool_arguments_);
  const auto input_count = static_cast<std::ptrdiff_t>(files.size());
  const std::vector<FileRecord> tools = Tools(plan_, tools_);
  files.insert(files.end(), tools.begin(), tools.end());
  hasher.Start(files, [&](const std::vector<FileRecord>& hashed) {
    result_.inputs.assign(hashed.begin(), hashed.begin() + input_count);
    result_.tools.assign(hashed.begin() + input_count, hashed.end());
    QCoreApplication::quit();
  });
  QCoreApplication::exec();
  end_what_goes_on_ = nullptr;

  std::vector<std::string> identities;
  for (const PlannedRun& run : plan_)
    identities.push_back(RunIdentity(run, work_dir_, result_.inputs, result_.tools));
  if (slurm_) slurm_->Prepare(plan_, identities);
  if (result_.interrupted_by != 0) return;
  WarnOfUnread();
  const std::size_t changed = resumption_.Restore(plan_, std::move(identities));
  if (changed > 0)
    Warn(std::to_string(changed) +
         " finished runs are run again: what they are made from has changed, or what was kept of them");
}

// Their records lack something then.
void Sweep::WarnOfUnread() const {
  for (const std::vector<FileRecord>* const files : {&result_.inputs, &result_.tools})
    for (const FileRecord& file : *files)
      if (file.size < 0 && access(file.path.c_str(), F_OK) == 0)
        Warn("cannot read " + file.path + ": the records are without its size and hash");
  for (const PlannedStep& step : plan_.front().steps)
    if (!step.IsCallback() && std::none_of(result_.tools.begin(), result_.tools.end(),
                                           [&](const auto& tool) { return tool.role == step.words.front(); }))
      Warn("cannot find " + step.words.front() + ": the records are without it");
}

EventHeader Sweep::Header() const {
  EventHeader header;
  header.started = result_.started;
  header.jobs = result_.options.jobs;
  for (const PlannedRun& run : plan_) {
    header.runs.push_back(run.name);
    header.steps = std::max(header.steps, run.steps.size());
  }
  return header;
}

ExecutorHooks Sweep::Hooks(const Judge& judge) {
  ExecutorHooks hooks;
  hooks.call_back = [this](std::size_t run, std::size_t step) { library_.CallBack(run, step); };
  hooks.stop_requested = [this] { return library_.StopRequested(); };
  hooks.before_run = RemoveLeftovers;
  hooks.judge = [&judge](std::size_t run) { return judge(run); };
  hooks.free_memory_kib = FreeMemoryKib;
  hooks.finished = [] { QCoreApplication::quit(); };
  return hooks;
}

Limits LimitsOf(const HostOptions& options) {
  Limits limits;
  limits.jobs = options.jobs;
  limits.retries = options.retries;
  limits.requeues = options.requeues;
  limits.memory_kib = static_cast<long>((options.memory_bytes + 1023) / 1024);
  limits.until = options.until;
  limits.fail_fast = options.fail_fast;
  limits.stop_now = options.stop_now;
  limits.grace_seconds = options.grace_seconds;
  return limits;
}

// Executes the plan in the event loop; every event goes to all that show or keep something.
void Sweep::Execute() {
  RunRecords records(resumption_.Records(plan_));
  const auto keep = [&](std::size_t run) {
    KeptRun kept = resumption_.Keep(run, plan_[run], records.Records()[run]);
    if (!plan_[run].restored && HaveInputsChanged())
      kept.identity.clear();  // Nobody knows what it is made from.
    return kept;
  };
  FanOut observers;
  observers.Add(records);
  std::optional<Journal> journal;
  // Who interrupted the look at the inputs keeps what the earlier sweep has finished.
  const bool keeps = !resumption_.JournalFile().empty() && result_.interrupted_by == 0;
  if (keeps) journal.emplace(resumption_.JournalFile(), Header(), keep);
  if (journal) observers.Add(*journal);
  if (event_log_) event_log_->Begin(Header());
  if (event_log_) observers.Add(*event_log_);
  LeftFiles left(plan_);
  observers.Add(left);
  Progress progress(plan_, ProgressOptionsOf(result_.options));
  observers.Add(progress);
  progress_ = &progress;
  library_.Logger().PrintThrough([&](const std::string& text) { progress.Print(text); });

  const Judge judge(library_);
  Launcher& launcher = slurm_ ? static_cast<Launcher&>(*slurm_) : launcher_;
  Executor executor(plan_, LimitsOf(result_.options), launcher, clock_, observers, Hooks(judge));
  end_what_goes_on_ = [&] { executor.Cancel(); };
  if (result_.interrupted_by != 0) executor.Cancel();
  QMetaObject::invokeMethod(
      qApp, [&] { executor.Start(); }, Qt::QueuedConnection);
  QCoreApplication::exec();
  end_what_goes_on_ = nullptr;
  progress_ = nullptr;
  library_.Logger().PrintThrough(nullptr);

  result_.stopped_because = executor.StoppedBecause();
  for (std::size_t i = 0; i < plan_.size(); ++i) {
    library_.Seeds()[i].status = executor.Statuses()[i];
    result_.runs[i].record = records.Records()[i];
  }
  FailChanged(left);
  if (const std::string why = journal ? journal->Error() : ""; !why.empty()) Warn(why);
  if (event_log_ && event_log_->Failed()) result_.missing.push_back(event_log_->Message());
}

bool Sweep::HaveInputsChanged() {
  std::string changed = ChangedFile(result_.inputs);
  if (changed.empty()) changed = ChangedFile(result_.tools);
  if (!changed.empty() && changed_input_.empty())
    Warn(changed + " has changed while runs were made from it; those cannot be resumed");
  if (!changed.empty()) changed_input_ = changed;
  return !changed.empty();
}

// Something that nobody could end, on a machine that was lost, may still have written.
void Sweep::FailChanged(const LeftFiles& left) {
  for (const std::size_t run : left.Changed()) {
    RunRecord& record = result_.runs[run].record;
    library_.Seeds()[run].status = record.status = files_changed;
    record.message = "its files changed after it had ended";
    Warn("run " + record.name + ": " + record.message);
  }
}

// The library does not say whether its copies succeeded.
void Sweep::CheckPromotion() {
  if (result_.order.empty()) return;
  const Promotion promotion = PromotionOf(library_, result_, old_ns_);
  PromotionReport report;
  FileHasher hasher;
  end_what_goes_on_ = [&] { hasher.Cancel(); };
  vostrand::CheckPromotion(hasher, promotion, [&](const PromotionReport& done) {
    report = done;
    QCoreApplication::quit();
  });
  QCoreApplication::exec();
  end_what_goes_on_ = nullptr;
  result_.promoted = report.files;
  result_.missing.insert(result_.missing.end(), report.missing.begin(), report.missing.end());
  // Nothing is given up while it is not certain that the best run is the best, and its files are safe.
  if (!result_.options.retain_best || result_.interrupted_by != 0 || !result_.missing.empty()) return;
  std::vector<std::string> names;
  for (const PlannedRun& run : plan_) names.push_back(run.name);
  for (const std::string& file : RetainBest(report, promotion, names)) Warn("cannot remove " + file);
  // Their links would keep the space taken; but a sweep that can be resumed needs them.
  if (result_.Finished() == plan_.size()) resumption_.DropOthers(plan_, promotion.best);
}

void Sweep::Finish() {
  result_.elapsed_seconds = clock_.Now() - began_;
  WriteRecords(result_);
  std::cout << Harmless(SummaryText(result_));
}

int Sweep::Run() {
  const std::string refusal = WhyRefused();
  if (!refusal.empty()) {
    Warn(refusal);
    return result_.interrupted_by == 0 ? cannot_be_run : 128 + result_.interrupted_by;
  }
  const QDateTime now = QDateTime::currentDateTimeUtc();
  result_.started = now.toString(Qt::ISODate).toStdString();
  began_ = clock_.Now();
  const int planned = library_.Plan(tool_arguments_);
  if (planned != 0 || library_.Seeds().empty()) {
    library_.Logger().ShowHeldBack(planned == 0 ? std::cout
                                                : std::cerr);  // Help that was asked for, or why not.
    return library_.Exit(planned);
  }
  const std::string another = WhyPlanIsRefused(FilesOf(tool_arguments_), work_dir_, library_.Info().multiRun,
                                               library_.Seeds()[0].name);
  if (!another.empty()) {
    Warn(another);
    return library_.Exit(cannot_be_run);
  }
  plan_ = PlannedRuns(library_);
  result_.runs.resize(plan_.size());
  if (struct stat old; stat(library_.OutputPath().c_str(), &old) == 0)
    old_ns_ = old.st_mtim.tv_sec * 1'000'000'000LL + old.st_mtim.tv_nsec;
  if (result_.options.jobs == 0) result_.options.jobs = std::max(1, static_cast<int>(plan_.size()));
  {
    // An interrupt ends the runs, never the report.
    const BlockedInterrupts blocked;
    const Signals interrupts([this](int signal) { Interrupted(signal); });
    LookAtInputs();
    Execute();
    for (std::size_t i = 0; i < plan_.size(); ++i)
      TakeInLinkedFolder(plan_[i].leftover_folder, library_.Seeds()[i].status == 0);
    ReportRuns(library_, plan_, result_);
    CheckPromotion();
  }
  Finish();
  return library_.Exit(result_.exit_code);
}

}  // namespace

int RunSweep(const HostOptions& options, const std::vector<std::string>& tool_arguments,
             const std::string& own_folder) {
  return Sweep(options, tool_arguments, own_folder).Run();
}

}  // namespace vostrand
