#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vostrand {

/// Seconds in "90s", "20m", "2h", "1.5h" or "45" (seconds); nothing for any other text, a negative or an
/// endless one. At most 20 days, which every timer here can count.
std::optional<double> ReadDuration(const std::string& text);

/// Bytes in "512M", "4G", "1.5G" or "65536"; K, M, G and T are powers of 1024, in either case, with or
/// without "B" or "iB" behind. Nothing for any other text or for less than one byte.
std::optional<std::int64_t> ReadSize(const std::string& text);

}  // namespace vostrand
