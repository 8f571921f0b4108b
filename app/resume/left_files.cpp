#include "resume/left_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

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
  file.modified_ns = status.st_mtim.tv_sec * 1'000'000'000LL + status.st_mtim.tv_nsec;
  return file;
}

std::vector<std::string> FilesAt(const std::string& in_folder, const std::string& name) {
  std::error_code error;
  const fs::path folder(in_folder);
  const fs::file_status status = fs::symlink_status(folder / name, error);
  if (!fs::is_directory(status)) {
    if (fs::is_regular_file(status) || fs::is_symlink(status)) return {name};
    return {};
  }
  std::vector<std::string> files;
  for (fs::recursive_directory_iterator entry(folder / name, error), end; !error && entry != end;
       entry.increment(error))
    if (!entry->is_directory(error) || entry->is_symlink(error))
      files.push_back(name + "/" + fs::relative(entry->path().parent_path(), folder / name, error).string() +
                      "/" + entry->path().filename().string());
  for (std::string& file : files) file = fs::path(file).lexically_normal();
  return files;
}

void LeftFiles::On(const Event& event) {
  const bool finished = event.kind == Event::Kind::run_finished && event.status == 0;
  if (finished || event.kind == Event::Kind::run_restored) left_[event.run] = Look(event.run);
}

std::vector<std::size_t> LeftFiles::Changed() const {
  std::vector<std::size_t> changed;
  for (std::size_t run = 0; run < plan_.size(); ++run)
    if (left_[run] && *left_[run] != Look(run)) changed.push_back(run);
  return changed;
}

std::vector<KeptFile> LeftFiles::Look(std::size_t run) const {
  std::vector<KeptFile> files;
  const std::string& folder = plan_[run].results_folder;
  AskAgain(folder);
  for (const std::string& result : plan_[run].results)
    for (const std::string& name : FilesAt(folder, result))
      if (const std::optional<KeptFile> file = LookAt(folder + "/" + name, name)) files.push_back(*file);
  std::sort(files.begin(), files.end(), [](const KeptFile& a, const KeptFile& b) { return a.name < b.name; });
  return files;
}

}  // namespace vostrand
