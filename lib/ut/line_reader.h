#pragma once

#include <string>
#include <string_view>

#include "ut/filemanager.h"

/// Reads a text file line by line, with the line ends "\n" and "\r\n" removed, and closes it when destroyed.
class ut_line_reader {
 public:
  explicit ut_line_reader(const char* path) : stream_(ut_open_stream(path, UT_ACCESS_READ)) {}

  bool is_open() const { return stream_ != nullptr; }
  /// True when the input ended because the file could not be read on.
  bool failed() const { return stream_ && stream_->failed(); }

  /// The next line. A line of more than 254 characters, line end included, arrives in pieces of 254, each a
  /// line of its own; a piece ends at a NUL that it holds. False at the end of the input; a negative read
  /// ends it too. `line` is valid until the next call.
  bool next(std::string_view& line);

  /// The next such line that contains `text`, of at least two characters; the lines before it are passed
  /// over.
  bool next_with(std::string_view text, std::string_view& line);

  /// The next line whole, whatever its length and bytes.
  bool next_whole(std::string& line);

 private:
  static constexpr int piece = 254;

  int read_piece();

  ut_stream_handle stream_;
  unsigned char buffer_[piece + 1] = {};
};
