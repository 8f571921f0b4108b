#pragma once

#include <cstdarg>
#include <memory>
#include <string>

/// printf-style formatting into a string of any length, with "." as decimal point in every locale.
std::string ut_vformat(const char* format, va_list arguments) __attribute__((format(printf, 1, 0)));

/// printf-style formatting into storage of the calling thread. The text is valid until the thread's next
/// call; the caller never frees it. A thread that has called it keeps the library loaded until it ends, so
/// nothing on the road of a tool run does.
char* neoform(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// A copy of `text`, which must not be null; the caller gives it to `free`. Null when there is no memory.
char* ut_strdup(const char* text);
