#include "step/supervisor.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "step/outcome_file.h"

namespace vostrand::step {
namespace {

constexpr int cannot_start = 127;
constexpr int cannot_write = 126;
constexpr int time_was_over = 124;

double Now() {
  timespec time;
  clock_gettime(CLOCK_MONOTONIC, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

double Seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

// The signals that the supervisor takes one by one, blocked everywhere else.
sigset_t TakenSignals() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGCHLD}) sigaddset(&set, signal);
  return set;
}

// In place of each of these standard descriptors.
bool OpenAs(const char* path, int flags, std::initializer_list<int> descriptors) {
  const int file = open(path, flags, 0666);
  const bool opened = file >= 0 && std::all_of(descriptors.begin(), descriptors.end(),
                                               [=](int descriptor) { return dup2(file, descriptor) >= 0; });
  if (file > STDERR_FILENO) close(file);
  return opened;
}

// One program and whatever it starts.
class Group {
 public:
  explicit Group(const Command& command) : command_(command) {}

  int Run();

 private:
  [[noreturn]] void BecomeProgram(int failure_pipe);
  bool Start();
  void NoteGroup() const;
  void WaitForAll();
  bool ReapOne();
  void End(int signal);
  void TakeSignal(const timespec& patience);
  timespec Patience() const;
  void EndIfOverdue();
  void EndIfGivenUp();
  bool Write() const;
  int Finish();

  const Command& command_;
  pid_t program_ = -1;
  bool program_ended_ = false;
  int status_ = 0;
  double began_ = 0;
  double kill_at_ = 0;  // 0 while nothing has been asked to end.
  Outcome outcome_;
};

void Group::BecomeProgram(int failure_pipe) {
  setpgid(0, 0);
  // Should the supervisor itself be killed, at least the program goes with it.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  // Nothing blocked, whatever the supervisor or its own parent blocks.
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  const char* failed = command_.output_file.c_str();
  const char* what = "read";
  if (!OpenAs("/dev/null", O_RDONLY, {STDIN_FILENO})) {
    failed = "/dev/null";
  } else if (*failed && !OpenAs(failed, O_WRONLY | O_CREAT | O_APPEND, {STDOUT_FILENO, STDERR_FILENO})) {
    what = "write";
  } else {
    what = "start";
    failed = command_.arguments[0];
    execv(failed, command_.arguments);
  }
  dprintf(failure_pipe, "cannot %s %s: %s", what, failed, strerror(errno));
  _exit(cannot_start);
}

bool Group::Start() {
  // Tells a program that could not be started from one that ended with that very code.
  int failure_pipe[2];
  if (pipe2(failure_pipe, O_CLOEXEC) != 0) return false;
  began_ = Now();
  program_ = fork();
  if (program_ == 0) BecomeProgram(failure_pipe[1]);
  close(failure_pipe[1]);
  char why[512];
  const ssize_t length = program_ < 0 ? 0 : read(failure_pipe[0], why, sizeof why);
  close(failure_pipe[0]);
  if (length > 0) outcome_.message.assign(why, static_cast<std::size_t>(length));
  for (char& c : outcome_.message)  // A name in it may hold any.
    if (static_cast<unsigned char>(c) < ' ' || c == 127) c = '?';
  if (program_ < 0) outcome_.message = std::string("cannot start a process: ") + strerror(errno);
  if (!outcome_.message.empty()) std::fprintf(stderr, "vostrand-step: %s\n", outcome_.message.c_str());
  return outcome_.message.empty();
}

// For whoever has to end the group when the supervisor is killed.
void Group::NoteGroup() const {
  if (std::FILE* const file = std::fopen((command_.outcome_file + ".group").c_str(), "we")) {
    std::fprintf(file, "%d\n", program_);
    std::fclose(file);
  }
}

void Group::End(int signal) {
  if (!program_ended_) {
    kill(-program_, signal);
    return;
  }
  // Its group's number may be somebody else's by now. What still runs has been handed to this process, the
  // subreaper; what runs below that follows as soon as its parent has gone.
  char path[64];
  std::snprintf(path, sizeof path, "/proc/self/task/%d/children", getpid());
  if (std::FILE* const children = std::fopen(path, "re")) {
    for (int child = 0; std::fscanf(children, "%d", &child) == 1;) kill(child, signal);
    std::fclose(children);
  }
}

// False when there is no process left to wait for.
bool Group::ReapOne() {
  for (;;) {
    int status = 0;
    const pid_t ended = waitpid(-1, &status, WNOHANG);
    if (ended <= 0) return ended == 0;
    if (ended != program_) continue;
    program_ended_ = true;
    status_ = status;
    // Nobody waits for what a program leaves running, and it could still write into the run's files.
    if (kill_at_ == 0) kill_at_ = Now() + command_.grace_seconds;
    End(SIGTERM);
  }
}

void Group::TakeSignal(const timespec& patience) {
  const sigset_t taken = TakenSignals();
  const int signal = sigtimedwait(&taken, nullptr, &patience);
  if (signal <= 0 || signal == SIGCHLD) return;
  End(outcome_.cancelled ? SIGKILL : SIGTERM);
  outcome_.cancelled = outcome_.cancelled || !program_ended_;
  if (kill_at_ == 0) kill_at_ = Now() + command_.grace_seconds;
}

// How long nothing needs to be looked at unless a signal comes.
timespec Group::Patience() const {
  if (kill_at_ != 0) return {0, 20'000'000};
  double left = command_.lease_file.empty() ? 3600 : 1;
  if (command_.timeout_ms != 0)
    left = std::min(left, std::max(0.0, began_ + command_.timeout_ms / 1e3 - Now()));
  const auto seconds = static_cast<time_t>(left);
  return {seconds, static_cast<long>((left - static_cast<double>(seconds)) * 1e9)};
}

void Group::EndIfOverdue() {
  if (kill_at_ != 0 || command_.timeout_ms == 0 || Now() < began_ + command_.timeout_ms / 1e3) return;
  outcome_.timed_out = true;
  End(SIGTERM);
  kill_at_ = Now() + command_.grace_seconds;
}

// Where a signal cannot reach: on a machine that its cluster has lost. Opened, since a shared file system
// answers other questions from memory.
void Group::EndIfGivenUp() {
  if (kill_at_ != 0 || command_.lease_file.empty()) return;
  const int lease = open(command_.lease_file.c_str(), O_RDONLY | O_CLOEXEC);
  if (lease >= 0) close(lease);
  if (lease >= 0 || (errno != ENOENT && errno != ESTALE)) return;
  outcome_.cancelled = true;
  End(SIGTERM);
  kill_at_ = Now() + command_.grace_seconds;
}

void Group::WaitForAll() {
  while (ReapOne()) {
    EndIfOverdue();
    EndIfGivenUp();
    if (kill_at_ != 0 && Now() >= kill_at_) End(SIGKILL);
    TakeSignal(Patience());
  }
}

// A host on this machine would not outlive the machine; one that finds the outcome by a lease may be on
// another.
bool Group::Write() const {
  return WriteOutcome(command_.outcome_file, outcome_, !command_.lease_file.empty());
}

int Group::Finish() {
  rusage usage;
  getrusage(RUSAGE_CHILDREN, &usage);
  outcome_.elapsed_seconds = Now() - began_;
  outcome_.cpu_seconds = Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
  outcome_.peak_kib = usage.ru_maxrss;
  // Something else has waited for the program: how it ended is not known.
  if (!program_ended_) status_ = W_EXITCODE(cannot_write, 0);
  if (WIFSIGNALED(status_)) outcome_.signal = WTERMSIG(status_);
  outcome_.exit_code = outcome_.signal != 0 ? 128 + outcome_.signal : WEXITSTATUS(status_);
  if (outcome_.timed_out) {
    outcome_.exit_code = time_was_over;
    outcome_.message = "ended since its time was over";
  }
  return Write() ? outcome_.exit_code : cannot_write;
}

int Group::Run() {
  if (command_.held_file >= 0) fcntl(command_.held_file, F_SETFD, FD_CLOEXEC);
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (command_.parent != 0 && getppid() != command_.parent) return cannot_start;  // It died in this moment.
  // Whatever was inherited: an ignored SIGCHLD would hide the program's end, and the program starts with all
  // of these.
  for (const int signal : {SIGCHLD, SIGTERM, SIGINT, SIGHUP, SIGPIPE, SIGQUIT, SIGXFSZ})
    std::signal(signal, SIG_DFL);
  const sigset_t taken = TakenSignals();
  sigprocmask(SIG_BLOCK, &taken, nullptr);
  if (!Start()) {
    outcome_.exit_code = cannot_start;
    return Write() ? cannot_start : cannot_write;
  }
  NoteGroup();
  WaitForAll();
  return Finish();
}

}  // namespace

int Supervise(const Command& command) {
  return Group(command).Run();
}

}  // namespace vostrand::step
