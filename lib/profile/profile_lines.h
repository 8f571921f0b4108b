#pragma once

#include <stddef.h>
#include <stdio.h>

namespace orlo::vostrand_lib::profile {

/// Longer lines are taken in pieces, so no key and no value of a file is longer than this buffer.
constexpr size_t lineSize = 1024;

/// Compares section names and keys; only ASCII letters are folded, whatever the locale.
bool sameName(const char* a, const char* b);

enum class LineKind { blank, comment, header, brokenHeader, entry };

/// Goes through the lines of a profile file. Reader and writer both see the file through this, so that a
/// written key is always found again.
class LineWalker {
 public:
  explicit LineWalker(FILE* file) : file_(file) {}

  /// Moves to the next line that is not just a newline. False at the end of the file.
  bool next();
  /// Moves to the next closed section header.
  bool nextHeader();
  /// Moves to the header of the section's first occurrence.
  bool enterSection(const char* section);
  /// Moves to the next entry of the current section. False when the section ends; the walk ends there, too.
  bool nextEntry();

  LineKind kind() const { return kind_; }
  /// A line that starts with "[" ends the section above it, even when it is no header itself.
  bool endsSection() const { return kind_ == LineKind::header || kind_ == LineKind::brokenHeader; }
  /// The trimmed line.
  const char* text() const { return text_; }
  /// The name of a header, the key of an entry.
  const char* name() const { return name_; }
  /// The trimmed and unquoted text after the first "=" of an entry; null without one. Uses up the text.
  const char* takeValue();

 private:
  void classify();

  FILE* file_;
  LineKind kind_ = LineKind::blank;
  char text_[lineSize] = "";
  char name_[lineSize] = "";
};

}  // namespace orlo::vostrand_lib::profile
