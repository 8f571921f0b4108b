#pragma once

#include <functional>

namespace vostrand {

/// The executor's time, so that tests can have their own.
class Clock {
 public:
  virtual ~Clock() = default;
  /// Seconds since some fixed moment; never goes back.
  virtual double Now() const = 0;
  /// Calls `then` once, from the event loop.
  virtual void After(double seconds, std::function<void()> then) = 0;
};

}  // namespace vostrand
