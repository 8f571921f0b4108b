#pragma once

#include <sys/stat.h>

#include <cstdint>

namespace vostrand {

/// When a file was modified, in ns since the epoch; before it below 0. Outside of the years 1678 to 2261 the
/// number is another, though the same for the same time.
inline std::int64_t ModifiedNs(const struct stat& status) {
  const auto seconds = static_cast<std::uint64_t>(status.st_mtim.tv_sec);
  return static_cast<std::int64_t>(seconds * 1'000'000'000U +
                                   static_cast<std::uint64_t>(status.st_mtim.tv_nsec));
}

}  // namespace vostrand
