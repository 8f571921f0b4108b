#include "plan/library_run.h"

#include "context/self_context.h"
#include "host/entry_points.h"
#include "support/file_names.h"

namespace vostrand {

LibraryRun::LibraryRun(std::string work_dir, bool show_status)
    : work_dir_(std::move(work_dir)), logger_(show_status) {
  record_.logger = &logger_;
  record_.workDir = work_dir_.c_str();
}

LibraryRun::~LibraryRun() {
  if (record_.selfContext) Exit(record_.exitCode);
}

int LibraryRun::Plan(const std::vector<std::string>& tool_arguments) {
  std::vector<const char*> argv = {"vostrand"};
  for (const std::string& argument : tool_arguments) argv.push_back(argument.c_str());
  const int argc = static_cast<int>(argv.size());
  argv.push_back(nullptr);
  return vostrand_main(argc, argv.data(), &record_);
}

void LibraryRun::CallBack(std::size_t run, std::size_t step) {
  const auto& seed = record_.seeds[run];
  seed.steps[step].callback(seed.name.c_str(), &record_);
}

void LibraryRun::Report() {
  vostrand_report(&record_);
}

int LibraryRun::Exit(int code) {
  return vostrand_exit(code, &record_);
}

const orlo::vostrand_lib::MParRunInfo& LibraryRun::Info() const {
  return record_.selfContext->runInfo;
}

std::string LibraryRun::PathOf(const std::string& name) const {
  return orlo::vostrand_lib::GenerateFilePath(work_dir_.c_str(), name.c_str()).getstring();
}

}  // namespace vostrand
