#include "signals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>
#include <utility>

namespace vostrand {
namespace {

sigset_t Interrupts() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  return set;
}

}  // namespace

Signals::Signals(std::function<void(int signal)> on_signal) {
  const sigset_t set = Interrupts();
  // Blocked, they wait in the descriptor. Supervisors unblock them for the tools.
  sigprocmask(SIG_BLOCK, &set, nullptr);
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
  const sigset_t set = Interrupts();
  sigprocmask(SIG_UNBLOCK, &set, nullptr);
}

}  // namespace vostrand
