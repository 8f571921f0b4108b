#include "ut/filemanager.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "ut/system.h"

namespace {

// Never destroyed: a context that ends with its thread, at the process's exit too, still closes its log
// through it.
constinit UT_FILEMANAGER the_file_manager;

bool status_of(const char* path, struct stat& status) {
  return path && ::stat(path, &status) == 0;
}

bool same_file(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// A regular file opened for reading with its status. Opening must not wait for a writer of a named pipe.
struct source_file {
  explicit source_file(const char* path) : file(path ? ut_open(path, O_RDONLY | O_NONBLOCK) : -1) {}
  bool is_regular() { return file.is_open() && ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode); }

  ut_file_descriptor file;
  struct stat status = {};
};

// A target that may not be written, such as a read-only file copied there before, makes room for a new one.
int open_to_replace(const char* path, mode_t mode) {
  constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC;
  const int file = ut_open(path, flags, mode);
  if (file >= 0 || errno != EACCES || ::unlink(path) != 0) return file;
  return ut_open(path, flags, mode);
}

// Copies at most `limit` bytes, so that a file that grows while it is read (itself, say) comes to an end.
bool copy_bytes(int from, int to, off_t limit) {
  std::vector<char> buffer(1UL << 17);
  while (limit > 0) {
    const auto wanted = static_cast<std::size_t>(std::min(limit, static_cast<off_t>(buffer.size())));
    const ssize_t n = ut_read(from, buffer.data(), wanted);
    if (n < 0) return false;
    if (n == 0) break;
    if (!ut_write_all(to, {buffer.data(), static_cast<std::size_t>(n)})) return false;
    limit -= n;
  }
  return true;
}

}  // namespace

UT_FILEMANAGER* const ut_file = &the_file_manager;

UT_STREAM* UT_FILEMANAGER::add_ofile(const char* path, UT_ACCESS access, UT_STREAM* stream, unsigned char) {
  if (!path) return nullptr;
  UT_STREAM* const opened = stream ? stream : new UT_STREAM;
  if (opened->open(path, access)) return opened;
  if (!stream) delete opened;
  return nullptr;
}

int UT_FILEMANAGER::rm_ofile(UT_STREAM* stream) {
  if (!stream) return 1;
  const bool complete = stream->close();
  delete stream;
  return complete;
}

int UT_FILEMANAGER::exist(const char* path) {
  return path && ::access(path, F_OK) == 0;
}

int UT_FILEMANAGER::isfile(const char* path) {
  struct stat status;
  return status_of(path, status) && S_ISREG(status.st_mode);
}

int UT_FILEMANAGER::isdir(const char* path) {
  struct stat status;
  return status_of(path, status) && S_ISDIR(status.st_mode);
}

int UT_FILEMANAGER::islink(const char* path) {
  struct stat status;
  return path && ::lstat(path, &status) == 0 && S_ISLNK(status.st_mode);
}

int UT_FILEMANAGER::issame(const char* a, const char* b) {
  struct stat first;
  struct stat second;
  return status_of(a, first) && status_of(b, second) && same_file(first, second);
}

int UT_FILEMANAGER::canread(const char* path) {
  if (!path || isdir(path)) return 0;
  return ut_file_descriptor(ut_open(path, O_RDONLY | O_NONBLOCK)).is_open();
}

int UT_FILEMANAGER::copy(const char* from, const char* to) {
  source_file source(from);
  if (!source.is_regular() || !to) return 0;
  if (issame(from, to)) return 1;
  ut_file_descriptor copied(open_to_replace(to, source.status.st_mode & 0777));
  return copied.is_open() && copy_bytes(source.file.get(), copied.get(), source.status.st_size) &&
         copied.close();
}

int UT_FILEMANAGER::append(const char* from, const char* to) {
  source_file source(from);
  if (!source.is_regular() || !to) return 0;
  ut_file_descriptor target(ut_open(to, O_WRONLY | O_CREAT | O_APPEND));
  return target.is_open() && copy_bytes(source.file.get(), target.get(), source.status.st_size) &&
         target.close();
}

int UT_FILEMANAGER::remove(const char* path) {
  return path && ::unlink(path) == 0;
}

int UT_FILEMANAGER::mkdir(const char* path) {
  return path && ::mkdir(path, 0777) == 0;
}

int UT_FILEMANAGER::rmdir(const char* path) {
  return path && ::rmdir(path) == 0;
}
