#pragma once

#include <chrono>
#include <thread>

/// Asks every hundredth of a second until the condition holds, at most this long; whether it did in the end.
template <typename Condition>
bool Eventually(Condition condition, std::chrono::seconds patience = std::chrono::seconds(30)) {
  for (auto tries = 100 * patience.count(); tries > 0; --tries) {
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return condition();
}
