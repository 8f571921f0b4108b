#include "resume/sweep_store.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <optional>
#include <set>
#include <thread>

#include "resume/left_files.h"

namespace vostrand {
namespace {

namespace fs = std::filesystem;

constexpr auto patience = std::chrono::seconds(4);  // A supervisor needs two and a little.

std::string HashOf(const std::vector<std::string>& words) {
  QCryptographicHash hash(QCryptographicHash::Sha256);
  for (const std::string& word : words)
    hash.addData(QByteArrayView(word.c_str(), static_cast<qsizetype>(word.size() + 1)));
  return hash.result().toHex().left(16).toStdString();
}

// A hard link costs nothing and outlives the removal of the other name; where there can be none, a copy.
bool LinkOrCopy(const fs::path& from, const fs::path& to) {
  std::error_code error;
  fs::create_directories(to.parent_path(), error);
  fs::remove_all(to, error);
  if (link(from.c_str(), to.c_str()) == 0) return true;
  if (fs::is_symlink(from, error)) {
    fs::copy_symlink(from, to, error);
    return !error;
  }
  if (!fs::copy_file(from, to, error)) return false;
  const auto time = fs::last_write_time(from, error);
  fs::last_write_time(to, time, error);
  return !error;
}

// The journal may say anything; only what the run may leave is touched.
bool IsResultOf(const PlannedRun& run, const fs::path& name) {
  if (name.empty() || name != name.lexically_normal()) return false;
  return std::find(run.results.begin(), run.results.end(), name.begin()->string()) != run.results.end();
}

}  // namespace

SweepStore::SweepStore(const std::string& work_dir, const std::vector<std::string>& tool_arguments,
                       const std::string& output_stem)
    : folder_(work_dir + "/.vostrand/" + HashOf(tool_arguments)) {
  const fs::path path = fs::path(work_dir) / output_stem;
  lock_file_ = (path.parent_path() / ".vostrand" / (HashOf({path.filename().string()}) + ".lock")).string();
  std::error_code error;
  const fs::path folder = fs::weakly_canonical(fs::absolute(path.parent_path(), error), error);
  own_lock_file_ = work_dir + "/.vostrand/" + HashOf({(folder / path.filename()).string()}) + ".lock";
}

SweepStore::~SweepStore() {
  if (lock_ < 0) return;
  // A refused plan leaves nothing behind; a folder in use stays.
  std::error_code error;
  if (!fs::exists(JournalFile(), error)) {
    fs::remove(folder_ + "/lock", error);
    fs::remove(folder_, error);
    fs::remove(lock_file_, error);
    for (const std::string& made : {folder_, lock_file_}) fs::remove(fs::path(made).parent_path(), error);
  }
  close(lock_);
}

// Returns 0, EWOULDBLOCK while another holds the lock, or why there can be none. A lock on a file that its
// last holder has removed since is none.
int SweepStore::TryLock() {
  // For writing where that may be: over NFS no other file can be locked so.
  int file = open(lock_file_.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
  if (file < 0 && errno == EACCES) {
    file = open(lock_file_.c_str(), O_RDONLY | O_CLOEXEC);  // Another user's.
    if (file < 0) return EACCES;
  }
  if (file < 0) return errno;
  int error = flock(file, LOCK_EX | LOCK_NB) == 0 ? 0 : errno;
  struct stat locked;
  struct stat named;
  if (error == 0 &&
      (fstat(file, &locked) != 0 || stat(lock_file_.c_str(), &named) != 0 || locked.st_ino != named.st_ino))
    error = EWOULDBLOCK;
  if (error == 0)
    lock_ = file;
  else
    close(file);
  return error;
}

// The folders too: a sweep that leaves at this moment may remove them.
int SweepStore::MakeAndLock() {
  std::error_code error;
  for (const fs::path& used : {fs::path(folder_), fs::path(lock_file_).parent_path()}) {
    fs::create_directories(used, error);
    if (error) return error.value();
  }
  return TryLock();
}

std::string SweepStore::Open() {
  std::error_code error;
  // What they would lead to is not ours to be emptied.
  for (const std::string& own : {folder_, folder_ + "/files"})
    if (fs::is_symlink(own, error)) fs::remove(own, error);
  fs::create_directories(folder_, error);
  if (error) return "cannot make " + folder_ + ": " + error.message();
  const auto give_up = std::chrono::steady_clock::now() + patience;
  while (const int failure = MakeAndLock()) {
    const bool late = std::chrono::steady_clock::now() >= give_up;
    const bool not_ours = failure == EACCES || failure == EPERM || failure == EROFS;
    taken_ = failure == EWOULDBLOCK && late;
    if (taken_) return "another vostrand is at work on this output";
    if (not_ours && lock_file_ != own_lock_file_)
      lock_file_ = own_lock_file_;
    else if (late || (failure != EWOULDBLOCK && failure != ENOENT))
      return "cannot lock " + lock_file_ + ": " + std::strerror(failure);
    else
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  fs::remove(folder_ + "/lock", error);
  fs::create_hard_link(lock_file_, folder_ + "/lock", error);
  if (error)
    fs::create_symlink(fs::absolute(lock_file_), folder_ + "/lock", error);  // On another file system.
  return {};
}

std::vector<std::string> SweepStore::FoldersOfOutput() const {
  std::vector<std::string> folders;
  std::error_code error;
  const fs::path own(folder_);
  for (const auto& entry : fs::directory_iterator(own.parent_path(), error)) {
    std::error_code other;
    if (entry.is_directory(other) && entry.path().filename() != own.filename() &&
        fs::equivalent(entry.path() / "lock", own / "lock", other))
      folders.push_back(entry.path());
  }
  return folders;
}

// All or nothing: a run that came back with some of its files would be taken for a finished one.
std::vector<KeptFile> SweepStore::Keep(const PlannedRun& run) const {
  Drop(run);
  std::vector<KeptFile> files;
  for (const std::string& result : run.results) {
    const auto names = FilesAt(run.results_folder, result);
    if (!names) return {};
    for (const std::string& name : *names) {
      const fs::path left = fs::path(run.results_folder) / name;
      std::error_code error;
      if (fs::is_symlink(left, error) || error) return {};  // What a link leads to may change.
      const bool linked = LinkOrCopy(left, PathOf(name));
      const std::optional<KeptFile> kept = linked ? LookAt(PathOf(name), name) : std::nullopt;
      if (!kept) return {};
      files.push_back(*kept);
    }
  }
  return files;
}

bool SweepStore::Restore(const PlannedRun& run, const KeptRun& kept) const {
  if (kept.files.empty()) return false;
  for (const KeptFile& file : kept.files) {
    const std::optional<KeptFile> now = LookAt(PathOf(file.name), file.name);
    if (!IsResultOf(run, file.name) || !now || now->size != file.size || now->modified_ns != file.modified_ns)
      return false;
  }
  std::error_code error;
  for (const std::string& result : run.results) fs::remove_all(fs::path(run.results_folder) / result, error);
  bool restored = true;
  for (const KeptFile& file : kept.files)
    restored = restored && LinkOrCopy(PathOf(file.name), fs::path(run.results_folder) / file.name);
  return restored;
}

void SweepStore::Drop(const PlannedRun& run) const {
  std::error_code error;
  for (const std::string& result : run.results) fs::remove_all(PathOf(result), error);
}

void SweepStore::DropAllBut(const std::vector<const PlannedRun*>& runs) const {
  std::set<std::string> kept;
  for (const PlannedRun* const run : runs) kept.insert(run->results.begin(), run->results.end());
  std::vector<fs::path> dropped;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder_ + "/files", error))
    if (!kept.contains(entry.path().filename())) dropped.push_back(entry.path());
  for (const fs::path& path : dropped) fs::remove_all(path, error);
}

void SweepStore::Clear() const {
  std::error_code error;
  fs::remove(JournalFile(), error);
  fs::remove_all(folder_ + "/files", error);
}

}  // namespace vostrand
