#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

namespace vostrand {

/// Brings an open file to the disk in a thread of its own, since a disk takes milliseconds for that, and the
/// event loop has better to do. One that asks while the disk is at work is served by the next turn.
class DiskSync {
 public:
  /// `file` stays open as long as this object lives.
  explicit DiskSync(int file);
  /// Waits as Finish does.
  ~DiskSync();
  DiskSync(const DiskSync&) = delete;
  DiskSync& operator=(const DiskSync&) = delete;

  /// What has been written so far shall be on the disk soon.
  void Request();
  /// Waits until all that was asked for is there. Returns the errno of the first failure, 0 when there was
  /// none.
  int Finish();

 private:
  void Work();

  const int file_;
  std::mutex mutex_;
  std::condition_variable changed_;
  long requested_ = 0;
  long done_ = 0;
  int error_ = 0;
  bool ends_ = false;
  std::thread thread_;
};

}  // namespace vostrand
