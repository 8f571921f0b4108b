#include "records/event_json.h"

#include <QJsonDocument>

#include "records/run_json.h"

namespace vostrand {
namespace {

constexpr int format_version = 1;

constexpr const char* kind_names[] = {"sweep_started", "run_restored",  "run_started",  "step_started",
                                      "step_placed",   "step_finished", "run_finished", "run_skipped",
                                      "stopping",      "sweep_finished"};

}  // namespace

void Fields(auto& io, json::Is<EventHeader> auto& header) {
  io("format", header.format);
  io("started", header.started);
  io("jobs", header.jobs);
  io("runs", header.runs);
  io("steps", header.steps);
}

void Fields(auto& io, json::Is<Event> auto& event) {
  using Kind = Event::Kind;
  io.Choice("event", event.kind, kind_names);
  const Kind kind = event.kind;
  const auto is = [kind](auto... kinds) { return ((kind == kinds) || ...); };
  io("at_seconds", event.at_seconds);
  if (!is(Kind::sweep_started, Kind::stopping, Kind::sweep_finished)) io("index", event.run);
  if (is(Kind::run_restored, Kind::run_started, Kind::step_started, Kind::step_placed, Kind::step_finished,
         Kind::run_finished))
    io("slot", event.slot);
  if (is(Kind::step_placed)) io("node", event.node);
  if (is(Kind::step_started, Kind::step_placed, Kind::step_finished)) {
    io("step", event.step);
    io("try", event.try_number);
    io("callback", event.callback);
  }
  if (is(Kind::step_finished)) {
    io("will_retry", event.will_retry);
    if (!event.callback) io("outcome", event.outcome);
  }
  if (is(Kind::run_finished, Kind::run_skipped)) io("status", event.status);
  if (is(Kind::run_finished, Kind::run_restored)) {
    io("met", event.verdict.met);
    io("score", event.verdict.score);
  }
  if (is(Kind::step_placed, Kind::run_finished, Kind::stopping)) io("message", event.message);
}

QJsonObject ToJson(const EventHeader& header) {
  QJsonObject object = json::JsonWriter::Value(header).toObject();
  object.insert("version", format_version);
  return object;
}

bool FromJson(const QJsonObject& object, EventHeader& header) {
  return object.value("version") == format_version && json::JsonReader::Read(object, header).empty();
}

QJsonObject ToJson(const Event& event, const std::string& run_name) {
  QJsonObject object = json::JsonWriter::Value(event).toObject();
  if (object.contains("index")) object.insert("run", QString::fromStdString(run_name));
  return object;
}

bool FromJson(const QJsonObject& object, Event& event) {
  event = Event(Event::Kind::sweep_started);
  return json::JsonReader::Read(object, event).empty();
}

QByteArray JsonLine(const QJsonObject& object) {
  return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

}  // namespace vostrand
