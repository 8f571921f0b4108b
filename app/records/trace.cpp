#include "records/trace.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <set>

#include "records/run_json.h"

namespace vostrand {
namespace {

constexpr int process = 1;

qint64 Microseconds(double seconds) {
  return std::llround(seconds * 1e6);
}

QJsonObject Naming(const char* what, qint64 thread, const QString& name) {
  return {
      {"ph", "M"}, {"name", what}, {"pid", process}, {"tid", thread}, {"args", QJsonObject{{"name", name}}}};
}

// How a try ended, where it did not end well, and the colour for it among those that the format names.
struct Ending {
  const char* word = "";
  const char* colour = "good";
};

Ending EndingOf(const RunRecord& run, const TryRecord& attempt) {
  const step::Outcome& outcome = attempt.outcome;
  const bool retried = &attempt != &run.tries.back() && (&attempt + 1)->step == attempt.step;
  if (outcome.cancelled) return {"cancelled", "grey"};
  if (retried) return {"retried", "bad"};
  if (outcome.timed_out) return {"timed out", "terrible"};
  if (outcome.exit_code != 0) return {"failed", "terrible"};
  return {};
}

// When its machine began with it.
qint64 Begin(const TryRecord& attempt) {
  return Microseconds(
      std::min(attempt.started_seconds + attempt.outcome.queue_seconds, attempt.ended_seconds));
}

QJsonObject Queued(const RunResult& run, const TryRecord& attempt) {
  const qint64 began = Microseconds(attempt.started_seconds);
  return {{"ph", "X"},       {"name", QString::fromStdString(run.record.name) + " queued"},
          {"cat", "queued"}, {"cname", "white"},
          {"pid", process},  {"tid", static_cast<qint64>(run.record.slot)},
          {"ts", began},     {"dur", Begin(attempt) - began}};
}

QJsonObject Bar(const RunResult& run, const TryRecord& attempt) {
  const RunRecord& record = run.record;
  const Ending ending = EndingOf(record, attempt);
  std::string name = record.name;
  if (attempt.step < run.steps.size() && !run.steps[attempt.step].empty())
    name += " " + std::filesystem::path(run.steps[attempt.step].front()).filename().string();
  if (attempt.number > 1) name += " (try " + std::to_string(attempt.number) + ")";
  if (*ending.word != 0) name += std::string(" ") + ending.word;
  const qint64 began = Begin(attempt);
  QJsonObject args = ToJson(attempt.outcome);
  args.insert("status", attempt.outcome.exit_code);
  args.insert("run", record.Outcome());
  args.insert("score", json::JsonWriter::Value(run.score));
  return {{"ph", "X"},
          {"name", QString::fromStdString(name)},
          {"cat", record.Outcome()},
          {"cname", ending.colour},
          {"pid", process},
          {"tid", static_cast<qint64>(record.slot)},
          {"ts", began},
          {"dur", Microseconds(attempt.ended_seconds) - began},
          {"args", args}};
}

}  // namespace

QByteArray TraceJson(const SweepResult& result) {
  QJsonArray events;
  events.append(Naming("process_name", 0, "vostrand"));
  std::set<std::size_t> slots;
  for (const RunResult& run : result.runs) {
    if (!run.record.started || run.record.restored) continue;
    if (slots.insert(run.record.slot).second) {
      const auto slot = static_cast<qint64>(run.record.slot);
      events.append(Naming("thread_name", slot, "job " + QString::number(slot + 1)));
    }
    for (const TryRecord& attempt : run.record.tries) {
      if (attempt.outcome.queue_seconds > 0) events.append(Queued(run, attempt));
      events.append(Bar(run, attempt));
    }
  }
  return QJsonDocument(QJsonObject{{"traceEvents", events}, {"displayTimeUnit", "ms"}}).toJson();
}

}  // namespace vostrand
