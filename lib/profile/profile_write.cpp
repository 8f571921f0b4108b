#include "profile/profile_file.h"

#include <errno.h>

#include "profile/profile_lines.h"

namespace {

using orlo::vostrand_lib::profile::LineKind;
using orlo::vostrand_lib::profile::LineWalker;
using orlo::vostrand_lib::profile::same_name;

/// One change to a file, made while its lines pass by. Without a key the section goes, without a value the
/// key.
class Change {
 public:
  Change(const char* section, const char* key, const char* value)
      : section_(section), key_(key), value_(value) {}

  /// Writes the changed text of `from` to `to`; true when the change found its place.
  bool copy(FILE* from, FILE* to) {
    LineWalker line(from);
    while (line.next()) {
      if (keeps(line, to)) fprintf(to, "%s\n", line.text());
    }
    if (!found_ && key_ != nullptr) fprintf(to, "[%s]\n", section_);
    return done_ || write_entry(to);
  }

 private:
  bool keeps(const LineWalker& line, FILE* to) {
    if (done_) return true;
    if (found_) return keeps_in_section(line, to);
    found_ = line.kind() == LineKind::header && same_name(line.name(), section_);
    return !found_ || key_ != nullptr;
  }

  bool keeps_in_section(const LineWalker& line, FILE* to) {
    if (line.ends_section()) {
      write_entry(to);
      done_ = true;
      return true;
    }
    if (line.kind() == LineKind::comment) return true;
    if (key_ == nullptr) return false;
    done_ = line.kind() == LineKind::entry && same_name(line.name(), key_);
    if (done_) write_entry(to);
    return !done_;
  }

  /// False when the change is a deletion, which has nothing to write.
  bool write_entry(FILE* to) {
    if (key_ == nullptr || value_ == nullptr) return false;
    fprintf(to, "%s=%s\n", key_, value_);
    return true;
  }

  const char* section_;
  const char* key_;
  const char* value_;
  bool found_ = false;
  bool done_ = false;
};

/// Closing flushes, so that a full disk may show only then.
bool close_written(FILE* file) {
  const bool good = ferror(file) == 0;
  return fclose(file) == 0 && good;
}

bool create_file(const char* section, const char* key, const char* value, const char* file) {
  FILE* to = fopen(file, "we");
  if (to == nullptr) return false;
  fprintf(to, "[%s]\n%s=%s\n", section, key, value);
  return close_written(to);
}

bool write_over(const char* file, FILE* text) {
  FILE* to = fopen(file, "wbe");
  if (to == nullptr) return false;
  rewind(text);
  filecopy(to, text);
  return close_written(to) && ferror(text) == 0;
}

}  // namespace

int WritePrivateProfileString(const char* section, const char* key, const char* value, const char* file) {
  if (section == nullptr || file == nullptr) return 0;
  FILE* from = fopen(file, "r+e");
  if (from == nullptr) {
    // It may well be there then, and making it would empty it.
    if (errno == ENOMEM || errno == EMFILE || errno == ENFILE || errno == EIO) return 0;
    return key != nullptr && value != nullptr && create_file(section, key, value, file) ? 1 : 0;
  }
  FILE* text = tmpfile();
  if (text == nullptr) {
    fclose(from);
    return 0;
  }
  const bool changed = Change(section, key, value).copy(from, text);
  // Opening the file for writing empties it, so the new text has to be complete by now.
  // Lines end early, too, when memory for one runs out.
  const bool complete = feof(from) != 0 && ferror(from) == 0 && fflush(text) == 0 && ferror(text) == 0;
  fclose(from);
  const bool written = complete && write_over(file, text);
  fclose(text);
  return written && changed ? 1 : 0;
}
