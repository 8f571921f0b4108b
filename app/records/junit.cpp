#include "records/junit.h"

#include <QXmlStreamWriter>
#include <algorithm>
#include <filesystem>

namespace vostrand {
namespace {

// XML has no way to say most control characters, which the writer would take for an error.
QString Clean(const std::string& text) {
  QString clean = QString::fromStdString(text);
  for (QChar& c : clean) {
    const bool blank = c == u'\t' || c == u'\n' || c == u'\r';
    if ((c < u' ' && !blank) || c >= u'\ufffe') c = QChar::ReplacementCharacter;
  }
  return clean;
}

QString Seconds(double seconds) {
  return QString::number(seconds, 'f', 3);
}

// Why a finished run does not pass; empty when it does.
std::string TimingFailure(const SweepResult& result, const RunResult& run) {
  if (!result.options.require_timing || run.record.status > 0) return {};
  if (!run.has_row) return "has no place-and-route result";
  if (run.timing_score < 0) return "has no timing score";
  return run.timing_score == 0 ? "" : "misses timing by " + std::to_string(run.timing_score) + " ps";
}

// What the runs have in common: the design's name.
QString ClassName(const SweepResult& result) {
  const auto design = std::find_if(result.inputs.begin(), result.inputs.end(),
                                   [](const FileRecord& file) { return file.role == "design"; });
  if (design == result.inputs.end()) return "vostrand";
  return Clean(std::filesystem::path(design->path).stem().string());
}

void WriteVerdict(QXmlStreamWriter& xml, const char* element, const std::string& message,
                  const std::string& text) {
  xml.writeStartElement(element);
  xml.writeAttribute("message", Clean(message));
  if (!text.empty()) xml.writeCharacters(Clean(text));
  xml.writeEndElement();
}

void WriteRun(QXmlStreamWriter& xml, const SweepResult& result, const RunResult& run,
              const QString& class_name) {
  const RunRecord& record = run.record;
  xml.writeStartElement("testcase");
  xml.writeAttribute("classname", class_name);
  xml.writeAttribute("name", Clean(record.name));
  xml.writeAttribute("time", Seconds(record.ElapsedSeconds()));
  std::string details = record.message;
  if (details.empty() && !record.tries.empty()) details = record.tries.back().outcome.message;
  const std::string failure = TimingFailure(result, run);
  if (record.status == cancelled_status)
    WriteVerdict(xml, "skipped", record.Outcome(), {});
  else if (record.status > 0)
    WriteVerdict(xml, "error", "failed with " + std::to_string(record.status), details);
  else if (!failure.empty())
    WriteVerdict(xml, "failure", failure, {});
  xml.writeEndElement();
}

}  // namespace

std::string JUnit(const SweepResult& result) {
  std::string name = "vostrand";
  for (const std::string& argument : result.tool_arguments) name += " " + argument;
  const auto failures = std::count_if(result.runs.begin(), result.runs.end(), [&](const RunResult& run) {
    return !TimingFailure(result, run).empty();
  });
  QByteArray text;
  QXmlStreamWriter xml(&text);
  xml.setAutoFormatting(true);
  xml.writeStartDocument();
  xml.writeStartElement("testsuite");
  xml.writeAttribute("name", Clean(name));
  xml.writeAttribute("tests", QString::number(result.runs.size()));
  xml.writeAttribute("failures", QString::number(failures));
  xml.writeAttribute("errors", QString::number(result.Failed()));
  xml.writeAttribute("skipped", QString::number(result.Cancelled()));
  xml.writeAttribute("time", Seconds(result.elapsed_seconds));
  xml.writeAttribute("timestamp", Clean(result.started));
  const QString class_name = ClassName(result);
  for (const RunResult& run : result.runs) WriteRun(xml, result, run, class_name);
  xml.writeEndDocument();
  return text.toStdString();
}

}  // namespace vostrand
