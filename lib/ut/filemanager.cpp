#include "ut/filemanager.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
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

// A regular file opened for reading with its status.
struct source_file {
  explicit source_file(const char* path) : file(path ? ut_open(path, O_RDONLY) : -1) {}
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

// Into an empty file. Designs are tens of megabytes: where the file system can, the copy shares the
// original's blocks, which costs no time, and otherwise the kernel copies from file to file, which saves
// the way through our memory. Whatever it leaves, between file systems all of it, is copied by hand.
bool copy_whole(int from, int to, off_t size) {
  if (::ioctl(to, FICLONE, from) == 0) return true;
  while (size > 0) {
    const ssize_t n = ::copy_file_range(from, nullptr, to, nullptr, static_cast<std::size_t>(size), 0);
    if (n <= 0) break;
    size -= n;
  }
  return size <= 0 || copy_bytes(from, to, size);
}

// Gives a file its new name in place of being copied, which reads no data: a run's files are gigabytes. Only
// where nothing tells the result from a copy: another hard link or symbolic link to the file must keep what
// it leads to, and owner and permissions must be those of a new file. An empty one, made first and then
// replaced, shows what these are; `to` is free.
bool move_by_name(const char* from, const char* to) {
  struct stat own;
  struct stat copy;
  if (::lstat(from, &own) != 0 || !S_ISREG(own.st_mode) || own.st_nlink != 1) return false;
  const ut_file_descriptor made(ut_open(to, O_WRONLY | O_CREAT | O_EXCL, own.st_mode & 0777));
  return made.is_open() && ::fstat(made.get(), &copy) == 0 && own.st_mode == copy.st_mode &&
         own.st_uid == copy.st_uid && own.st_gid == copy.st_gid && ::rename(from, to) == 0;
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
  return ut_file_descriptor(ut_open(path, O_RDONLY)).is_open();
}

int UT_FILEMANAGER::copy(const char* from, const char* to) {
  source_file source(from);
  if (!source.is_regular() || !to) return 0;
  struct stat old;
  if (status_of(to, old) && same_file(source.status, old)) return 1;
  ut_file_descriptor copied(open_to_replace(to, source.status.st_mode & 0777));
  return copied.is_open() && copy_whole(source.file.get(), copied.get(), source.status.st_size) &&
         copied.close();
}

int UT_FILEMANAGER::append(const char* from, const char* to) {
  source_file source(from);
  if (!source.is_regular() || !to) return 0;
  ut_file_descriptor target(ut_open(to, O_WRONLY | O_CREAT | O_APPEND));
  return target.is_open() && copy_bytes(source.file.get(), target.get(), source.status.st_size) &&
         target.close();
}

int UT_FILEMANAGER::move(const char* from, const char* to) {
  if (!to || !isfile(from) || !canread(from)) return 0;
  remove(to);
  return move_by_name(from, to) || (copy(from, to) && remove(from));
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
