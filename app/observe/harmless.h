#pragma once

#include <string>
#include <string_view>

namespace vostrand {

/// Text with names in it that nobody has looked at, as it may go to a terminal: control characters but line
/// ends and tabs, in any encoding that a terminal may take them from, become "?". All else stays, whatever
/// the locale. Nobody means the others in a name, and a terminal obeys them.
std::string Harmless(std::string_view text);

/// The same on one line: line ends and tabs become "?", too.
std::string HarmlessLine(std::string_view text);

}  // namespace vostrand
