#include "ut/line_reader.h"

namespace {

std::string_view without_line_end(std::string_view text) {
  if (!text.ends_with('\n')) return text;
  text.remove_suffix(1);
  if (text.ends_with('\r')) text.remove_suffix(1);
  return text;
}

}  // namespace

int ut_line_reader::read_piece() {
  if (!stream_ || stream_->eof) return 0;
  return stream_->readkey(buffer_, piece, "\n");
}

bool ut_line_reader::next(std::string_view& line) {
  const int stored = read_piece();
  if (stored <= 0) return false;
  const char* const text = reinterpret_cast<const char*>(buffer_);
  const std::string_view read = without_line_end({text, static_cast<std::size_t>(stored)});
  line = read.substr(0, read.find('\0'));
  return true;
}

bool ut_line_reader::next_with(std::string_view text, std::string_view& line) {
  do {
    if (stream_) stream_->skip_lines_without(text, piece);
    if (!next(line)) return false;
  } while (line.find(text) == std::string_view::npos);
  return true;
}

bool ut_line_reader::next_whole(std::string& line) {
  line.clear();
  for (int stored = read_piece(); stored > 0; stored = read_piece()) {
    line.append(reinterpret_cast<const char*>(buffer_), static_cast<std::size_t>(stored));
    if (line.back() == '\n') break;
  }
  const bool any = !line.empty();
  line.resize(without_line_end(line).size());
  return any;
}
