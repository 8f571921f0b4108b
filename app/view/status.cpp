#include "view/status.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QDateTime>
#include <QJsonDocument>
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <sstream>

#include "records/event_json.h"

namespace vostrand {

std::string FindJournal(const std::string& path) {
  namespace fs = std::filesystem;
  std::error_code error;
  if (!fs::is_directory(path, error)) return path;
  std::pair newest(fs::file_time_type::min(), std::string());
  for (const fs::directory_entry& sweep : fs::directory_iterator(fs::path(path) / ".vostrand", error)) {
    const fs::path journal = sweep.path() / "journal.jsonl";
    const fs::file_time_type time = fs::last_write_time(journal, error);  // The earliest when there is none.
    newest = std::max(newest, std::pair(time, error ? std::string() : journal.string()));
  }
  return newest.second;
}

bool IsLocked(const std::string& journal_file) {
  const std::string lock = std::filesystem::path(journal_file).replace_filename("lock").string();
  const int file = open(lock.c_str(), O_RDONLY | O_CLOEXEC);
  const bool locked = file >= 0 && flock(file, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  if (file >= 0) close(file);
  return locked;
}

std::string StatusText(const std::string& journal, bool locked, double now, const Screen& screen) {
  std::istringstream lines(journal);
  const auto next = [&] {
    std::string line;
    std::getline(lines, line);
    return QJsonDocument::fromJson(QByteArray::fromStdString(line)).object();
  };
  EventHeader header;
  if (!FromJson(next(), header) || header.format != "vostrand-journal") return {};
  const int most_jobs = std::max(static_cast<int>(header.runs.size()), 1);  // The file may say anything.
  SweepState state(header.runs, header.steps,
                   static_cast<std::size_t>(std::clamp(header.jobs, 1, most_jobs)));
  Event event(Event::Kind::sweep_started);
  double seconds = 0;
  bool ended = false;
  while (lines.good()) {
    if (!FromJson(next(), event)) continue;
    state.On(event);
    seconds = event.at_seconds;
    ended = event.kind == Event::Kind::sweep_finished;
  }
  std::string verdict = "finished";
  if (locked) {
    const QDateTime started = QDateTime::fromString(QString::fromStdString(header.started), Qt::ISODate);
    seconds = std::max(seconds, now - static_cast<double>(started.toSecsSinceEpoch()));
    verdict = "running";
  } else if (!ended || state.stopped_because == "interrupted") {
    verdict = "interrupted: vostrand --resume goes on";
    Event stop(Event::Kind::stopping);
    stop.message = "interrupted";
    if (!state.stopping) state.On(stop);
    while (!state.running.empty()) {  // They ended with the program.
      Event cut_off(Event::Kind::run_finished, state.running.front().run);
      cut_off.status = cancelled_status;
      state.On(cut_off);
    }
  }
  std::string text;
  for (const std::string& line : ProgressText(state, seconds, screen)) text += line + "\n";
  return text + verdict + "\n";
}

}  // namespace vostrand
