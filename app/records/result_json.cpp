#include "records/result_json.h"

#include <QJsonDocument>

#include "records/run_json.h"

namespace vostrand {
namespace {

constexpr const char* format_name = "vostrand-result";
constexpr int format_version = 1;
constexpr const char* state_names[] = {"equal", "differs", "missing", "unchecked"};

// A step as it is written: {"command": [...]} or {"callback": true}.
struct StepMember {
  std::vector<std::string> words;
};

void Fields(auto& io, json::Is<StepMember> auto& step) {
  if (!io.Has("callback", step.words.empty())) io("command", step.words);
}

// Of a result that is only half read too.
std::optional<std::string> BestName(const SweepResult& result) {
  if (result.order.empty() || result.order.front() >= result.runs.size()) return {};
  return result.runs[result.order.front()].record.name;
}

}  // namespace

void Fields(auto& io, json::Is<HostOptions> auto& options) {
  io("jobs", options.jobs), io("toolchain", options.toolchain), io("work_dir", options.work_dir),
      io("launcher", options.launcher), io("slurm_args", options.slurm_args),
      io("requeues", options.requeues), io("timeout_seconds", options.timeout_seconds),
      io("retries", options.retries), io("memory_bytes", options.memory_bytes),
      io("fail_fast", options.fail_fast), io("stop_now", options.stop_now),
      io("grace_seconds", options.grace_seconds), io("until", options.until), io("resume", options.resume),
      io("json_file", options.json_file), io("events_file", options.events_file),
      io("junit_file", options.junit_file), io("trace_file", options.trace_file),
      io("html_file", options.html_file), io("require_timing", options.require_timing),
      io("retain_best", options.retain_best), io("quiet", options.quiet), io("verbose", options.verbose);
}

void Fields(auto& io, json::Is<Preference> auto& preference) {
  io("name", preference.name), io("text", preference.text), io("kind", preference.kind),
      io("constraint", preference.constraint), io("weight", preference.weight),
      io("penalty", preference.penalty), io("default_weight", preference.default_weight),
      io("default_penalty", preference.default_penalty);
}

void Fields(auto& io, json::Is<PreferenceScore> auto& score) {
  io("preference", score.preference), io("actual", score.actual), io("unit", score.unit),
      io("constraint_ns", score.constraint_ns), io("actual_ns", score.actual_ns),
      io("slack_ns", score.slack_ns), io("factor", score.factor), io("contribution", score.contribution),
      io("carried_over", score.carried_over);
}

// The score is the final one, in place of the one that was known while the sweep ran.
void Fields(auto& io, json::Is<RunResult> auto& run) {
  Fields(io, run.record);
  io("output_file", run.output_file);
  std::vector<StepMember> steps;
  for (const auto& words : run.steps) steps.emplace_back().words = words;
  io("steps", steps);
  if constexpr (!std::is_const_v<std::remove_reference_t<decltype(run)>>) {
    run.steps.clear();
    for (const StepMember& step : steps) run.steps.push_back(step.words);
  }
  io.Nullable("timing_score", run.has_row, run.timing_score);
  io.Nullable("row", run.has_row, run.row);
  io("score", run.score), io("preferences", run.preferences);
}

void Fields(auto& io, json::Is<PromotedFile> auto& file) {
  io("path", file.path), io("source", file.source), io("size", file.size);
  io("sha256", file.sha256);
  io.Choice("state", file.state, state_names);
}

void Fields(auto& io, json::Is<OddsReport::Chance> auto& chance) {
  io("runs", chance.runs), io("mean", chance.mean), io("low", chance.low), io("high", chance.high);
}

void Fields(auto& io, json::Is<OddsReport::Best> auto& best) {
  io("runs", best.runs), io("score", best.score);
}

void Fields(auto& io, json::Is<OddsReport> auto& odds) {
  io("finished", odds.finished), io("known", odds.known), io("met", odds.met), io("chances", odds.chances),
      io("best", odds.best);
  io.Nullable("gain", odds.has_gain, odds.gain);
  io.Derived("sentence", odds.Sentence());
}

void Fields(auto& io, json::Is<SweepResult> auto& result) {
  io.Derived("format", std::string(format_name));
  io.Derived("version", format_version);
  io.Group("program", [&](auto& program) {
    program.Derived("name", std::string("vostrand"));
    program("version", result.program_version);
  });
  io.Group("host", [&](auto& host) { host("name", result.host_name); });
  io("tool_arguments", result.tool_arguments), io("work_dir", result.work_dir), io("options", result.options),
      io("started", result.started), io("elapsed_seconds", result.elapsed_seconds),
      io("inputs", result.inputs), io("tools", result.tools), io("timing", result.timing),
      io("preferences", result.preferences), io("runs", result.runs), io("order", result.order);
  io.Derived("best", BestName(result));
  io("promoted", result.promoted), io("missing", result.missing), io("odds", result.odds),
      io("stopped_because", result.stopped_because), io("interrupted_by", result.interrupted_by);
  io.Group("counts", [&](auto& counts) {
    counts.Derived("finished", result.Finished());
    counts.Derived("failed", result.Failed());
    counts.Derived("cancelled", result.Cancelled());
  });
  io("exit_code", result.exit_code);
}

namespace {

// Where an index is that points behind its table's end; empty when none does.
std::string IndexOutOfRange(const SweepResult& result) {
  for (std::size_t i = 0; i < result.order.size(); ++i)
    if (result.order[i] >= result.runs.size()) return ".order[" + std::to_string(i) + "]";
  for (std::size_t i = 0; i < result.runs.size(); ++i) {
    const RunResult& run = result.runs[i];
    const std::string place = ".runs[" + std::to_string(i) + "]";
    for (std::size_t k = 0; k < run.preferences.size(); ++k)
      if (run.preferences[k].preference >= result.preferences.size())
        return place + ".preferences[" + std::to_string(k) + "].preference";
    for (std::size_t k = 0; k < run.record.tries.size(); ++k)
      if (run.record.tries[k].step >= run.steps.size())
        return place + ".tries[" + std::to_string(k) + "].step";
  }
  return {};
}

// What is wrong with the document; empty when `result` was read from it.
std::string ReadDocument(const QByteArray& json, SweepResult& result) {
  QJsonParseError error;
  const QJsonDocument document = QJsonDocument::fromJson(json, &error);
  if (error.error != QJsonParseError::NoError)
    return "is not JSON: " + error.errorString().toStdString() + " at byte " + std::to_string(error.offset);
  if (document["format"] != format_name) return std::string("is not of the format \"") + format_name + "\"";
  if (document["version"] != format_version)
    return "is of another version than " + std::to_string(format_version);
  const std::string wrong = json::JsonReader::Read(document.object(), result);
  if (!wrong.empty()) return "cannot be read: " + wrong.substr(1);
  const std::string place = IndexOutOfRange(result);
  return place.empty() ? "" : "cannot be read: " + place.substr(1) + ": is out of range";
}

}  // namespace

QByteArray ResultJson(const SweepResult& result) {
  return QJsonDocument(ToJson(result)).toJson();
}

bool ReadResult(const QByteArray& json, SweepResult& result, std::string& why) {
  why = ReadDocument(json, result);
  return why.empty();
}

}  // namespace vostrand
