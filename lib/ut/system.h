#pragma once

#include <sys/types.h>

#include <string_view>

/// The system's file calls as the layer uses them: interrupted calls taken up again, no message, no
/// exception. Files are closed on exec, since hosts start processes and none of them may inherit an open file
/// of a tool run.

/// open(2), with mode `mode` (less the umask) for a file that is made. Never waits for the other end of a
/// named pipe: one that nobody reads cannot be written. Returns -1 when it fails.
int ut_open(const char* path, int flags, mode_t mode = 0666);

bool ut_is_regular(int file);

/// read(2). Returns -1 when it fails.
ssize_t ut_read(int file, char* buffer, std::size_t size);

/// Writes all of `bytes`. Returns false when not everything could be written.
bool ut_write_all(int file, std::string_view bytes);

/// An open file descriptor that closes itself.
class ut_file_descriptor {
 public:
  explicit ut_file_descriptor(int file) : file_(file) {}
  ~ut_file_descriptor() { close(); }
  ut_file_descriptor(const ut_file_descriptor&) = delete;
  ut_file_descriptor& operator=(const ut_file_descriptor&) = delete;

  int get() const { return file_; }
  bool is_open() const { return file_ >= 0; }
  /// False when the system reports, as late as here, that something was not written.
  bool close();

 private:
  int file_;
};
