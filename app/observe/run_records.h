#pragma once

#include <vector>

#include "execute/events.h"
#include "result/run_record.h"

namespace vostrand {

/// Collects what became of every run.
class RunRecords final : public Observer {
 public:
  /// One record a run, with its name; those of restored runs as an earlier sweep made them.
  explicit RunRecords(std::vector<RunRecord> records) : records_(std::move(records)) {}

  void On(const Event& event) override;
  const std::vector<RunRecord>& Records() const { return records_; }

 private:
  std::vector<RunRecord> records_;
};

}  // namespace vostrand
