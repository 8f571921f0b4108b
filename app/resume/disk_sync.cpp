#include "resume/disk_sync.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace vostrand {

DiskSync::DiskSync(int file) : file_(file) {
  try {
    thread_ = std::thread([this] { Work(); });
  } catch (const std::system_error&) {  // Then the event loop waits for the disk.
  }
}

DiskSync::~DiskSync() {
  Finish();
  {
    const std::lock_guard lock(mutex_);
    ends_ = true;
  }
  changed_.notify_all();
  if (thread_.joinable()) thread_.join();
}

void DiskSync::Request() {
  if (!thread_.joinable()) {
    if (fdatasync(file_) != 0 && error_ == 0) error_ = errno;
    return;
  }
  {
    const std::lock_guard lock(mutex_);
    ++requested_;
  }
  changed_.notify_all();
}

int DiskSync::Finish() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return done_ == requested_; });
  return error_;
}

void DiskSync::Work() {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return ends_ || done_ < requested_; });
    if (ends_) return;
    const long served = requested_;
    lock.unlock();
    const int error = fdatasync(file_) == 0 ? 0 : errno;
    lock.lock();
    done_ = served;
    if (error_ == 0) error_ = error;
    changed_.notify_all();
  }
}

}  // namespace vostrand
