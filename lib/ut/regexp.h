#pragma once

#include <memory>
#include <string_view>

#include "export.h"
#include "ut/strobj.h"

/// The result of one match, a plain record. Key 0 is the whole match, key n the n-th parenthesised group.
struct VOSTRAND_API UT_STRKEYS {
  struct key {
    unsigned long position;  ///< In the matched string.
    unsigned long length;
  };
  static constexpr int capacity = 16;

  /// 0 when nothing matched, otherwise one more than the number of the last group that took part in the
  /// match.
  int count = 0;
  key keys[capacity] = {};
};

/// One compiled POSIX extended regular expression. Patterns match bytes, not characters of the host's locale.
class VOSTRAND_API UT_REGEXP {
 public:
  UT_REGEXP();
  ~UT_REGEXP();
  UT_REGEXP(const UT_REGEXP&) = delete;
  UT_REGEXP& operator=(const UT_REGEXP&) = delete;

  /// Replaces the pattern. Returns false, and matches nothing from then on, when it is not a valid
  /// expression.
  bool compile(const UT_STROBJ& pattern);
  /// The first match in `text` at or after `start`; "^" means the text's own beginning.
  UT_STRKEYS match(std::string_view text, unsigned long start) const;

 private:
  struct VOSTRAND_LOCAL compiled_form;
  UT_STROBJ pattern_;
  std::unique_ptr<compiled_form> compiled_;
};
