// A statement's text is what joins it to its weight: the reader of weights puts the lines of a statement
// together with nothing between them, passes over lines with only a comment, and keeps a comment behind a
// part of a statement as if it were part of it. The same is done here, so that both find the same name. Runs
// of blanks, which count nowhere, become one.
#include "common/preference_lexer.h"

#include <algorithm>
#include <utility>

#include "common/text.h"

namespace toolchain {
namespace {

std::string OneBlankEach(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (!IsBlank(c))
      result += c;
    else if (!result.empty() && result.back() != ' ')
      result += ' ';
  }
  return result;
}

}  // namespace

std::optional<Statement> PreferenceLexer::Next() {
  Statement statement;
  text_.clear();
  while (SkipToToken()) {
    statement.tokens.push_back(Take());
    if (statement.tokens.back().kind != Token::Kind::end) continue;
    KeepText(column_);
    statement.text = OneBlankEach(text_);
    return statement;
  }
  if (!statement.tokens.empty()) throw statement.tokens.front().word.Error("the statement has no \";\"");
  return std::nullopt;
}

// Moves to the next token, comments and line ends skipped; false at the end of the file.
bool PreferenceLexer::SkipToToken() {
  for (; line_ < source_->lines.size(); ++line_, column_ = text_from_ = 0) {
    const std::string& line = source_->lines[line_];
    while (column_ < line.size() && IsBlank(line[column_])) ++column_;
    if (column_ < line.size() && line[column_] != '#') return true;
    const std::size_t comment = std::min(line.find('#', text_from_), line.size());
    const bool only_comment = IsBlank(std::string_view(line).substr(text_from_, comment - text_from_));
    const bool ends_in_comment =
        line.find(';', comment) != std::string::npos;  // No reader joins such a statement.
    if (!only_comment) KeepText(ends_in_comment ? comment : line.size());
  }
  return false;
}

Token PreferenceLexer::Take() {
  const std::string& line = source_->lines[line_];
  Token token{.kind = Token::Kind::word,
              .word = {.text = {}, .source = source_, .line = line_, .column = column_}};
  const char first = line[column_];
  if (first == '"') {
    // Readers of reports take a ";" in a name for the statement's end.
    const std::size_t end = line.find_first_of("\"#;", column_ + 1);
    if (end == std::string::npos || line[end] != '"')
      throw token.word.Error("the quote is not closed; a name holds no \"#\" and no \";\"");
    token.kind = Token::Kind::name;
    token.word.text = line.substr(column_ + 1, end - column_ - 1);
    column_ = end + 1;
  } else if (first == ';') {
    token.kind = Token::Kind::end;
    token.word.text = ";";
    ++column_;
  } else {
    const std::size_t end = std::min(line.find_first_of(" \t\r\f\v;\"#", column_), line.size());
    token.word.text = line.substr(column_, end - column_);
    column_ = end;
  }
  return token;
}

// Adds the current line's text up to column `to` to the statement's.
void PreferenceLexer::KeepText(std::size_t to) {
  text_.append(source_->lines[line_], text_from_, to - text_from_);
  text_from_ = to;
}

}  // namespace toolchain
