#include "records/event_log.h"

#include <poll.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <cerrno>
#include <cstring>
#include <utility>

#include "records/write_file.h"

namespace vostrand {
namespace {

constexpr qsizetype most_waiting = 1 << 20;
constexpr int patience_ms = 1000;

}  // namespace

EventLog::EventLog(std::string path) : path_(std::move(path)) {
  file_ = OpenStream(path_, problem_);
  if (file_ < 0) return;
  writable_ = std::make_unique<QSocketNotifier>(QSocketNotifier::Write);
  writable_->setSocket(file_);
  QObject::connect(writable_.get(), &QSocketNotifier::activated, [this] { WriteWaiting(); });
  writable_->setEnabled(false);
}

void EventLog::Begin(const EventHeader& header) {
  runs_ = header.runs;
  if (file_ >= 0) Put(JsonLine(ToJson(header)));
}

EventLog::~EventLog() {
  if (file_ >= 0) Close();
}

void EventLog::On(const Event& event) {
  if (file_ < 0) return;
  Put(JsonLine(ToJson(event, event.run < runs_.size() ? runs_[event.run] : "")));
  if (event.kind == Event::Kind::sweep_finished) WaitForReader();
}

std::string EventLog::Message() const {
  if (!problem_.empty() || left_out_ == 0) return problem_;
  return std::to_string(left_out_) + " events are not in " + path_ + ": its reader was too slow";
}

void EventLog::Put(const QByteArray& line) {
  if (waiting_.size() + line.size() > most_waiting)
    ++left_out_;
  else
    waiting_ += line;
  WriteWaiting();
}

void EventLog::WriteWaiting() {
  while (file_ >= 0 && !waiting_.isEmpty()) {
    const ssize_t count = write(file_, waiting_.data(), static_cast<std::size_t>(waiting_.size()));
    if (count >= 0) {
      waiting_.remove(0, count);
    } else if (errno == EAGAIN) {
      break;
    } else if (errno != EINTR) {
      problem_ =
          "cannot write " + path_ + ": " + (errno == EPIPE ? "its reader has gone" : std::strerror(errno));
      Close();
    }
  }
  if (file_ >= 0) writable_->setEnabled(!waiting_.isEmpty());
}

void EventLog::WaitForReader() {
  const QDeadlineTimer deadline(patience_ms);
  while (file_ >= 0 && !waiting_.isEmpty() && !deadline.hasExpired()) {
    pollfd file = {file_, POLLOUT, 0};
    poll(&file, 1, static_cast<int>(deadline.remainingTime()));
    WriteWaiting();
  }
  if (file_ < 0 || waiting_.isEmpty()) return;
  left_out_ += static_cast<std::size_t>(waiting_.count('\n'));
  Close();
}

void EventLog::Close() {
  writable_->setEnabled(false);
  close(std::exchange(file_, -1));
}

}  // namespace vostrand
