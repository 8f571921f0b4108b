#pragma once

#include <stddef.h>
#include <stdio.h>

#include "export.h"

/// Profile (INI) files: "[section]" headers over "key=value" lines; docs/formats/profile_file.md has the
/// format.
///
/// Every function may be called from any thread: nothing is kept between calls and nothing is locked, so
/// callers that write a file while others use it have to arrange that among themselves. The locale has no
/// influence: white space is " \t\n\v\f\r" and only ASCII letters are folded. An output buffer must not
/// overlap an argument.

#ifdef __cplusplus
extern "C" {
#endif

/// Reads from `file` into `buffer` of `size` characters, which is always terminated when `size` is not 0.
///  - section and key: the key's value, cut to size - 1 characters. Returns its length.
///  - section, null key: the section's keys, each with its NUL, and one more NUL after the last.
///  - null section: the names of all sections, stored like keys.
/// A list returns its characters without the last two NULs; one that does not fit is cut, ends with two NULs
/// at the end of the buffer and returns size - 2 (0 for a smaller buffer). `defaultValue` (may be null) takes
/// the place of a missing section, key or "=" and of a list without an item. It is cut to size - 1 characters
/// first, then trimmed and unquoted. Returns 0 for a null `buffer` or `file`, for size 0 (buffer untouched),
/// and for a file that cannot be opened (buffer empty, whatever the default).
VOSTRAND_API size_t GetPrivateProfileString(const char* section, const char* key, const char* defaultValue,
                                            char* buffer, size_t size, const char* file);

/// The key's value as a decimal number, of which the low 32 bits are kept. `defaultValue` stands for a null
/// argument, a missing or empty value and any text that gives zero, other than "0" and text starting with
/// "00".
VOSTRAND_API int GetPrivateProfileInt(const char* section, const char* key, int defaultValue,
                                      const char* file);

/// Stores the section as "key=value" entries in `buffer` of `size` characters, each with its NUL, and one
/// more NUL after the last. Returns the characters stored, with the NUL of the last entry but not the final
/// one. What does not fit is cut: the buffer ends with two NULs and size - 2 is returned (0 for a smaller
/// buffer). A key that occurs twice is listed twice with its first value; at most 8190 characters of keys are
/// listed. Returns 0 for a null argument, size 0 (buffer untouched), a missing file and a section without
/// keys.
VOSTRAND_API size_t GetPrivateProfileSection(const char* section, char* buffer, size_t size,
                                             const char* file);

/// Sets `key` to `value` in `section`, adding the key, the section or the file where missing. A null `value`
/// deletes the key, a null `key` the whole section. Returns 1 when the key was set or deleted, or when the
/// section is followed by another one. Returns 0 otherwise (the file is rewritten even so), for a null
/// `section` or `file`, and when anything fails to open, read or write. The file itself is only touched once
/// the new text is complete in a temporary file.
VOSTRAND_API int WritePrivateProfileString(const char* section, const char* key, const char* value,
                                           const char* file);

/// Copies the rest of `from` to `to` in blocks of 512 bytes. Returns the bytes written of the last, partial
/// block: 0 when the rest was a multiple of 512, and for a null stream. Ask ferror() whether it went well.
VOSTRAND_API int filecopy(FILE* to, FILE* from);

/// Removes leading white space in place. Null is left alone.
VOSTRAND_API void rmlead(char* s);

/// Removes trailing white space in place. Null is left alone.
VOSTRAND_API void rmtrail(char* s);

/// Removes one pair of enclosing quotes, both single or both double, in place. Returns 1 when it did, else 0
/// (also for null).
VOSTRAND_API int rmquotes(char* s);

/// Removes one enclosing "[" and "]" in place. Returns 1 when it did, else 0 (also for null).
VOSTRAND_API int rmbrackets(char* s);

/// Copies the characters of `s` before the first of `delimiters` to `token`, at most tokenSize - 1, and
/// terminates it. Returns where to go on in `s`, past the delimiter and those that follow it, or null at the
/// end of `s`. Of the following ones, only the first may be the first character of `delimiters`. A token that
/// is cut skips nothing. Null arguments and an empty `s` give null and leave `token` alone. A `tokenSize`
/// below 2 stores an empty token and returns `s`, so `token` needs room for one character even then.
VOSTRAND_API const char* stptok(const char* s, char* token, size_t tokenSize, const char* delimiters);

#ifdef __cplusplus
}
#endif
