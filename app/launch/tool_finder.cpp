#include "launch/tool_finder.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace vostrand {
namespace {

bool IsProgram(const std::filesystem::path& path) {
  std::error_code error;
  return std::filesystem::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0;
}

}  // namespace

ToolFinder::ToolFinder(const std::string& toolchain, const std::string& work_dir,
                       const std::string& own_folder)
    : work_dir_(work_dir) {
  if (!toolchain.empty()) folders_.push_back(std::filesystem::absolute(toolchain));
  const char* const path = std::getenv("PATH");
  std::istringstream list(path ? path : "");
  for (std::string folder; std::getline(list, folder, ':');)
    folders_.push_back(folder.empty() ? "." : folder);
  folders_.push_back(own_folder + "/../libexec/vostrand");
}

std::string ToolFinder::Find(const std::string& program) const {
  if (program.find('/') != std::string::npos) {
    const std::filesystem::path path = std::filesystem::absolute(std::filesystem::path(work_dir_) / program);
    return IsProgram(path) ? path.string() : "";
  }
  for (const std::string& folder : folders_) {
    const std::filesystem::path path = std::filesystem::absolute(std::filesystem::path(folder) / program);
    if (IsProgram(path)) return path;
  }
  return {};
}

std::string ToolFinder::Places() const {
  std::string text;
  for (const std::string& folder : folders_) text += (text.empty() ? "" : ":") + folder;
  return text;
}

}  // namespace vostrand
