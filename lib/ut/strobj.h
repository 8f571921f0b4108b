#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include "export.h"

class UT_REGEXP;
struct UT_STRKEYS;

/// Storage shared by the strings that were copied or cut from one another. The characters follow the header
/// and are always followed by one NUL.
struct UT_STRBUF {
  std::uint32_t use_count;  ///< Strings that look into this storage; plain, since they stay on one thread.
  std::uint64_t used;       ///< Bytes in use, header included, closing NUL not.
  std::uint64_t capacity;   ///< Bytes allocated, header and closing NUL included.
};

/// A string value whose characters live in shared storage: a copy or a part of a string costs no allocation.
/// Positions and counts are in bytes, from 0; a position or count beyond the end means the end. The text may
/// hold any byte. A string and its copies must stay on one thread, because the use count is plain.
class VOSTRAND_API UT_STROBJ {
 public:
  UT_STROBJ() = default;
  /// A copy of the NUL-terminated `text`; null makes an empty string.
  UT_STROBJ(const char* text) : UT_STROBJ(text ? std::string_view(text) : std::string_view()) {}
  explicit UT_STROBJ(std::string_view text);
  UT_STROBJ(const UT_STROBJ& other) : buffer(other.buffer), offset(other.offset), length(other.length) {
    if (buffer) ++buffer->use_count;
  }
  UT_STROBJ(UT_STROBJ&& other) noexcept : buffer(other.buffer), offset(other.offset), length(other.length) {
    other.forget();
  }
  ~UT_STROBJ() { release(); }

  UT_STROBJ& operator=(const char* text) { return *this = UT_STROBJ(text); }
  UT_STROBJ& operator=(const UT_STROBJ& other) {
    UT_STROBJ copy(other);
    return *this = static_cast<UT_STROBJ&&>(copy);
  }
  UT_STROBJ& operator=(UT_STROBJ&& other) noexcept;

  UT_STROBJ& operator+=(const char* text) {
    return append(text ? std::string_view(text) : std::string_view());
  }
  UT_STROBJ& operator+=(const UT_STROBJ& text) { return append(text.view()); }
  UT_STROBJ& operator+=(char c) { return append(std::string_view(&c, 1)); }
  /// Appends any bytes, also a part of this very string. Repeated appending is linear in the total length.
  UT_STROBJ& append(std::string_view text);

  UT_STROBJ operator+(const char* text) const { return joined(view(), text ? text : ""); }
  UT_STROBJ operator+(const UT_STROBJ& text) const { return joined(view(), text.view()); }
  UT_STROBJ operator+(char c) const { return joined(view(), std::string_view(&c, 1)); }
  friend UT_STROBJ operator+(const char* text, const UT_STROBJ& tail) {
    return joined(text ? text : "", tail.view());
  }

  /// Replaces the content with the printf-style formatting of the arguments, with "." as decimal point in
  /// every locale. The arguments may point into this very string. Returns the string itself.
  UT_STROBJ& str_format(const char* format, ...) __attribute__((format(printf, 2, 3)));

  /// The text, NUL-terminated; "" for a string that never held characters. Valid until this string is next
  /// changed or destroyed. `flag` is 1 when the text goes to a logger or another owner and 0 elsewhere; both
  /// get the same.
  const char* getstring(unsigned char flag = 0) const;

  /// The bytes, without a NUL behind them; valid until the string is next changed, destroyed or asked for its
  /// NUL-terminated text.
  std::string_view view() const { return {data(), length}; }
  unsigned long size() const { return length; }
  bool empty() const { return length == 0; }

  /// Negative, 0 or positive as the byte-wise (unsigned) comparison of the two texts.
  int strcmp(const char* text) const { return compare(text ? std::string_view(text) : std::string_view()); }
  int strcmp(const UT_STROBJ& text) const { return compare(text.view()); }

  /// Position of the first `what` at or after `start`; the string's length when there is none.
  int find(const UT_STROBJ& what, unsigned long start) const;
  /// Position of the first `c` at or after `start`; the length when there is none.
  unsigned long find_char(char c, unsigned long start) const;
  /// Position of the last `c` at or before `start`; the length when there is none.
  unsigned long reverse_find_char(char c, unsigned long start) const;

  UT_STROBJ left(unsigned long n) const { return part(0, n); }
  UT_STROBJ right(unsigned long n) const { return part(n < length ? length - n : 0, length); }
  UT_STROBJ right_from(unsigned long pos) const { return part(pos, length); }
  /// The string with the n characters that begin at `start` removed.
  UT_STROBJ cut(unsigned long start, unsigned long n) const;
  /// Drops the characters before `pos` from the string itself.
  void chop_before(unsigned long pos) { *this = right_from(pos); }
  /// A copy without the leading or trailing characters that occur in `set`.
  UT_STROBJ trim_front(const char* set) const;
  UT_STROBJ trim_back(const char* set) const;
  /// A copy without blanks, tabs, backspaces and line ends at both ends.
  UT_STROBJ trimmed() const;
  bool contains(std::string_view part) const { return view().find(part) != std::string_view::npos; }

  /// The first match at or after `start`; its keys are positions in this string.
  UT_STRKEYS match_reg_exp(const UT_REGEXP& pattern, unsigned long start) const;
  /// Key `n` of a match of this very string; empty for a key that took no part in the match.
  UT_STROBJ get_key(const UT_STRKEYS& keys, int n) const;

 private:
  const char* data() const { return buffer ? reinterpret_cast<const char*>(buffer) + offset : ""; }
  int compare(std::string_view text) const;
  UT_STROBJ part(unsigned long start, unsigned long n) const;
  static UT_STROBJ joined(std::string_view head, std::string_view tail);
  VOSTRAND_LOCAL void allocate(unsigned long room);
  VOSTRAND_LOCAL bool has_room_for(unsigned long more) const;
  void forget() {
    buffer = nullptr;
    offset = length = 0;
  }
  void release() {
    if (buffer && --buffer->use_count == 0) free_storage(buffer);
  }
  static void free_storage(UT_STRBUF* storage);

  // getstring may move a part of a shared text into storage of its own, where a NUL can follow it.
  mutable UT_STRBUF* buffer = nullptr;
  mutable std::uint64_t offset = 0;
  mutable std::uint64_t length = 0;
};

static_assert(sizeof(UT_STROBJ) == 24);

/// Byte order; the order of every map that is keyed by names.
inline bool operator<(const UT_STROBJ& a, const UT_STROBJ& b) {
  return a.view() < b.view();
}
inline bool operator==(const UT_STROBJ& a, const UT_STROBJ& b) {
  return a.view() == b.view();
}
