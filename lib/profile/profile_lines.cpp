#include "profile/profile_lines.h"

#include <string.h>

#include "profile/profile_file.h"

namespace orlo::vostrand_lib::profile {
namespace {

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

bool same_name(const char* a, const char* b) {
  while (*a != '\0' && lower(*a) == lower(*b)) {
    ++a;
    ++b;
  }
  return *a == *b;
}

bool LineWalker::next() {
  do {
    if (getline(&text_, &text_room_, file_) < 0) return false;
  } while (text_[0] == '\n');
  rmlead(text_);
  rmtrail(text_);
  classify();
  return true;
}

void LineWalker::classify() {
  name_[0] = '\0';
  switch (text_[0]) {
    case '\0':
      kind_ = LineKind::blank;
      break;
    case ';':
      kind_ = LineKind::comment;
      break;
    case '[':
      kind_ = text_[strlen(text_) - 1] == ']' ? LineKind::header : LineKind::broken_header;
      stptok(text_ + 1, name_, sizeof name_, "");
      if (kind_ == LineKind::header && strlen(text_) < sizeof name_) name_[strlen(text_) - 2] = '\0';
      break;
    default:
      kind_ = LineKind::entry;
      stptok(text_, name_, sizeof name_, "=");
      rmtrail(name_);
  }
}

bool LineWalker::next_header() {
  while (next()) {
    if (kind_ == LineKind::header) return true;
  }
  return false;
}

bool LineWalker::enter_section(const char* section) {
  while (next_header()) {
    if (same_name(name_, section)) return true;
  }
  return false;
}

bool LineWalker::next_entry() {
  while (next() && !ends_section()) {
    if (kind_ == LineKind::entry) return true;
  }
  return false;
}

const char* LineWalker::take_value() {
  char* value = strchr(text_, '=');
  if (value == nullptr) return nullptr;
  ++value;
  rmlead(value);
  rmquotes(value);
  return value;
}

}  // namespace orlo::vostrand_lib::profile
