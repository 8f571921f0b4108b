#pragma once

#include <functional>
#include <vector>

#include "execute/events.h"

namespace vostrand {

/// Hands every event to several observers, in the order in which they were added.
class FanOut final : public Observer {
 public:
  /// `observer` outlives this object.
  void Add(Observer& observer) { observers_.emplace_back(observer); }
  void On(const Event& event) override {
    for (Observer& observer : observers_) observer.On(event);
  }

 private:
  std::vector<std::reference_wrapper<Observer>> observers_;
};

}  // namespace vostrand
