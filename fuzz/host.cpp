// What the host reads. Most of it can be written again, and has to read the same then.
#include <QJsonDocument>
#include <algorithm>
#include <cmath>

#include "common.h"
#include "launch/slurm/job_journal.h"
#include "launch/slurm/job_state.h"
#include "options/units.h"
#include "plan/command_words.h"
#include "records/result_json.h"
#include "records/run_json.h"
#include "resume/journal.h"

using namespace vostrand;

namespace {

QByteArray Bytes(std::string_view in) {
  return {in.data(), static_cast<qsizetype>(in.size())};
}

}  // namespace

void command_words(std::string_view in) {
  const std::vector<std::string> words = SplitCommand(std::string(in));
  std::string quoted, bare;
  bool fit = true;
  for (const std::string& word : words) {
    quoted += "\"" + word + "\" ";
    bare += word + " ";
    fit = fit && !word.empty() && FitsCommandLine(word);
  }
  Check(SplitCommand(quoted) == words && (!fit || SplitCommand(bare) == words));
}

void events(std::string_view in) {
  const QJsonObject object = QJsonDocument::fromJson(Bytes(in)).object();
  if (Event event(Event::Kind::stopping); FromJson(object, event)) {
    const QJsonObject written = ToJson(event, "5_1");
    Check(FromJson(written, event) && ToJson(event, "5_1") == written);
  }
  if (EventHeader header; FromJson(object, header)) {
    const QJsonObject written = ToJson(header);
    Check(FromJson(written, header) && ToJson(header) == written);
  }
}

void job_journal(std::string_view in) {
  const Scratch scratch;
  scratch.Write("jobs", in);
  const std::vector<JobNote> notes = JobJournal::Read("jobs");
  JobJournal journal("again");
  for (const JobNote& note : notes) Check(journal.Submitting(note));
  const auto same = [](const JobNote& a, const JobNote& b) {
    return a.job == b.job && a.run.name == b.run.name && a.run.results == b.run.results && a.steps == b.steps;
  };
  const std::vector<JobNote> read = JobJournal::Read("again");
  Check(std::equal(read.begin(), read.end(), notes.begin(), notes.end(), same));
}

void journal(std::string_view in) {
  const std::string file = InMemory(in);
  const auto runs = ReadKeptRuns(file);
  if (runs.empty()) return;
  const auto& [name, kept] = *runs.begin();
  Check(AppendKeptRun(file, kept));
  const auto again = ReadKeptRuns(file);
  const KeptRun& read = again.at(name);
  Check(again.size() == runs.size() && read.identity == kept.identity && read.files == kept.files);
  Check(ToJson(read.record) == ToJson(kept.record));
}

// Times are written where a clock can have measured them.
void outcome_file(std::string_view in) {
  const Scratch scratch;
  scratch.Write("outcome", in);
  step::Outcome outcome, again;
  if (!ReadOutcome("outcome", outcome) || std::abs(outcome.elapsed_seconds) > 1e9) return;
  outcome.cpu_seconds = outcome.elapsed_seconds;
  Check(WriteOutcome("outcome", outcome, false) && ReadOutcome("outcome", again));
  Check(again.exit_code == outcome.exit_code && again.message == outcome.message &&
        again.peak_kib == outcome.peak_kib && std::abs(again.cpu_seconds - outcome.elapsed_seconds) < 3e-6);
}

// A job that has ended without its step's outcome never looks like a success.
void queue(std::string_view in) {
  for (const JobStatus& job : ReadQueue(std::string(in))) {
    Check(!job.name.empty() && !(job.IsWaiting() && job.HasEnded()));
    const step::Outcome outcome = OutcomeOf(job, {});
    Check(outcome.exit_code != 0 && outcome.lost == job.IsLost());
  }
}

void result_json(std::string_view in) {
  SweepResult result, again;
  std::string why;
  if (!ReadResult(Bytes(in), result, why)) return Check(!why.empty());
  const QByteArray written = ResultJson(result);
  Check(ReadResult(written, again, why) && ResultJson(again) == written);
}

void units(std::string_view in) {
  const auto seconds = ReadDuration(std::string(in));
  const auto bytes = ReadSize(std::string(in));
  Check((!seconds || (*seconds >= 0 && *seconds <= 20 * 24 * 3600.0)) && (!bytes || *bytes >= 1));
}
