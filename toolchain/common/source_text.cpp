#include "common/source_text.h"

#include <QString>
#include <charconv>
#include <filesystem>

#include "common/files.h"
#include "common/text.h"

namespace toolchain {
namespace {

bool IsUtf8(const std::string& text) {
  return QString::fromStdString(text).toStdString() == text;
}

}  // namespace

Source ReadSource(const std::string& path, const char* what) {
  const std::string text = ReadFile(path, what);
  auto source = std::make_shared<SourceText>();
  source->name = path;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    source->lines.push_back(text.substr(at, end - at));
    if (source->lines.back().ends_with('\r')) source->lines.back().pop_back();
    at = end + 1;
  }
  return source;
}

Failure Word::Error(std::string_view message) const {
  std::string where = source->name + ':';
  if (source->exit_code != ExitCode::usage) where += Format("%zu:%zu:", line + 1, column + 1);
  const std::string shown = line < source->lines.size() ? source->lines[line] : std::string();
  std::string indent;  // With the line's own tabs, so that the caret stands under its word.
  for (const char c : shown.substr(0, column)) indent += c == '\t' ? '\t' : ' ';
  return {source->exit_code, where + ' ' + std::string(message) + "\n  " + shown + "\n  " + indent + '^'};
}

int Word::Number(int least, int most) const {
  int value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end || value < least || value > most)
    throw Error(Format("expected a whole number from %d to %d", least, most));
  return value;
}

std::vector<Word> SplitWords(const Source& source) {
  std::vector<Word> words;
  for (std::size_t number = 0; number < source->lines.size(); ++number) {
    const std::string& line = source->lines[number];
    for (std::size_t at = 0; at < line.size();) {
      if (IsBlank(line[at])) {
        ++at;
        continue;
      }
      Word word{.text = {}, .source = source, .line = number, .column = at};
      bool quoted = false;
      for (; at < line.size() && (quoted || !IsBlank(line[at])); ++at)
        if (line[at] == '"')
          quoted = !quoted;
        else
          word.text += line[at];
      if (quoted) throw word.Error("a quote is not closed");
      words.push_back(word);
    }
  }
  return words;
}

std::vector<Word> ArgumentWords(int argc, char** argv) {
  auto source = std::make_shared<SourceText>();
  source->name = "command line";
  source->exit_code = ExitCode::usage;
  std::string line;
  std::vector<Word> words;
  for (int i = 1; i < argc; ++i) {
    words.push_back({.text = argv[i], .source = source, .line = 0, .column = line.size()});
    line.append(argv[i]) += ' ';
  }
  source->lines.push_back(line);
  for (const Word& word : words)
    if (!IsUtf8(word.text)) throw word.Error("not UTF-8: such a name would become another");
  std::error_code unknown;
  if (!IsUtf8(std::filesystem::current_path(unknown)))
    throw Failure(ExitCode::usage, "the name of the working directory is not UTF-8");
  return words;
}

}  // namespace toolchain
