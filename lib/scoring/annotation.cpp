// The statement is matched by hand, byte by byte, rather than by a regular expression: net names may hold
// bytes that are no characters of the host's locale, and a file whose statements never end makes one
// statement of any size, on which general matchers take memory or stack without bound. The test compares this
// reader with the two expressions that define the form.
#include "scoring/annotation.h"

#include <algorithm>

namespace orlo::vostrand_lib {
namespace {

constexpr std::string_view blanks = " \t";
constexpr std::string_view first_characters = "PERIOD|FREQUENCY|INPUT_SETUP|CLOCK_TO_OUT";
constexpr std::string_view number_characters = "0123456789.\\";

bool is_one_of(std::string_view set, std::string_view text) {
  return !text.empty() && set.find(text.front()) != std::string_view::npos;
}

// Takes the leading characters of `set` off `text` and returns them.
std::string_view take(std::string_view set, std::string_view& text) {
  const std::size_t end = std::min(text.find_first_not_of(set), text.size());
  const std::string_view taken = text.substr(0, end);
  text.remove_prefix(end);
  return taken;
}

struct pair {
  char letter;
  std::string_view number;
};

// "w 2": letter, blanks, number. Nothing is taken off `text` when it begins otherwise.
std::optional<pair> take_pair(std::string_view& text) {
  if (!is_one_of("wp", text)) return std::nullopt;
  std::string_view rest = text.substr(1);
  if (take(blanks, rest).empty()) return std::nullopt;
  const std::string_view number = take(number_characters, rest);
  if (number.empty()) return std::nullopt;
  const char letter = text.front();
  text = rest;
  return pair{letter, number};
}

bool ends_or_stands_apart(std::string_view text) {
  return text.empty() || is_one_of(blanks, text);
}

void store(Annotation& annotation, const pair& read) {
  std::optional<std::string_view>& slot = read.letter == 'w' ? annotation.weight : annotation.penalty;
  if (!slot) slot = read.number;
}

}  // namespace

std::optional<Annotation> ReadAnnotation(std::string_view statement) {
  take(blanks, statement);
  const std::size_t end = statement.find(';');
  if (!is_one_of(first_characters, statement) || end == std::string_view::npos) return std::nullopt;
  Annotation annotation;
  annotation.preference = statement.substr(0, end);

  std::string_view rest = statement.substr(end + 1);
  take(blanks, rest);
  if (!is_one_of("#", rest)) return std::nullopt;
  rest.remove_prefix(1);
  take(blanks, rest);
  const std::optional<pair> first = take_pair(rest);
  if (!first || !ends_or_stands_apart(rest)) return std::nullopt;
  store(annotation, *first);

  if (!take(blanks, rest).empty()) {
    const std::optional<pair> second = take_pair(rest);
    if (second && ends_or_stands_apart(rest)) store(annotation, *second);
  }
  return annotation;
}

}  // namespace orlo::vostrand_lib
