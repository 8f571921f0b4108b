#pragma once

#include <QObject>

#include "execute/clock.h"

namespace vostrand {

/// The machine's time. What was asked for with After is forgotten when the clock goes.
class SystemClock final : public Clock {
 public:
  double Now() const override;
  void After(double seconds, std::function<void()> then) override;

 private:
  QObject timers_;
};

}  // namespace vostrand
