#include "ut/stream.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "ut/find.h"
#include "ut/system.h"

bool UT_STREAM::open(const char* path, UT_ACCESS access) {
  close();
  writing_ = access == UT_ACCESS_WRITE;
  file_ = ut_open(path, writing_ ? O_WRONLY | O_CREAT | O_TRUNC : O_RDONLY);
  // Only regular files are read: a named pipe may never end, a device has no end.
  if (file_ >= 0 && !writing_ && !ut_is_regular(file_)) close();
  if (file_ < 0) return false;
  buffer_.reset(new char[buffer_size]);
  position_ = filled_ = 0;
  eof = 0;
  failed_ = false;
  return true;
}

bool UT_STREAM::close() {
  if (file_ < 0) return true;
  const bool written = flush();
  const bool closed = ::close(file_) == 0;
  file_ = -1;
  buffer_.reset();
  position_ = filled_ = 0;
  failed_ = true;  // Until the next opening.
  return written && closed;
}

UT_STREAM& UT_STREAM::operator<<(const char* text) {
  return text ? write(text) : *this;
}

UT_STREAM& UT_STREAM::write(std::string_view bytes) {
  while (!bytes.empty() && writing_ && !failed_) {
    if (filled_ == buffer_size && !flush()) break;
    const auto n = std::min<std::size_t>(bytes.size(), buffer_size - filled_);
    std::memcpy(buffer_.get() + filled_, bytes.data(), n);
    filled_ += n;
    bytes.remove_prefix(n);
  }
  return *this;
}

void UT_STREAM::writeline(const char* text) {
  (*this << text).write("\n");
}

bool UT_STREAM::flush() {
  if (!writing_) return true;
  if (!failed_) failed_ = !ut_write_all(file_, {buffer_.get(), filled_});
  filled_ = 0;
  return !failed_;
}

bool UT_STREAM::refill() {
  const ssize_t n = writing_ || file_ < 0 ? -1 : ut_read(file_, buffer_.get(), buffer_size);
  position_ = 0;
  filled_ = n > 0 ? static_cast<unsigned long>(n) : 0;
  if (n <= 0) eof = 1;
  if (n < 0) failed_ = true;
  return n > 0;
}

namespace {

// The length of the front part of `text` that ends with the first of `delimiters`, or all of it.
std::size_t through_delimiter(std::string_view text, std::string_view delimiters, bool& found) {
  // memchr for the one delimiter that lines are read with; find_first_of looks up every character.
  const std::size_t at = delimiters.size() == 1 ? text.find(delimiters[0]) : text.find_first_of(delimiters);
  found = at != std::string_view::npos;
  return found ? at + 1 : text.size();
}

}  // namespace

int UT_STREAM::readkey(unsigned char* buffer, int max, const char* delimiters) {
  if (!buffer || max < 0) return -1;
  const auto limit = static_cast<unsigned long>(max);
  unsigned long stored = 0;
  for (bool found = false; stored < limit && !found;) {
    if (position_ == filled_ && !refill()) break;
    const std::string_view waiting(buffer_.get() + position_, std::min(filled_ - position_, limit - stored));
    const std::size_t n = through_delimiter(waiting, delimiters, found);
    std::memcpy(buffer + stored, waiting.data(), n);
    stored += n;
    position_ += n;
  }
  buffer[stored] = '\0';
  return stored == 0 && failed_ ? -1 : static_cast<int>(stored);
}

// Reports are hundreds of megabytes, of which a few lines count. Reading all of it line by line costs four
// times what the system needs to hand it over; this searches what was read at once and goes back to the
// beginning of the one piece that matters.
void UT_STREAM::skip_lines_without(std::string_view text, unsigned long max) {
  const std::string_view waiting(buffer_.get() + position_, filled_ - position_);
  const std::size_t here = std::min(ut_find(waiting, text), waiting.size());
  const std::size_t line_end = waiting.substr(0, here).rfind('\n');
  const std::size_t line = line_end == std::string_view::npos ? 0 : line_end + 1;
  position_ += line + (here - line) / max * max;
}
