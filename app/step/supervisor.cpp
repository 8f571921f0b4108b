#include "step/supervisor.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <initializer_list>

#include "step/packets.h"

namespace vostrand::step {
namespace {

constexpr int cannot_start = 127;
constexpr int unknown_end = 126;
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

// The next one, 0 when there is none.
int TakeSignal(int signals) {
  signalfd_siginfo signal;
  return read(signals, &signal, sizeof signal) == sizeof signal ? static_cast<int>(signal.ssi_signo) : 0;
}

// In place of each of these standard descriptors.
bool OpenAs(const char* path, int flags, std::initializer_list<int> descriptors) {
  const int file = open(path, flags | O_NONBLOCK, 0666);  // Where a pipe lies, nobody may read.
  if (file >= 0) fcntl(file, F_SETFL, flags & O_APPEND);
  const bool opened = file >= 0 && std::all_of(descriptors.begin(), descriptors.end(),
                                               [=](int descriptor) { return dup2(file, descriptor) >= 0; });
  if (file > STDERR_FILENO) close(file);
  return opened;
}

// One program and whatever it starts.
class Group {
 public:
  Group(const Command& command, int host, int signals) : command_(command), host_(host), signals_(signals) {}

  Outcome Run();

 private:
  [[noreturn]] void BecomeProgram(int failure_pipe);
  bool Start();
  void WaitForAll();
  bool ReapOne();
  void End(int signal);
  void ToldToEnd(bool& told);
  void Listen();
  int PatienceMs() const;
  void EndIfOverdue();
  void EndIfGivenUp();
  void Conclude();

  const Command& command_;
  int host_;
  const int signals_;
  const pid_t supervisor_ = getpid();
  pid_t program_ = -1;
  bool program_ended_ = false;
  bool by_signal_ = false;  // Told to end. One that is told both ways at once still gets its grace.
  bool by_host_ = false;
  int status_ = 0;
  double began_ = 0;
  double kill_at_ = 0;  // 0 while nothing has been asked to end.
  Outcome outcome_;
};

void Group::BecomeProgram(int failure_pipe) {
  setpgid(0, 0);
  // Should the supervisor itself be killed, at least the program goes with it.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != supervisor_) _exit(cannot_start);  // It went before.
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
    // Said by the program's own process: the supervisor might be killed before it could.
    if (host_ >= 0) SendPacket(host_, StartedPacket(getpid()));
    execv(failed, command_.arguments);
  }
  dprintf(failure_pipe, "cannot %s %s: %s", what, failed, strerror(errno));
  _exit(cannot_start);
}

bool Group::Start() {
  // Tells a program that could not be started from one that ended with that very code.
  int failure_pipe[2];
  if (pipe2(failure_pipe, O_CLOEXEC) == 0) {
    program_ = fork();
    if (program_ == 0) BecomeProgram(failure_pipe[1]);
    if (program_ < 0) outcome_.message = std::string("cannot start a process: ") + strerror(errno);
    close(failure_pipe[1]);
    char why[512];
    const ssize_t length = program_ < 0 ? 0 : read(failure_pipe[0], why, sizeof why);
    close(failure_pipe[0]);
    if (length > 0) outcome_.message.assign(why, static_cast<std::size_t>(length));
    for (char& c : outcome_.message)  // A name in it may hold any.
      if (static_cast<unsigned char>(c) < ' ' || c == 127) c = '?';
    // Ended already, and nobody's to wait for.
    if (length > 0) waitpid(program_, nullptr, 0);
  } else {
    outcome_.message = std::string("cannot start a process: ") + strerror(errno);
  }
  return outcome_.message.empty();
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
    rusage usage;
    const pid_t ended = wait4(-1, &status, WNOHANG, &usage);
    if (ended <= 0) return ended == 0;
    outcome_.cpu_seconds += Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
    outcome_.peak_kib = std::max(outcome_.peak_kib, usage.ru_maxrss);
    if (ended != program_) continue;
    program_ended_ = true;
    status_ = status;
    // Nobody waits for what a program leaves running, and it could still write into the run's files.
    if (kill_at_ == 0) kill_at_ = Now() + command_.grace_seconds;
    End(SIGTERM);
  }
}

void Group::ToldToEnd(bool& told) {
  End(told ? SIGKILL : SIGTERM);
  told = true;
  outcome_.cancelled = outcome_.cancelled || !program_ended_;
  if (kill_at_ == 0) kill_at_ = Now() + command_.grace_seconds;
}

// Waits for a signal or a word of the host, as long as nothing else needs to be looked at.
void Group::Listen() {
  pollfd files[] = {{signals_, POLLIN, 0}, {host_, POLLIN, 0}};
  if (poll(files, 2, PatienceMs()) <= 0) return;
  if (files[0].revents != 0) {
    const int signal = TakeSignal(signals_);
    if (signal > 0 && signal != SIGCHLD) ToldToEnd(by_signal_);
  }
  if (files[1].revents != 0) {
    if (ReceivePacket(host_).empty()) host_ = -1;  // It has gone.
    ToldToEnd(by_host_);
  }
}

int Group::PatienceMs() const {
  if (kill_at_ != 0) return 20;
  double left = command_.lease_file.empty() ? 3600 : 1;
  if (command_.timeout_ms != 0) left = std::min(left, began_ + command_.timeout_ms / 1e3 - Now());
  return static_cast<int>(std::max(0.0, left) * 1000) + 1;
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
    Listen();
  }
}

void Group::Conclude() {
  outcome_.elapsed_seconds = Now() - began_;
  // Something else has waited for the program: how it ended is not known.
  if (!program_ended_) status_ = W_EXITCODE(unknown_end, 0);
  if (WIFSIGNALED(status_)) outcome_.signal = WTERMSIG(status_);
  outcome_.exit_code = outcome_.signal != 0 ? 128 + outcome_.signal : WEXITSTATUS(status_);
  if (outcome_.timed_out) {
    outcome_.exit_code = time_was_over;
    outcome_.message = "ended since its time was over";
  }
}

Outcome Group::Run() {
  began_ = Now();
  if (Start()) {
    WaitForAll();
    Conclude();
  } else {
    outcome_.exit_code = cannot_start;
  }
  return outcome_;
}

}  // namespace

Supervisor::Supervisor(int host) : host_(host) {
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  if (host_ < 0) prctl(PR_SET_PDEATHSIG, SIGTERM);  // A host's going is heard at its socket.
  // Whatever was inherited: an ignored SIGCHLD would hide the program's end, and the program starts with all
  // of these.
  for (const int signal : {SIGCHLD, SIGTERM, SIGINT, SIGHUP, SIGPIPE, SIGQUIT, SIGXFSZ})
    std::signal(signal, SIG_DFL);
  const sigset_t taken = TakenSignals();
  sigprocmask(SIG_BLOCK, &taken, nullptr);
  signals_ = signalfd(-1, &taken, SFD_CLOEXEC | SFD_NONBLOCK);
}

Supervisor::~Supervisor() {
  if (signals_ >= 0) close(signals_);
}

Outcome Supervisor::Run(const Command& command) {
  if (signals_ < 0) {
    Outcome outcome;
    outcome.exit_code = cannot_start;
    outcome.message = "too many open files";
    return outcome;
  }
  return Group(command, host_, signals_).Run();
}

std::string Supervisor::NextPacket() {
  for (;;) {
    pollfd files[] = {{signals_, POLLIN, 0}, {host_, POLLIN, 0}};
    if (poll(files, 2, -1) < 0 && errno != EINTR) return {};
    if (files[0].revents != 0) TakeSignal(signals_);  // There is nothing to end; the host says when to go.
    if (files[1].revents != 0) return ReceivePacket(host_);
  }
}

}  // namespace vostrand::step
