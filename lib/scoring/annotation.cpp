// The statement is matched by hand, byte by byte, rather than by a regular expression: net names may hold
// bytes that are no characters of the host's locale, and a file whose statements never end makes one
// statement of any size, on which general matchers take memory or stack without bound. The test compares this
// reader with the two expressions that define the form.
#include "scoring/annotation.h"

#include <algorithm>

namespace orlo::vostrand_lib {
namespace {

constexpr std::string_view blanks = " \t";
// As bracket expressions of characters: any of these letters, "|" too, and a backslash among the digits.
constexpr std::string_view first_characters = "PERIOD|FREQUENCY|INPUT_SETUP|CLOCK_TO_OUT";
constexpr std::string_view number_characters = "0123456789.\\";

bool BeginsWithOneOf(std::string_view set, std::string_view text) {
  return !text.empty() && set.find(text.front()) != std::string_view::npos;
}

// Takes the leading characters of `set` off `text` and returns them.
std::string_view Take(std::string_view set, std::string_view& text) {
  const std::size_t end = std::min(text.find_first_not_of(set), text.size());
  const std::string_view taken = text.substr(0, end);
  text.remove_prefix(end);
  return taken;
}

struct Pair {
  char letter;
  std::string_view number;
};

// "w 2": letter, blanks, number. Nothing is taken off `text` when it begins otherwise.
std::optional<Pair> TakePair(std::string_view& text) {
  if (!BeginsWithOneOf("wp", text)) return std::nullopt;
  std::string_view rest = text.substr(1);
  if (Take(blanks, rest).empty()) return std::nullopt;
  const std::string_view number = Take(number_characters, rest);
  if (number.empty()) return std::nullopt;
  const char letter = text.front();
  text = rest;
  return Pair{letter, number};
}

bool EndsOrStandsApart(std::string_view text) {
  return text.empty() || BeginsWithOneOf(blanks, text);
}

void Store(Annotation& annotation, const Pair& read) {
  std::optional<std::string_view>& slot = read.letter == 'w' ? annotation.weight : annotation.penalty;
  if (!slot) slot = read.number;
}

}  // namespace

std::optional<Annotation> ReadAnnotation(std::string_view statement) {
  Take(blanks, statement);
  const std::size_t end = statement.find(';');
  if (!BeginsWithOneOf(first_characters, statement) || end == std::string_view::npos) return std::nullopt;
  Annotation annotation;
  annotation.preference = statement.substr(0, end);

  std::string_view rest = statement.substr(end + 1);
  Take(blanks, rest);
  if (!BeginsWithOneOf("#", rest)) return std::nullopt;
  rest.remove_prefix(1);
  Take(blanks, rest);
  const std::optional<Pair> first = TakePair(rest);
  if (!first || !EndsOrStandsApart(rest)) return std::nullopt;
  Store(annotation, *first);

  if (!Take(blanks, rest).empty()) {
    const std::optional<Pair> second = TakePair(rest);
    if (second && EndsOrStandsApart(rest)) Store(annotation, *second);
  }
  return annotation;
}

}  // namespace orlo::vostrand_lib
