#pragma once

#include <QByteArray>
#include <QSocketNotifier>
#include <memory>
#include <string>
#include <vector>

#include "records/event_json.h"

namespace vostrand {

/// Writes every event as a line of JSON as it happens, to a file that it empties or to a named pipe that
/// somebody reads. A reader never holds up the sweep: of what a slow one has not taken, 1 MB is kept, then
/// whole lines are left out. The program must ignore SIGPIPE. Writes on between events where there is an
/// event loop.
class EventLog final : public Observer {
 public:
  /// Failed() at once when the file cannot be opened.
  explicit EventLog(std::string path);
  ~EventLog() override;
  EventLog(const EventLog&) = delete;
  EventLog& operator=(const EventLog&) = delete;

  /// In front of the first event.
  void Begin(const EventHeader& header);
  /// With the sweep's end, a slow reader is waited for: a second at most.
  void On(const Event& event) override;

  /// Some lines are not in the file; Message() says why.
  bool Failed() const { return !Message().empty(); }
  std::string Message() const;

 private:
  void Put(const QByteArray& line);
  void WriteWaiting();
  void WaitForReader();
  void Close();

  std::string path_;
  std::vector<std::string> runs_;
  int file_ = -1;       // -1 when nothing more can be written.
  QByteArray waiting_;  // From the first byte that the file has not taken.
  std::size_t left_out_ = 0;
  std::string problem_;
  std::unique_ptr<QSocketNotifier> writable_;
};

}  // namespace vostrand
