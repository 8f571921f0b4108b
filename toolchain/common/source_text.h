#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "common/failure.h"

namespace toolchain {

/// A text that the user wrote, kept so that errors can show where they are: a file, or the command line as
/// one line.
struct SourceText {
  std::string name;
  std::vector<std::string> lines;  ///< Without line ends.
  ExitCode exit_code = ExitCode::input;
};

using Source = std::shared_ptr<const SourceText>;

/// Reads a text file; `what` names it in the error: "preference file".
Source ReadSource(const std::string& path, const char* what);

/// A word of a source, or the place where one is missing.
struct Word {
  std::string text;
  Source source;
  std::size_t line = 0;
  std::size_t column = 0;

  /// The error "<file>:<line>:<column>: <message>", the source line and a caret under the word.
  Failure Error(std::string_view message) const;

  /// The word as a whole number between these bounds, or an error.
  int Number(int least, int most) const;
};

/// The words of a source, apart by blanks and line ends; double quotes hold a word with blanks together and
/// are not part of it.
std::vector<Word> SplitWords(const Source& source);

/// The arguments as words of the source "command line". All of them, and the name of the working directory,
/// must be UTF-8.
std::vector<Word> ArgumentWords(int argc, char** argv);

}  // namespace toolchain
