#pragma once

#include <filesystem>

namespace vostrand {

/// Whether both name one file or folder, which is there.
bool IsSame(const std::filesystem::path& a, const std::filesystem::path& b);

/// Whether the file, or a link of this name that leads to it, lies in the folder at whatever depth. The file
/// itself need not be there, its folder must.
bool LiesIn(const std::filesystem::path& folder, const std::filesystem::path& file);

}  // namespace vostrand
