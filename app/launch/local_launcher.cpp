#include "launch/local_launcher.h"

#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QTimer>
#include <csignal>
#include <cstring>
#include <fstream>
#include <utility>
#include <vector>

namespace vostrand {
namespace {

constexpr int cannot_start = 127;
constexpr int cannot_write = 126;  // The supervisor's exit code then.

// A process group of its own: a terminal's Ctrl-C is the host's to hear, who then tells the supervisors.
class SpawnSettings {
 public:
  SpawnSettings(const std::string& work_dir, int held_file) {
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, work_dir.c_str());
    // Onto itself: that is how it is passed on.
    if (held_file >= 0) posix_spawn_file_actions_adddup2(&actions, held_file, held_file);
  }
  ~SpawnSettings() {
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;

  posix_spawnattr_t attributes;
  posix_spawn_file_actions_t actions;
};

// In memory where that can be had: three small files a command cost a disk more than the supervisor costs.
QString ScratchTemplate() {
  const QString folder = access("/dev/shm", W_OK | X_OK) == 0 ? QStringLiteral("/dev/shm") : QDir::tempPath();
  return folder + "/vostrand-XXXXXX";
}

// A supervisor that wrote no outcome was killed itself; its program goes with it, and here the program's
// group.
step::Outcome OutcomeOf(int wait_status, const std::string& file) {
  step::Outcome outcome;
  if (step::ReadOutcome(file, outcome)) return outcome;
  pid_t group = 0;
  if (std::ifstream(file + ".group") >> group && group > 0) kill(-group, SIGKILL);
  outcome.signal = WIFSIGNALED(wait_status) ? WTERMSIG(wait_status) : 0;
  outcome.exit_code = outcome.signal != 0 ? 128 + outcome.signal : WEXITSTATUS(wait_status);
  if (outcome.exit_code == 0) outcome.exit_code = cannot_start;
  outcome.message = outcome.exit_code == cannot_write ? "its supervisor cannot write " + file
                                                      : "its supervisor ended without an outcome";
  return outcome;
}

}  // namespace

LocalLauncher::LocalLauncher(std::string supervisor, std::string work_dir, ToolFinder tools,
                             double timeout_seconds)
    : supervisor_(std::move(supervisor)),
      work_dir_(std::move(work_dir)),
      tools_(std::move(tools)),
      timeout_seconds_(timeout_seconds),
      outcomes_(ScratchTemplate()) {}

LocalLauncher::~LocalLauncher() {
  for (const auto& [id, running] : running_) close(running.ended_file);
}

std::string LocalLauncher::Unusable() const {
  if (!outcomes_.isValid()) return "cannot make a scratch folder: " + outcomes_.errorString().toStdString();
  if (access(supervisor_.c_str(), X_OK) != 0) return "there is no program " + supervisor_;
  return {};
}

void LocalLauncher::Fail(std::string message, Done done) {
  step::Outcome outcome;
  outcome.exit_code = cannot_start;
  outcome.message = std::move(message);
  QTimer::singleShot(0, &queue_, [outcome, done = std::move(done)] { done(outcome); });
}

void LocalLauncher::Start(const StepRequest& request, Done done) {
  const std::string& name = request.words.front();
  const std::string program = tools_.Find(name);
  if (program.empty()) {
    Fail("there is no program " + name + " in " + tools_.Places(), std::move(done));
    return;
  }
  const int id = next_id_++;
  Running started;
  started.run = request.run;
  started.outcome_file = outcomes_.filePath(QString::number(id)).toStdString();
  std::vector<std::string> words = {supervisor_, "--outcome", started.outcome_file, "--output",
                                    request.output_file};
  const auto add_number = [&words](const char* option, int number) {
    words.insert(words.end(), {option, std::to_string(number)});
  };
  add_number("--parent", getpid());
  if (timeout_seconds_ > 0) add_number("--timeout-ms", static_cast<int>(timeout_seconds_ * 1000));
  if (held_file_ >= 0) add_number("--hold", held_file_);
  words.insert(words.end(), {"--", program});
  words.insert(words.end(), request.words.begin() + 1, request.words.end());
  std::vector<char*> argv;
  argv.reserve(words.size() + 1);
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);

  const SpawnSettings settings(work_dir_, held_file_);
  const int error = posix_spawn(&started.supervisor, supervisor_.c_str(), &settings.actions,
                                &settings.attributes, argv.data(), environ);
  if (error != 0) {
    Fail("cannot start " + supervisor_ + ": " + std::strerror(error), std::move(done));
    return;
  }
  started.ended_file = static_cast<int>(syscall(SYS_pidfd_open, started.supervisor, 0));
  if (started.ended_file < 0) {
    const std::string why = std::strerror(errno);
    kill(started.supervisor, SIGKILL);
    waitpid(started.supervisor, nullptr, 0);
    Fail("cannot watch " + name + ": " + why, std::move(done));
    return;
  }
  started.done = std::move(done);
  started.ended = std::make_unique<QSocketNotifier>(started.ended_file, QSocketNotifier::Read);
  QObject::connect(started.ended.get(), &QSocketNotifier::activated, &queue_, [this, id] { Ended(id); });
  running_[id] = std::move(started);
}

void LocalLauncher::Ended(int id) {
  Running ended = std::move(running_.extract(id).mapped());
  ended.ended->setEnabled(false);
  ended.ended.release()->deleteLater();  // It is the sender of what is being handled.
  int wait_status = 0;
  while (waitpid(ended.supervisor, &wait_status, 0) < 0 && errno == EINTR) {
  }
  close(ended.ended_file);
  ended.done(OutcomeOf(wait_status, ended.outcome_file));
}

void LocalLauncher::Cancel(std::size_t run) {
  // The supervisor takes a second SIGTERM as the end of its patience.
  for (const auto& [id, running] : running_)
    if (running.run == run) kill(running.supervisor, SIGTERM);
}

}  // namespace vostrand
