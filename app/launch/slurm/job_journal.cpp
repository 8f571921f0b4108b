#include "launch/slurm/job_journal.h"

#include <fcntl.h>
#include <unistd.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <fstream>
#include <map>

#include "records/event_json.h"

namespace vostrand {
namespace {

// Names of files as hexadecimal: they may hold bytes that are no text.
QString Hex(const std::string& name) {
  return QString::fromLatin1(QByteArray::fromStdString(name).toHex());
}

std::string FromHex(const QJsonValue& value) {
  return QByteArray::fromHex(value.toString().toLatin1()).toStdString();
}

JobNote NoteOf(const QJsonObject& line) {
  JobNote note;
  note.job = line.value("job").toString().toStdString();
  note.identity = line.value("identity").toString().toStdString();
  note.run.name = FromHex(line.value("run"));
  note.run.results_folder = FromHex(line.value("folder"));
  for (const auto& name : line.value("results").toArray()) note.run.results.push_back(FromHex(name));
  for (const auto& step : line.value("steps").toArray())
    note.steps.push_back(static_cast<std::size_t>(step.toInteger()));
  note.submitted = line.value("submitted").toDouble();
  return note;
}

}  // namespace

JobJournal::~JobJournal() {
  if (file_ >= 0) close(file_);
}

bool JobJournal::Write(const QJsonObject& line, bool to_disk) {
  if (file_ < 0) file_ = open(path_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
  const QByteArray text = '\n' + JsonLine(line);  // Not joined to one that a full disk has torn.
  return file_ >= 0 && write(file_, text.constData(), static_cast<std::size_t>(text.size())) == text.size() &&
         (!to_disk || fdatasync(file_) == 0);
}

bool JobJournal::Submitting(const JobNote& note) {
  QJsonArray results;
  for (const std::string& name : note.run.results) results.append(Hex(name));
  QJsonArray steps;
  for (const std::size_t step : note.steps) steps.append(static_cast<qint64>(step));
  return Write({{"job", QString::fromStdString(note.job)},
                {"run", Hex(note.run.name)},
                {"identity", QString::fromStdString(note.identity)},
                {"folder", Hex(note.run.results_folder)},
                {"results", results},
                {"steps", steps},
                {"submitted", note.submitted}},
               true);
}

void JobJournal::Submitted(const std::string& job, const std::string& id) {
  Write({{"job", QString::fromStdString(job)}, {"id", QString::fromStdString(id)}}, false);
}

void JobJournal::Ended(const std::string& job) {
  Write({{"job", QString::fromStdString(job)}, {"ended", true}}, false);
}

std::vector<JobNote> JobJournal::Read(const std::string& path) {
  std::vector<JobNote> notes;
  std::map<std::string, std::size_t> index;
  std::ifstream lines(path, std::ios::binary);
  for (std::string text; std::getline(lines, text);) {
    const QJsonObject line = QJsonDocument::fromJson(QByteArray::fromStdString(text)).object();
    const std::string job = line.value("job").toString().toStdString();
    if (line.contains("run") && !job.empty()) {
      index[job] = notes.size();
      notes.push_back(NoteOf(line));
    }
    const auto known = index.find(job);
    if (known == index.end()) continue;
    JobNote& note = notes[known->second];
    if (line.contains("id")) note.id = line.value("id").toString().toStdString();
    if (line.contains("ended")) note.ended = true;
  }
  return notes;
}

}  // namespace vostrand
