#include "profile/profile_lines.h"

#include <string.h>

#include "profile/profile_file.h"

namespace orlo::vostrand_lib::profile {
namespace {

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

bool sameName(const char* a, const char* b) {
  while (*a != '\0' && lower(*a) == lower(*b)) {
    ++a;
    ++b;
  }
  return *a == *b;
}

bool LineWalker::next() {
  do {
    if (fgets(text_, sizeof text_, file_) == nullptr) return false;
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
      memcpy(name_, text_, sizeof name_);
      kind_ = rmbrackets(name_) != 0 ? LineKind::header : LineKind::brokenHeader;
      break;
    default:
      kind_ = LineKind::entry;
      stptok(text_, name_, sizeof name_, "=");
      rmtrail(name_);
  }
}

bool LineWalker::nextHeader() {
  while (next()) {
    if (kind_ == LineKind::header) return true;
  }
  return false;
}

bool LineWalker::enterSection(const char* section) {
  while (nextHeader()) {
    if (sameName(name_, section)) return true;
  }
  return false;
}

bool LineWalker::nextEntry() {
  while (next() && !endsSection()) {
    if (kind_ == LineKind::entry) return true;
  }
  return false;
}

const char* LineWalker::takeValue() {
  char* value = strchr(text_, '=');
  if (value == nullptr) return nullptr;
  ++value;
  rmlead(value);
  rmquotes(value);
  return value;
}

}  // namespace orlo::vostrand_lib::profile
