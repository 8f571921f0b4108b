#pragma once

#include <optional>
#include <string>
#include <vector>

#include "common/source_text.h"

namespace toolchain {

struct Token {
  enum class Kind { word, name, end };  ///< A bare word, a text in quotes, the ";".

  Kind kind = Kind::word;
  Word word;
};

/// A statement's tokens, its ";" last, and its text.
struct Statement {
  std::vector<Token> tokens;
  std::string text;
};

/// Splits a preference file into statements.
class PreferenceLexer {
 public:
  explicit PreferenceLexer(Source source) : source_(std::move(source)) {}

  /// The next statement; nothing at the end of the file. Fails where one has no ";" or a quote stays open.
  std::optional<Statement> Next();

 private:
  bool SkipToToken();
  Token Take();
  void KeepText(std::size_t to);

  Source source_;
  std::size_t line_ = 0;
  std::size_t column_ = 0;
  std::size_t text_from_ = 0;  // Where the part of the line begins that is not yet in the statement's text.
  std::string text_;
};

}  // namespace toolchain
