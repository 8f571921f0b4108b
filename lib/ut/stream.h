#pragma once

#include <memory>
#include <string_view>

#include "export.h"

/// How a stream is opened.
enum UT_ACCESS {
  UT_ACCESS_READ = 1,   ///< An existing file, for reading.
  UT_ACCESS_WRITE = 2,  ///< Creates the file or empties an existing one, for writing.
};

/// One open file, made and released by the file manager (`ut_file`). Used by one thread at a time.
class VOSTRAND_API UT_STREAM {
 public:
  /// Non-zero once reading has reached the end of the file; text of the last line may come with it.
  unsigned char eof = 0;

  /// Writes the text unchanged.
  UT_STREAM& operator<<(const char* text);
  /// Writes any bytes.
  UT_STREAM& write(std::string_view bytes);
  /// Writes the text and a newline.
  void writeline(const char* text);
  /// True when reading or writing has failed since the opening: what was read is not all, or what was
  /// written.
  bool failed() const { return failed_; }
  /// Hands everything written so far to the system. False when any write since the opening failed.
  bool flush();

  /// Reads until one of `delimiters` is stored or `max` characters are, and closes them with a NUL: `buffer`
  /// holds max + 1. Returns the number of characters stored, 0 at the end of the file, -1 when the file
  /// cannot be read.
  int readkey(unsigned char* buffer, int max, const char* delimiters);

  /// Passes over lines without looking into them, as far as nothing of `text` (at least two characters) can
  /// be in them. Lines count as readkey cuts them, in pieces of `max` characters, and the next character must
  /// be the first of one. What stands behind is a piece again, one that may hold `text` or that was not read
  /// whole; the caller reads it as usual and decides.
  VOSTRAND_LOCAL void skip_lines_without(std::string_view text, unsigned long max);

 private:
  friend class UT_FILEMANAGER;
  UT_STREAM() = default;
  ~UT_STREAM() { close(); }
  UT_STREAM(const UT_STREAM&) = delete;
  UT_STREAM& operator=(const UT_STREAM&) = delete;

  VOSTRAND_LOCAL bool open(const char* path, UT_ACCESS access);
  VOSTRAND_LOCAL bool close();
  VOSTRAND_LOCAL bool refill();

  static constexpr unsigned long buffer_size = 1UL << 16;
  std::unique_ptr<char[]> buffer_;
  unsigned long position_ = 0;  // Of the next character to read.
  unsigned long filled_ = 0;    // Characters in the buffer, read or to be written.
  int file_ = -1;
  bool writing_ = false;
  bool failed_ = false;
};
