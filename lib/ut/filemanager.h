#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "export.h"
#include "ut/stream.h"

/// Opens and closes streams and performs whole-file operations. Any thread may call any operation at any
/// time; the results tell success (non-zero) from failure (0). Nothing is reported, nothing thrown but a lack
/// of memory.
class VOSTRAND_API UT_FILEMANAGER {
 public:
  /// Set to 0 before a series of file operations; nothing reads it.
  std::atomic<std::int32_t> statusWord = 0;

  /// Opens the file and returns its stream, or null when it cannot be opened. A null `stream` makes one; a
  /// given one, which came from here, is closed first. `flag` is always 1.
  UT_STREAM* add_ofile(const char* path, UT_ACCESS access, UT_STREAM* stream, unsigned char flag);
  /// Flushes, closes and frees the stream. Zero when something that was written did not reach the file.
  int rm_ofile(UT_STREAM* stream);

  int exist(const char* path);
  int isfile(const char* path);
  int isdir(const char* path);
  /// Non-zero for a symbolic link, whatever it points to.
  int islink(const char* path);
  /// Non-zero when the path can be opened for reading and is not a directory.
  int canread(const char* path);

  /// Non-zero when both paths lead to one file or directory.
  int issame(const char* a, const char* b);

  /// Copies a regular file, replacing the content of `to`; a new file gets the permissions of `from`. `to`
  /// stays as it is when `from` cannot be read or is the same file.
  int copy(const char* from, const char* to);
  /// Adds the content of `from` at the end of `to`, which is made when it is missing. A file appended to
  /// itself is doubled once.
  int append(const char* from, const char* to);

  /// Moves a regular file that can be read: `to` holds its content as a copy would, and `from` goes once it
  /// is complete. A file or link of the name `to` goes first, so that nothing at the link's other end
  /// changes.
  VOSTRAND_LOCAL int move(const char* from, const char* to);

  /// Deletes a file; of a symbolic link the link itself. A directory stays.
  int remove(const char* path);
  int mkdir(const char* path);
  /// Removes an empty directory.
  int rmdir(const char* path);
};

/// The one instance. It outlives every thread and every other object of the library.
VOSTRAND_API extern UT_FILEMANAGER* const ut_file;

/// A stream that goes back to the file manager by itself.
struct ut_stream_release {
  void operator()(UT_STREAM* stream) const { ut_file->rm_ofile(stream); }
};
using ut_stream_handle = std::unique_ptr<UT_STREAM, ut_stream_release>;

/// Opens `path`; an empty handle when that fails.
inline ut_stream_handle ut_open_stream(const char* path, UT_ACCESS access) {
  return ut_stream_handle(ut_file->add_ofile(path, access, nullptr, 1));
}
