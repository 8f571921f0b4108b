#pragma once

#include <optional>
#include <string_view>

namespace orlo::vostrand_lib {

/// The weight and penalty that a preference statement carries in the comment behind its ";". The views look
/// into the statement.
struct Annotation {
  std::string_view preference;              ///< The text before the ";".
  std::optional<std::string_view> weight;   ///< The number behind "w", when there is one.
  std::optional<std::string_view> penalty;  ///< The number behind "p", when there is one.
};

/// Reads the annotation of one whole statement, trimmed at both ends:
///
///     FREQUENCY NET "clk" 100 MHz ; # w 2 p 3 whatever follows
///
/// The preference begins with one of the characters of "PERIOD|FREQUENCY|INPUT_SETUP|CLOCK_TO_OUT" and holds
/// no ";". Of the two pairs the second may be missing; when both have one letter, the first counts. Text
/// behind the pairs must stand apart from them by a blank or tab; a second pair with text glued to it is such
/// text itself. Returns nothing for any other statement.
std::optional<Annotation> ReadAnnotation(std::string_view statement);

}  // namespace orlo::vostrand_lib
