#pragma once

#include <cstddef>
#include <string_view>

/// Position of the first `part`, of at least two characters, in `text`; npos when there is none. The same as
/// `text.find(part)`, for texts of many kilobytes.
std::size_t ut_find(std::string_view text, std::string_view part);
