#include "signals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>
#include <ctime>
#include <utility>

namespace vostrand {
namespace {

sigset_t Interrupts() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction now = {};
    // What the caller ignores stays ignored, as under nohup; a blocked one would arrive all the same.
    if (sigaction(signal, nullptr, &now) != 0 || now.sa_handler != SIG_IGN) sigaddset(&set, signal);
  }
  return set;
}

}  // namespace

BlockedInterrupts::BlockedInterrupts() {
  // Inherited by the supervisors, which unblock everything for the tools.
  const sigset_t set = Interrupts();
  sigprocmask(SIG_BLOCK, &set, nullptr);
}

BlockedInterrupts::~BlockedInterrupts() {
  // One that came too late to interrupt anything must not end a program that has done its work.
  const sigset_t set = Interrupts();
  const timespec no_time = {0, 0};
  while (sigtimedwait(&set, nullptr, &no_time) > 0) {
  }
  sigprocmask(SIG_UNBLOCK, &set, nullptr);
}

Signals::Signals(std::function<void(int signal)> on_signal) {
  const sigset_t set = Interrupts();
  file_ = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
  notifier_ = std::make_unique<QSocketNotifier>(file_, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this, on_signal = std::move(on_signal)] {
    signalfd_siginfo info;
    while (read(file_, &info, sizeof info) == static_cast<ssize_t>(sizeof info))
      on_signal(static_cast<int>(info.ssi_signo));
  });
}

Signals::~Signals() {
  notifier_.reset();
  close(file_);
}

}  // namespace vostrand
