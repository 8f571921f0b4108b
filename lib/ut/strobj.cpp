#include "ut/strobj.h"

#include <algorithm>
#include <cstdarg>
#include <new>

#include "ut/format.h"
#include "ut/regexp.h"
#include "ut/text.h"

namespace {

constexpr std::uint64_t header = sizeof(UT_STRBUF);

std::size_t from_position(unsigned long position, std::string_view text) {
  return std::min<std::size_t>(position, text.size());
}

}  // namespace

UT_STROBJ::UT_STROBJ(std::string_view text) {
  if (text.empty()) return;
  allocate(text.size());
  append(text);
}

UT_STROBJ& UT_STROBJ::operator=(UT_STROBJ&& other) noexcept {
  if (this == &other) return *this;
  release();
  buffer = other.buffer;
  offset = other.offset;
  length = other.length;
  other.forget();
  return *this;
}

void UT_STROBJ::allocate(unsigned long room) {
  void* const memory = ::operator new(header + room + 1);
  buffer = new (memory) UT_STRBUF{1, header, header + room + 1};
  offset = header;
  length = 0;
  static_cast<char*>(memory)[header] = '\0';
}

void UT_STROBJ::free_storage(UT_STRBUF* storage) {
  ::operator delete(storage);
}

bool UT_STROBJ::has_room_for(unsigned long more) const {
  return buffer && buffer->use_count == 1 && offset + length == buffer->used &&
         buffer->capacity - buffer->used > more;
}

UT_STROBJ& UT_STROBJ::append(std::string_view text) {
  if (text.empty()) return *this;
  if (!has_room_for(text.size())) {
    // Doubling keeps repeated appending linear. The old storage lives until the text, which may lie in it, is
    // copied.
    UT_STROBJ grown;
    const bool first_text = length == 0;
    grown.allocate(first_text ? text.size() : std::max<unsigned long>(2 * length, length + text.size()));
    if (!first_text) grown.append(view());
    grown.append(text);
    return *this = static_cast<UT_STROBJ&&>(grown);
  }
  char* const end = reinterpret_cast<char*>(buffer) + buffer->used;
  std::memmove(end, text.data(), text.size());
  end[text.size()] = '\0';
  buffer->used += text.size();
  length += text.size();
  return *this;
}

UT_STROBJ UT_STROBJ::joined(std::string_view head, std::string_view tail) {
  UT_STROBJ result;
  if (head.empty() && tail.empty()) return result;
  result.allocate(head.size() + tail.size());
  result.append(head).append(tail);
  return result;
}

UT_STROBJ& UT_STROBJ::str_format(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  UT_STROBJ text(ut_vformat(format, arguments));
  va_end(arguments);
  return *this = static_cast<UT_STROBJ&&>(text);
}

const char* UT_STROBJ::getstring(unsigned char) const {
  if (!buffer || length == 0) return "";
  if (offset + length != buffer->used) {
    UT_STROBJ own(view());
    std::swap(buffer, own.buffer);
    std::swap(offset, own.offset);
    std::swap(length, own.length);
  }
  return data();
}

int UT_STROBJ::compare(std::string_view text) const {
  const int order = view().compare(text);
  return (order > 0) - (order < 0);
}

int UT_STROBJ::find(const UT_STROBJ& what, unsigned long start) const {
  const std::size_t at = view().find(what.view(), from_position(start, view()));
  return static_cast<int>(std::min<std::size_t>(at, length));
}

unsigned long UT_STROBJ::find_char(char c, unsigned long start) const {
  return std::min<std::size_t>(view().find(c, start), length);
}

unsigned long UT_STROBJ::reverse_find_char(char c, unsigned long start) const {
  return std::min<std::size_t>(view().rfind(c, start), length);
}

UT_STROBJ UT_STROBJ::part(unsigned long start, unsigned long n) const {
  if (start >= length || n == 0) return {};
  UT_STROBJ result(*this);
  result.offset += start;
  result.length = std::min<std::uint64_t>(n, length - start);
  return result;
}

UT_STROBJ UT_STROBJ::cut(unsigned long start, unsigned long n) const {
  if (start == 0) return right_from(n);
  if (start >= length || n == 0) return *this;
  if (n >= length - start) return left(start);
  return joined(view().substr(0, start), view().substr(start + n));
}

UT_STROBJ UT_STROBJ::trim_front(const char* set) const {
  return right(ut_trimmed_front(view(), set ? set : "").size());
}

UT_STROBJ UT_STROBJ::trim_back(const char* set) const {
  return left(ut_trimmed_back(view(), set ? set : "").size());
}

UT_STROBJ UT_STROBJ::trimmed() const {
  const std::string_view kept = ut_trimmed(view());
  return kept.empty() ? UT_STROBJ() : part(static_cast<unsigned long>(kept.data() - data()), kept.size());
}

UT_STRKEYS UT_STROBJ::match_reg_exp(const UT_REGEXP& pattern, unsigned long start) const {
  return pattern.match(view(), start);
}

UT_STROBJ UT_STROBJ::get_key(const UT_STRKEYS& keys, int n) const {
  if (n < 0 || n >= keys.count) return {};
  return part(keys.keys[n].position, keys.keys[n].length);
}
