#pragma once

#include "observe/progress_text.h"

namespace vostrand {

/// The journal meant by a path: a file itself, or the newest journal below a folder's .vostrand; empty when
/// there is none.
std::string FindJournal(const std::string& path);

/// A running program holds the lock beside this journal.
bool IsLocked(const std::string& journal_file);

/// How far the sweep of a journal has come, and whether it goes on: while `locked` it does. Lines that are
/// torn or unknown are skipped; empty when it is no journal. `now` is in seconds since the epoch.
std::string StatusText(const std::string& journal, bool locked, double now, const Screen& screen);

}  // namespace vostrand
