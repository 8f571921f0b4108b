#include "launch/system_clock.h"

#include <QTimer>
#include <chrono>
#include <utility>

namespace vostrand {

double SystemClock::Now() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void SystemClock::After(double seconds, std::function<void()> then) {
  QTimer::singleShot(std::chrono::milliseconds(static_cast<qint64>(seconds * 1000)), &timers_,
                     std::move(then));
}

}  // namespace vostrand
