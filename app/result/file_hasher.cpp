#include "result/file_hasher.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <utility>

#include "result/modified.h"

namespace vostrand {

FileHasher::FileHasher() {
  QObject::connect(&turns_, &QTimer::timeout, [this] { Turn(); });
}

void FileHasher::Start(std::vector<FileRecord> files, Done done, Parts parts) {
  records_ = std::move(files);
  parts_ = std::move(parts);
  parts_.resize(records_.size());
  for (std::size_t i = 0; i < records_.size(); ++i) {
    records_[i].size = records_[i].modified_ns = 0;
    records_[i].sha256.clear();
    if (parts_[i].empty()) parts_[i] = {records_[i].path};
  }
  done_ = std::move(done);
  turns_.start(0);
}

void FileHasher::Cancel() {
  if (!turns_.isActive()) return;
  turns_.stop();
  file_.close();
  hash_.reset();
  record_ = part_ = 0;
  const Done done = std::exchange(done_, nullptr);
  done(std::exchange(records_, {}));  // Last, since it may destroy this object.
}

void FileHasher::Turn() {
  for (std::int64_t budget = 1 << 20; budget > 0 && record_ < records_.size();) {
    FileRecord& record = records_[record_];
    if (file_.isOpen()) {
      const QByteArray bytes = file_.read(budget);
      hash_.addData(bytes);
      record.size += bytes.size();
      budget -= bytes.size();
      if (!bytes.isEmpty()) continue;
      if (file_.error() != QFile::NoError) record.size = -1;
      file_.close();
    } else if (record.size >= 0 && part_ < parts_[record_].size()) {
      if (!Open(parts_[record_][part_++], record)) record.size = -1;
      budget -= 1 << 14;  // At most 64 files in a turn.
    } else {
      if (record.size >= 0) record.sha256 = hash_.result().toHex().toStdString();
      hash_.reset();
      ++record_;
      part_ = 0;
    }
  }
  if (record_ == records_.size()) Cancel();
}

bool FileHasher::Open(const std::string& path, FileRecord& record) {
  struct stat status = {};
  // Looked at first, since opening alone can wake who waits at the other end of a pipe.
  if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  const std::int64_t modified_ns = ModifiedNs(status);
  if (part_ == 1 || modified_ns > record.modified_ns)
    record.modified_ns = modified_ns;  // Of the parts the last.
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  return file >= 0 && file_.open(file, QFile::ReadOnly | QFile::Unbuffered, QFile::AutoCloseHandle);
}

}  // namespace vostrand
