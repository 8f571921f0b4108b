#pragma once

#include <string>
#include <vector>

#include "common/recording_logger.h"
#include "context/self_context.h"
#include "host/entry_points.h"

/// One tool run as a host drives it, in the folder `work_dir`, ended when it goes out of scope.
class ToolRun {
 public:
  explicit ToolRun(std::string work_dir) : work_dir_(std::move(work_dir)) {
    record.logger = &logger;
    record.workDir = work_dir_.c_str();
  }
  ~ToolRun() {
    if (record.selfContext) vostrand_exit(record.exitCode, &record);
  }
  ToolRun(const ToolRun&) = delete;
  ToolRun& operator=(const ToolRun&) = delete;

  /// vostrand_main with these arguments behind the tool's name.
  int Plan(const std::vector<std::string>& arguments) {
    std::vector<const char*> argv = {"vostrand"};
    for (const std::string& argument : arguments) argv.push_back(argument.c_str());
    argv.push_back(nullptr);
    return vostrand_main(static_cast<int>(argv.size()) - 1, argv.data(), &record);
  }
  orlo::vostrand_lib::MParRunInfo& Info() { return record.selfContext->runInfo; }

  RecordingLogger logger;
  orlo::kelpn::mparrunner::VOSTRAND_CONTEXT record;

 private:
  std::string work_dir_;
};
