#pragma once

#include <string>
#include <vector>

#include "execute/events.h"
#include "execute/run_plan.h"

namespace vostrand {

/// Writes one line per finished run to standard error, and the last lines of what a failed run printed.
class RunLines final : public Observer {
 public:
  explicit RunLines(const std::vector<PlannedRun>& plan) : plan_(plan) {}

  void On(const Event& event) override;

 private:
  void Say(std::size_t run, const std::string& message) const;
  void ShowEndOf(const std::string& output_file) const;

  const std::vector<PlannedRun> plan_;
  std::size_t ended_ = 0;
  std::vector<double> elapsed_ = std::vector<double>(plan_.size());
};

}  // namespace vostrand
