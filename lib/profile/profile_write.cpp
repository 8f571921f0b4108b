#include "profile/profile_file.h"

#include "profile/profile_lines.h"

namespace {

using orlo::vostrand_lib::profile::LineKind;
using orlo::vostrand_lib::profile::LineWalker;
using orlo::vostrand_lib::profile::sameName;

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
    return done_ || writeEntry(to);
  }

 private:
  bool keeps(const LineWalker& line, FILE* to) {
    if (done_) return true;
    if (found_) return keepsInSection(line, to);
    found_ = line.kind() == LineKind::header && sameName(line.name(), section_);
    return !found_ || key_ != nullptr;
  }

  bool keepsInSection(const LineWalker& line, FILE* to) {
    if (line.endsSection()) {
      writeEntry(to);
      done_ = true;
      return true;
    }
    if (line.kind() == LineKind::comment) return true;
    if (key_ == nullptr) return false;
    done_ = line.kind() == LineKind::entry && sameName(line.name(), key_);
    if (done_) writeEntry(to);
    return !done_;
  }

  /// False when the change is a deletion, which has nothing to write.
  bool writeEntry(FILE* to) {
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
bool closeWritten(FILE* file) {
  const bool good = ferror(file) == 0;
  return fclose(file) == 0 && good;
}

bool createFile(const char* section, const char* key, const char* value, const char* file) {
  FILE* to = fopen(file, "we");
  if (to == nullptr) return false;
  fprintf(to, "[%s]\n%s=%s\n", section, key, value);
  return closeWritten(to);
}

bool writeOver(const char* file, FILE* text) {
  FILE* to = fopen(file, "wbe");
  if (to == nullptr) return false;
  rewind(text);
  filecopy(to, text);
  return closeWritten(to) && ferror(text) == 0;
}

}  // namespace

int WritePrivateProfileString(const char* section, const char* key, const char* value, const char* file) {
  if (section == nullptr || file == nullptr) return 0;
  FILE* from = fopen(file, "r+e");
  if (from == nullptr) {
    return key != nullptr && value != nullptr && createFile(section, key, value, file) ? 1 : 0;
  }
  FILE* text = tmpfile();
  if (text == nullptr) {
    fclose(from);
    return 0;
  }
  const bool changed = Change(section, key, value).copy(from, text);
  // Opening the file for writing empties it, so the new text has to be complete by now.
  const bool complete = ferror(from) == 0 && fflush(text) == 0 && ferror(text) == 0;
  fclose(from);
  const bool written = complete && writeOver(file, text);
  fclose(text);
  return written && changed ? 1 : 0;
}
