// The new text is written to a file beside the old one, which then takes its name: that step is atomic. Where
// no file can be made beside it (a folder without write permission, a name of the greatest length, a mounted
// file), the text is written in place, after the room for it has been claimed.
#include "ut/rewrite.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "ut/system.h"

namespace {

bool holds(int file, const struct stat& status, std::string_view text) {
  if (status.st_size != static_cast<off_t>(text.size())) return false;
  std::string content(text.size(), '\0');
  std::size_t filled = 0;
  while (filled < content.size()) {
    const ssize_t n = ut_read(file, content.data() + filled, content.size() - filled);
    if (n <= 0) return false;
    filled += static_cast<std::size_t>(n);
  }
  return content == text;
}

std::string without_links(const char* path) {
  struct release {
    void operator()(char* text) const { std::free(text); }
  };
  const std::unique_ptr<char, release> resolved(::realpath(path, nullptr));
  return resolved ? resolved.get() : path;
}

bool same_owner_and_mode(int file, const struct stat& wanted) {
  struct stat status;
  if (::fstat(file, &status) != 0) return false;
  const bool owned = status.st_uid == wanted.st_uid && status.st_gid == wanted.st_gid;
  return (owned || ::fchown(file, wanted.st_uid, wanted.st_gid) == 0) &&
         ::fchmod(file, wanted.st_mode & 07777) == 0;
}

void make_rename_durable(const std::string& path) {
  const std::string directory = path.substr(0, path.rfind('/') + 1);
  const ut_file_descriptor folder(ut_open(directory.empty() ? "." : directory.c_str(), O_RDONLY));
  if (folder.is_open()) ::fsync(folder.get());
}

enum class beside_result { done, cannot_be_made, cannot_write };

beside_result rewrite_beside(const std::string& path, const struct stat& old, std::string_view text) {
  std::string name = path + ".XXXXXX";
  ut_file_descriptor made(::mkostemp(name.data(), O_CLOEXEC));
  if (!made.is_open()) return beside_result::cannot_be_made;
  beside_result result = beside_result::cannot_be_made;
  if (same_owner_and_mode(made.get(), old)) {
    const bool written = ut_write_all(made.get(), text) && ::fsync(made.get()) == 0 && made.close();
    if (!written) result = beside_result::cannot_write;
    if (written && ::rename(name.c_str(), path.c_str()) == 0) {
      make_rename_durable(path);
      return beside_result::done;
    }
  }
  ::unlink(name.c_str());
  return result;
}

bool rewrite_in_place(int file, const struct stat& old, std::string_view text) {
  const auto size = static_cast<off_t>(text.size());
  if (S_ISREG(old.st_mode) && size > old.st_size && ::posix_fallocate(file, 0, size) != 0) {
    // Gives back what was claimed; the old text has not been touched yet.
    static_cast<void>(::ftruncate(file, old.st_size) == 0);
    return false;
  }
  if (S_ISREG(old.st_mode) && ::lseek(file, 0, SEEK_SET) != 0) return false;
  if (!ut_write_all(file, text)) return false;
  return !S_ISREG(old.st_mode) || (::ftruncate(file, size) == 0 && ::fsync(file) == 0);
}

}  // namespace

ut_rewrite_result ut_rewrite_file(const char* path, std::string_view text) {
  const ut_file_descriptor file(ut_open(path, O_RDWR));
  struct stat old;
  if (!file.is_open() || ::fstat(file.get(), &old) != 0) return ut_rewrite_result::cannot_open;
  if (S_ISREG(old.st_mode)) {
    if (holds(file.get(), old, text)) return ut_rewrite_result::done;
    const beside_result beside = rewrite_beside(without_links(path), old, text);
    if (beside == beside_result::done) return ut_rewrite_result::done;
    if (beside == beside_result::cannot_write) return ut_rewrite_result::cannot_write;
  }
  return rewrite_in_place(file.get(), old, text) ? ut_rewrite_result::done : ut_rewrite_result::cannot_write;
}
