#pragma once

#include <QByteArray>
#include <string>

namespace vostrand {

/// Writes a whole record file, so that it is there whole or not at all: an earlier one stays until then. What
/// is no regular file (a pipe, /dev/stdout) is written to directly; a pipe that nobody reads is refused.
/// Returns what went wrong, naming the file; empty when nothing did.
std::string WriteFile(const std::string& path, const QByteArray& data);

/// Opens a file to write to as things happen, emptied; one that cannot take more does not block. Returns the
/// descriptor, which the caller closes, or -1, and then `why`, naming the file.
int OpenStream(const std::string& path, std::string& why);

}  // namespace vostrand
