#include "ut/regexp.h"

#include <regex.h>

#include <limits>

#include "ut/c_locale.h"

struct UT_REGEXP::compiled_form {
  regex_t expression;
  bool valid;

  explicit compiled_form(const char* pattern) {
    // A pattern keeps the locale that it was compiled in; "C" is the one whose characters are bytes.
    const ut_c_locale_scope c_locale;
    valid = regcomp(&expression, pattern, REG_EXTENDED) == 0;
  }
  ~compiled_form() {
    if (valid) regfree(&expression);
  }
  compiled_form(const compiled_form&) = delete;
  compiled_form& operator=(const compiled_form&) = delete;
};

UT_REGEXP::UT_REGEXP() = default;
UT_REGEXP::~UT_REGEXP() = default;

bool UT_REGEXP::compile(const UT_STROBJ& pattern) {
  pattern_ = pattern;
  compiled_ = std::make_unique<compiled_form>(pattern_.getstring());
  if (!compiled_->valid) compiled_.reset();
  return compiled_ != nullptr;
}

UT_STRKEYS UT_REGEXP::match(std::string_view text, unsigned long start) const {
  UT_STRKEYS keys;
  constexpr auto longest = static_cast<std::size_t>(std::numeric_limits<regoff_t>::max());
  if (!compiled_ || start > text.size() || text.size() > longest) return keys;

  const ut_c_locale_scope c_locale;
  regmatch_t groups[UT_STRKEYS::capacity] = {};
  groups[0].rm_so = static_cast<regoff_t>(start);
  groups[0].rm_eo = static_cast<regoff_t>(text.size());
  // REG_STARTEND takes the text's bounds from groups[0], so the text needs no closing NUL.
  const char* const bytes = text.data() ? text.data() : "";
  if (regexec(&compiled_->expression, bytes, UT_STRKEYS::capacity, groups, REG_STARTEND) != 0) return keys;
  for (int n = 0; n < UT_STRKEYS::capacity; ++n) {
    if (groups[n].rm_so < 0) continue;
    keys.keys[n] = {static_cast<unsigned long>(groups[n].rm_so),
                    static_cast<unsigned long>(groups[n].rm_eo - groups[n].rm_so)};
    keys.count = n + 1;
  }
  return keys;
}
