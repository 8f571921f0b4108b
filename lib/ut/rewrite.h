#pragma once

#include <string_view>

enum class ut_rewrite_result {
  done,
  cannot_open,   ///< The file may not be written; nothing was changed.
  cannot_write,  ///< The new text could not be written.
};

/// Replaces the content of the existing file at `path`, which may be a symbolic link, in such a way that a
/// full disk or a crash at any moment leaves the old text or the new one. Owner, permissions and the link
/// stay; another hard link keeps the old text. Where no file can be made beside it, the text is written in
/// place once room for it is found, and only a crash in that moment leaves a mixture. A file that holds
/// `text` already is not touched.
ut_rewrite_result ut_rewrite_file(const char* path, std::string_view text);
