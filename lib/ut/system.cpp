#include "ut/system.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

int ut_open(const char* path, int flags, mode_t mode) {
  int file = -1;
  do file = ::open(path, flags | O_NONBLOCK | O_CLOEXEC, mode);
  while (file < 0 && errno == EINTR);
  // A pipe that somebody reads is written to as fast as it is read.
  if (file >= 0 && (flags & O_ACCMODE) != O_RDONLY) ::fcntl(file, F_SETFL, flags & O_APPEND);
  return file;
}

bool ut_is_regular(int file) {
  struct stat status;
  return ::fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

ssize_t ut_read(int file, char* buffer, std::size_t size) {
  ssize_t n = -1;
  do n = ::read(file, buffer, size);
  while (n < 0 && errno == EINTR);
  return n;
}

bool ut_write_all(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t n = ::write(file, bytes.data(), bytes.size());
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(n));
  }
  return true;
}

bool ut_file_descriptor::close() {
  const int file = file_;
  file_ = -1;
  return file < 0 || ::close(file) == 0;
}
