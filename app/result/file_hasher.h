#pragma once

#include <QCryptographicHash>
#include <QFile>
#include <QTimer>
#include <functional>

#include "result/sweep_result.h"

namespace vostrand {

/// Hashes files with SHA-256 in the event loop, about a megabyte in each turn, so that display and cancel
/// never wait for a large file. One list at a time; needs the application object.
class FileHasher {
 public:
  /// Hears the records in the order given; may start or destroy the hasher.
  using Done = std::function<void(std::vector<FileRecord>)>;
  using Parts = std::vector<std::vector<std::string>>;

  FileHasher();
  /// Fills size, time of change and hash of every record, then calls `done` from the event loop. Size -1 and
  /// no hash: missing, not readable, or no regular file; only these are opened. Where `parts` lists files for
  /// a record, their contents are hashed as one: sizes add up, the latest change counts, none may be missing.
  void Start(std::vector<FileRecord> files, Done done, Parts parts = {});
  /// Calls `done` at once if anything is going on; what was not read to its end has no hash, and no size of
  /// -1.
  void Cancel();

 private:
  void Turn();
  bool Open(const std::string& path, FileRecord& record);

  std::vector<FileRecord> records_;
  Parts parts_;             // As many as records.
  std::size_t record_ = 0;  // Being read.
  std::size_t part_ = 0;    // Of it, the next to be opened.
  QFile file_;
  QCryptographicHash hash_{QCryptographicHash::Sha256};
  QTimer turns_;
  Done done_;
};

}  // namespace vostrand
