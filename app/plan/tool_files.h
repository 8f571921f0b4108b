#pragma once

#include <string>
#include <vector>

namespace vostrand {

/// The files that the tool arguments name, as planning uses them.
struct ToolFiles {
  std::vector<std::string> written;  ///< Planning writes, empties or removes these, or files beside them.
  std::vector<std::string> read;     ///< Planning reads these, or looks whether they can be read.
};

/// The files of a command line in any of its three forms. Empty for one that planning refuses.
ToolFiles FilesOf(const std::vector<std::string>& tool_arguments);

}  // namespace vostrand
