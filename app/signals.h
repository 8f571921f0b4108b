#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace vostrand {

/// Delivers SIGINT and SIGTERM to the event loop.
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
