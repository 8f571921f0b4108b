#pragma once

#include <string>
#include <vector>

namespace vostrand {

/// Finds the programs of planned commands: in the folder given with --toolchain, in PATH, and last where the
/// tool chain is installed with the host. A name with "/" is looked up in the working directory alone.
class ToolFinder {
 public:
  ToolFinder(const std::string& toolchain, const std::string& work_dir, const std::string& own_folder);

  /// The program's full path; empty when there is none.
  std::string Find(const std::string& program) const;
  /// Where was looked, for a message.
  std::string Places() const;

 private:
  std::string work_dir_;
  std::vector<std::string> folders_;
};

}  // namespace vostrand
