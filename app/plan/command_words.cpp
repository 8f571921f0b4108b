#include "plan/command_words.h"

#include <algorithm>

namespace vostrand {

std::vector<std::string> SplitCommand(const std::string& command) {
  std::vector<std::string> words;
  std::string word;
  bool in_word = false;
  bool quoted = false;
  for (const char c : command) {
    if (c == '"') {
      quoted = !quoted;
      in_word = true;  // "" is a word too.
    } else if (c == ' ' && !quoted) {
      if (in_word) words.push_back(word);
      word.clear();
      in_word = false;
    } else {
      word += c;
      in_word = true;
    }
  }
  if (in_word) words.push_back(word);
  return words;
}

bool FitsCommandLine(const std::string& name) {
  return std::none_of(name.begin(), name.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte <= ' ' || byte == 127 || c == '"' || c == '\'';
  });
}

}  // namespace vostrand
