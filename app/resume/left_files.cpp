#include "resume/left_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "result/modified.h"

namespace vostrand {

namespace fs = std::filesystem;

void AskAgain(const std::string& folder) {
  std::error_code error;
  fs::directory_iterator(folder, error);
}

std::optional<KeptFile> LookAt(const std::string& path, const std::string& name) {
  struct stat status;
  if (lstat(path.c_str(), &status) != 0) return {};
  if (S_ISREG(status.st_mode)) {
    // Only a file that is opened is sure to be shown as it is on the server.
    const int file = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file >= 0) {
      fstat(file, &status);
      close(file);
    }
  }
  KeptFile file;
  file.name = name;
  file.size = status.st_size;
  file.modified_ns = ModifiedNs(status);
  return file;
}

std::optional<std::vector<std::string>> FilesAt(const std::string& folder, const std::string& name) {
  std::error_code error;
  const fs::file_type type = fs::symlink_status(fs::path(folder) / name, error).type();
  if (type == fs::file_type::none) return {};
  if (type == fs::file_type::regular || type == fs::file_type::symlink) return std::vector{name};
  std::vector<std::string> files;
  if (type != fs::file_type::directory) return files;
  for (fs::directory_iterator entry(fs::path(folder) / name, error), end; !error && entry != end;
       entry.increment(error)) {
    const auto inner = FilesAt(folder, name + "/" + entry->path().filename().string());
    if (!inner) return {};
    files.insert(files.end(), inner->begin(), inner->end());
  }
  return error ? std::nullopt : std::optional(files);
}

void LeftFiles::On(const Event& event) {
  const bool finished = event.kind == Event::Kind::run_finished && event.status == 0;
  if (finished || event.kind == Event::Kind::run_restored) left_[event.run] = Look(event.run);
}

std::vector<std::size_t> LeftFiles::Changed() const {
  std::vector<std::size_t> changed;
  for (std::size_t run = 0; run < plan_.size(); ++run)
    if (const auto now = left_[run] ? Look(run) : std::nullopt; now && *now != *left_[run])
      changed.push_back(run);
  return changed;
}

std::optional<std::vector<KeptFile>> LeftFiles::Look(std::size_t run) const {
  std::vector<KeptFile> files;
  const std::string& folder = plan_[run].results_folder;
  AskAgain(folder);
  for (const std::string& result : plan_[run].results) {
    const auto names = FilesAt(folder, result);
    if (!names) return {};
    for (const std::string& name : *names) {
      const std::optional<KeptFile> file = LookAt(folder + "/" + name, name);
      if (file)
        files.push_back(*file);
      else if (errno != ENOENT)
        return {};
    }
  }
  std::sort(files.begin(), files.end(), [](const KeptFile& a, const KeptFile& b) { return a.name < b.name; });
  return files;
}

}  // namespace vostrand
