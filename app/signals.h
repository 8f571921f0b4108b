#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace vostrand {

/// While it lives, SIGINT, SIGTERM and SIGHUP wait instead of ending the program, unless the
/// caller has them ignored.
class BlockedInterrupts {
 public:
  BlockedInterrupts();
  ~BlockedInterrupts();
  BlockedInterrupts(const BlockedInterrupts&) = delete;
  BlockedInterrupts& operator=(const BlockedInterrupts&) = delete;
};

/// Delivers blocked interrupts to the event loop.
class Signals {
 public:
  explicit Signals(std::function<void(int signal)> on_signal);
  ~Signals();
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;

 private:
  int file_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace vostrand
