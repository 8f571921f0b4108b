#pragma once

#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>

namespace orlo::vostrand_lib::profile {

/// Room for a name or a value with its NUL; a longer one is cut. Lines themselves are read whole.
constexpr size_t name_size = 1024;

/// Compares section names and keys; only ASCII letters are folded, whatever the locale.
bool same_name(const char* a, const char* b);

enum class LineKind { blank, comment, header, broken_header, entry };

/// Goes through the lines of a profile file. Reader and writer both see the file through this, so that a
/// written key is always found again.
class LineWalker {
 public:
  explicit LineWalker(FILE* file) : file_(file) {}
  ~LineWalker() { free(text_); }
  LineWalker(const LineWalker&) = delete;
  LineWalker& operator=(const LineWalker&) = delete;

  /// Moves to the next line that is not just a newline. False at the end of the file.
  bool next();
  /// Moves to the next closed section header.
  bool next_header();
  /// Moves to the header of the section's first occurrence.
  bool enter_section(const char* section);
  /// Moves to the next entry of the current section. False when the section ends; the walk ends there, too.
  bool next_entry();

  LineKind kind() const { return kind_; }
  /// A line that starts with "[" ends the section above it, even when it is no header itself.
  bool ends_section() const { return kind_ == LineKind::header || kind_ == LineKind::broken_header; }
  /// The trimmed line.
  const char* text() const { return text_; }
  /// The name of a header, the key of an entry.
  const char* name() const { return name_; }
  /// The trimmed and unquoted text after the first "=" of an entry; null without one. Uses up the text.
  const char* take_value();

 private:
  void classify();

  FILE* file_;
  LineKind kind_ = LineKind::blank;
  char* text_ = nullptr;  // getline's
  size_t text_room_ = 0;
  char name_[name_size] = "";
};

}  // namespace orlo::vostrand_lib::profile
