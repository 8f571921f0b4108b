#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "common/source_text.h"

namespace toolchain {

/// An option that a program knows.
struct OptionRule {
  std::string_view name;  ///< With its dash.
  bool takes_value;
};

struct Option {
  Word name;
  Word value;  ///< As the user wrote it; without text for an option that takes none.
};

struct Arguments {
  std::vector<Option> options;  ///< In the order given, those of an options file in the place of its "-f".
  std::vector<Word> operands;
  std::vector<std::string> files;  ///< The options files that were read.
};

/// Sorts the words of a command line. "-f FILE" reads more options from a file, whose words may stand on any
/// number of lines; "-gui", "-msg FILE", "-msgset FILE" and "-stopzero" are accepted everywhere and dropped.
/// What is in neither list, a missing value, and operands in a file are errors.
Arguments SortArguments(const std::vector<Word>& words, const std::vector<OptionRule>& rules);

/// The error that an operand is missing behind the last word: "usage: par ...".
Failure UsageError(const std::string& usage);

}  // namespace toolchain
