#pragma once

#include <string>
#include <vector>

namespace vostrand {

/// A planned command line split into words by blanks and double quotes. No shell ever sees it: a file name is
/// never code.
std::vector<std::string> SplitCommand(const std::string& command);

/// True when a planned command line can carry the name: it holds no white space and no quotes, since those
/// are not quoted in command lines, and no control characters, which a terminal must not get.
bool FitsCommandLine(const std::string& name);

}  // namespace vostrand
