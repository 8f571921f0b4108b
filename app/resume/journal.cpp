#include "resume/journal.h"

#include <fcntl.h>
#include <unistd.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <utility>

#include "records/run_json.h"

namespace vostrand {
namespace {

constexpr const char* journal_format = "vostrand-journal";

// Names as hexadecimal: a file's name may hold bytes that are no text.
QJsonArray ToJson(const std::vector<KeptFile>& files) {
  QJsonArray array;
  for (const KeptFile& file : files)
    array.append(QJsonArray{QString::fromLatin1(QByteArray::fromStdString(file.name).toHex()),
                            static_cast<qint64>(file.size), static_cast<qint64>(file.modified_ns)});
  return array;
}

std::vector<KeptFile> FilesFromJson(const QJsonArray& array) {
  std::vector<KeptFile> files;
  for (const auto& value : array) {
    const QJsonArray entry = value.toArray();
    KeptFile file;
    file.name = QByteArray::fromHex(entry.at(0).toString().toLatin1()).toStdString();
    file.size = entry.at(1).toInteger(-1);
    file.modified_ns = entry.at(2).toInteger();
    files.push_back(file);
  }
  return files;
}

void AddKept(QJsonObject& line, const KeptRun& kept) {
  line.insert("identity", QString::fromStdString(kept.identity));
  line.insert("files", ToJson(kept.files));
  line.insert("record", vostrand::ToJson(kept.record));
}

bool IsAboutRestored(Event::Kind kind) {
  return kind == Event::Kind::sweep_started || kind == Event::Kind::run_restored;
}

}  // namespace

Journal::Journal(std::string path, const EventHeader& header, std::function<KeptRun(std::size_t run)> keep)
    : path_(std::move(path)), names_(header.runs), keep_(std::move(keep)) {
  const std::string beside = path_ + ".new";
  unlink(beside.c_str());  // A link there would be written through.
  file_ = open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (file_ < 0) {
    Fail("write", errno);
    return;
  }
  disk_ = std::make_unique<DiskSync>(file_);
  EventHeader own = header;
  own.format = journal_format;
  Write(JsonLine(vostrand::ToJson(own)), false);
}

Journal::~Journal() {
  disk_.reset();
  if (file_ >= 0) close(file_);
}

std::string Journal::Error() {
  const int error = disk_ ? disk_->Finish() : 0;
  if (error != 0) Fail("write", error);
  return error_;
}

void Journal::On(const Event& event) {
  if (!IsAboutRestored(event.kind) && !in_place_) ReplaceEarlier();
  const bool of_run = event.run < names_.size();
  QJsonObject line = vostrand::ToJson(event, of_run ? names_[event.run] : "");
  const bool keeps = event.kind == Event::Kind::run_restored ||
                     (event.kind == Event::Kind::run_finished && event.status == 0);
  if (keeps) AddKept(line, keep_(event.run));
  Write(JsonLine(line), keeps && in_place_);
}

void Journal::ReplaceEarlier() {
  in_place_ = true;
  if (file_ < 0) return;
  if (fsync(file_) != 0 || std::rename((path_ + ".new").c_str(), path_.c_str()) != 0) Fail("write", errno);
}

void Journal::Write(const QByteArray& line, bool to_disk) {
  if (file_ < 0) return;
  // One call a line: a crash tears the last one at most.
  const ssize_t written = write(file_, line.constData(), static_cast<std::size_t>(line.size()));
  if (written != line.size()) return Fail("write", written < 0 ? errno : ENOSPC);
  if (to_disk) disk_->Request();
}

void Journal::Fail(const std::string& what, int error) {
  if (error_.empty()) error_ = "cannot " + what + " " + path_ + ": " + std::strerror(error);
  disk_.reset();
  if (file_ >= 0) close(file_);
  file_ = -1;
}

bool AppendKeptRun(const std::string& path, const KeptRun& kept) {
  std::ifstream lines(path, std::ios::binary);
  std::string text;
  std::getline(lines, text);
  EventHeader header;
  FromJson(QJsonDocument::fromJson(QByteArray::fromStdString(text)).object(), header);
  const auto name = std::find(header.runs.begin(), header.runs.end(),
                              QString::fromStdString(kept.record.name).toStdString());
  Event event(Event::Kind::run_finished, static_cast<std::size_t>(name - header.runs.begin()));
  event.at_seconds = kept.record.ended_seconds;
  QJsonObject object = vostrand::ToJson(event, kept.record.name);
  AddKept(object, kept);
  const QByteArray line = "\n" + JsonLine(object);  // The last line may be torn.
  const int file = open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
  const bool written = file >= 0 &&
                       write(file, line.constData(), static_cast<std::size_t>(line.size())) == line.size() &&
                       fsync(file) == 0;
  if (file >= 0) close(file);
  return written;
}

std::map<std::string, KeptRun> ReadKeptRuns(const std::string& path) {
  std::map<std::string, KeptRun> runs;
  std::ifstream lines(path, std::ios::binary);
  for (std::string line; std::getline(lines, line);) {
    const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(line)).object();
    KeptRun kept;
    kept.identity = object.value("identity").toString().toStdString();
    if (kept.identity.empty() || !FromJson(object.value("record").toObject(), kept.record)) continue;
    kept.files = FilesFromJson(object.value("files").toArray());
    kept.record.name = object.value("run").toString().toStdString();
    runs[kept.record.name] = std::move(kept);
  }
  return runs;
}

}  // namespace vostrand
