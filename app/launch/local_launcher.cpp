#include "launch/local_launcher.h"

#include <spawn.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QTimer>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <iterator>
#include <utility>
#include <vector>

#include "step/packets.h"

namespace vostrand {
namespace {

constexpr int cannot_start = 127;

// A process group of its own: a terminal's Ctrl-C is the host's to hear, who then tells the supervisors.
class SpawnSettings {
 public:
  explicit SpawnSettings(const std::string& work_dir) {
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, work_dir.c_str());
  }
  ~SpawnSettings() {
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;

  // Onto itself: that is how an open file is passed on.
  void Pass(int file) { posix_spawn_file_actions_adddup2(&actions, file, file); }

  posix_spawnattr_t attributes;
  posix_spawn_file_actions_t actions;
};

int WaitFor(pid_t process) {
  int wait_status = 0;
  while (waitpid(process, &wait_status, 0) < 0 && errno == EINTR) {
  }
  return wait_status;
}

std::vector<pid_t> Children() {
  std::ifstream file("/proc/self/task/" + std::to_string(getpid()) + "/children");
  return {std::istream_iterator<pid_t>(file), {}};
}

// Of a command whose supervisor was killed.
step::Outcome WithoutOutcome(int wait_status) {
  step::Outcome outcome;
  outcome.signal = WIFSIGNALED(wait_status) ? WTERMSIG(wait_status) : 0;
  outcome.exit_code = outcome.signal != 0 ? 128 + outcome.signal : WEXITSTATUS(wait_status);
  if (outcome.exit_code == 0) outcome.exit_code = cannot_start;
  outcome.message = "its supervisor ended without an outcome";
  return outcome;
}

}  // namespace

LocalLauncher::LocalLauncher(std::string supervisor, std::string work_dir, ToolFinder tools,
                             double timeout_seconds)
    : supervisor_(std::move(supervisor)),
      work_dir_(std::move(work_dir)),
      tools_(std::move(tools)),
      timeout_seconds_(timeout_seconds) {
  // What a killed supervisor leaves behind becomes this process's, to be ended.
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  has_other_children_ = !Children().empty();
}

LocalLauncher::~LocalLauncher() {
  for (const auto& [id, supervisor] : supervisors_) close(supervisor.socket);
  for (const auto& [id, supervisor] : supervisors_)
    if (!supervisor.done) {
      kill(supervisor.process, SIGKILL);  // It has nothing to do, and may have been stopped.
      WaitFor(supervisor.process);
    }
}

std::string LocalLauncher::Unusable() const {
  if (access(supervisor_.c_str(), X_OK) != 0) return "there is no program " + supervisor_;
  return {};
}

void LocalLauncher::Fail(std::string message, Done done) {
  step::Outcome outcome;
  outcome.exit_code = cannot_start;
  outcome.message = std::move(message);
  QTimer::singleShot(0, &queue_, [outcome, done = std::move(done)] { done(outcome); });
}

int LocalLauncher::NewSupervisor(std::string& why) {
  int sockets[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets) != 0) {
    why = std::strerror(errno);
    return -1;
  }
  SpawnSettings settings(work_dir_);
  std::vector<std::string> words = {supervisor_, "--serve", std::to_string(sockets[1])};
  settings.Pass(sockets[1]);
  if (held_file_ >= 0) {
    words.insert(words.end(), {"--hold", std::to_string(held_file_)});
    settings.Pass(held_file_);
  }
  std::vector<char*> argv;
  argv.reserve(words.size() + 1);
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  Supervisor started;
  const int error = posix_spawn(&started.process, supervisor_.c_str(), &settings.actions,
                                &settings.attributes, argv.data(), environ);
  close(sockets[1]);
  if (error != 0) {
    close(sockets[0]);
    why = std::strerror(error);
    return -1;
  }
  const int id = next_id_++;
  started.socket = sockets[0];
  started.heard = std::make_unique<QSocketNotifier>(sockets[0], QSocketNotifier::Read);
  QObject::connect(started.heard.get(), &QSocketNotifier::activated, &queue_, [this, id] { Heard(id); });
  supervisors_[id] = std::move(started);
  return id;
}

int LocalLauncher::GiveTo(const std::string& packet, std::string& why) {
  for (auto& [id, supervisor] : supervisors_)
    if (!supervisor.done && step::SendPacket(supervisor.socket, packet)) {
      kill(supervisor.process, SIGCONT);  // Somebody may have stopped it.
      return id;
    }
  const int id = NewSupervisor(why);
  if (id < 0 || step::SendPacket(supervisors_[id].socket, packet)) return id;
  why = std::strerror(errno);
  return -1;
}

void LocalLauncher::Start(const StepRequest& request, Done done) {
  const std::string& name = request.words.front();
  const std::string program = tools_.Find(name);
  if (program.empty()) {
    Fail("there is no program " + name + " in " + tools_.Places(), std::move(done));
    return;
  }
  step::RunPacket wanted;
  wanted.timeout_ms = static_cast<int>(timeout_seconds_ * 1000);
  wanted.output_file = request.output_file;
  wanted.words = request.words;
  wanted.words.front() = program;
  std::string why;
  const int id = GiveTo(AsText(wanted), why);
  if (id < 0) {
    Fail("cannot start " + supervisor_ + ": " + why, std::move(done));
    return;
  }
  supervisors_[id].run = request.run;
  supervisors_[id].done = std::move(done);
}

void LocalLauncher::Heard(int id) {
  Supervisor& supervisor = supervisors_.at(id);
  const std::string packet = step::ReceivePacket(supervisor.socket);
  step::Outcome outcome;
  if (packet.empty()) return Remove(id);
  if (const pid_t group = step::GroupOf(packet); group > 0) supervisor.group = group;
  if (!step::OutcomeOf(packet, outcome) || !supervisor.done) return;
  supervisor.group = 0;
  const Done done = std::exchange(supervisor.done, {});
  done(outcome);
}

// What a supervisor has left that was killed; what those have started in turn comes here when they end.
// Where others had started processes in this one's name, nobody can tell what is theirs.
void LocalLauncher::EndOrphans() const {
  if (has_other_children_) return;
  const auto is_known = [this](pid_t child) {
    return std::any_of(supervisors_.begin(), supervisors_.end(),
                       [=](const auto& known) { return known.second.process == child; });
  };
  for (bool more = true; std::exchange(more, false);)
    for (const pid_t child : Children())
      if (!is_known(child)) {
        kill(child, SIGKILL);
        WaitFor(child);
        more = true;
      }
}

// It was killed. Its program goes with it, and here the program's group.
void LocalLauncher::Remove(int id) {
  Supervisor gone = std::move(supervisors_.extract(id).mapped());
  gone.heard->setEnabled(false);
  gone.heard.release()->deleteLater();  // It is the sender of what is being handled.
  close(gone.socket);
  if (gone.group > 0) kill(-gone.group, SIGKILL);
  const int wait_status = WaitFor(gone.process);
  EndOrphans();
  if (gone.done) gone.done(WithoutOutcome(wait_status));
}

void LocalLauncher::Cancel(std::size_t run) {
  // A second one is the end of the supervisor's patience.
  for (const auto& [id, supervisor] : supervisors_)
    if (supervisor.done && supervisor.run == run) {
      kill(supervisor.process, SIGCONT);
      step::SendPacket(supervisor.socket, step::CancelPacket());
    }
}

}  // namespace vostrand
