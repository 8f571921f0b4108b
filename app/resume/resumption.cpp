#include "resume/resumption.h"

#include <QString>
#include <algorithm>
#include <utility>

namespace vostrand {
namespace {

// An earlier sweep's times lie before this one's, which begins at 0.
void MoveBeforeNow(std::map<std::string, KeptRun>& runs) {
  double last = 0;
  for (const auto& [name, run] : runs) last = std::max(last, run.record.ended_seconds);
  for (auto& [name, run] : runs) {
    run.record.started_seconds -= last;
    run.record.ended_seconds -= last;
    for (TryRecord& attempt : run.record.tries) {
      attempt.started_seconds -= last;
      attempt.ended_seconds -= last;
    }
  }
}

// The journal may say anything.
bool CanBeOf(const PlannedRun& run, const RunRecord& record) {
  return std::all_of(record.tries.begin(), record.tries.end(),
                     [&](const TryRecord& attempt) { return attempt.step < run.steps.size(); });
}

// The journal is text: bytes of a name that are none have been replaced there.
std::string InJournal(const std::string& name) {
  return QString::fromStdString(name).toStdString();
}

}  // namespace

void Resumption::Adopt(const PlannedRun& run, KeptRun kept) const {
  kept.files = store_.Keep(run);
  AppendKeptRun(store_.JournalFile(), kept);
}

void Resumption::ReadEarlier() {
  if (!store_.IsOpen()) return;
  earlier_ = ReadKeptRuns(store_.JournalFile());
  MoveBeforeNow(earlier_);
}

std::size_t Resumption::Restore(std::vector<PlannedRun>& plan, std::vector<std::string> identities) {
  identities_ = std::move(identities);
  if (!store_.IsOpen()) return 0;
  if (earlier_.empty()) store_.Clear();
  std::size_t changed = 0;
  std::vector<const PlannedRun*> restored;
  for (std::size_t i = 0; i < plan.size(); ++i) {
    PlannedRun& run = plan[i];
    const auto found = earlier_.find(InJournal(run.name));
    run.restored = found != earlier_.end() && found->second.identity == identities_[i] &&
                   CanBeOf(run, found->second.record) && store_.Restore(run, found->second);
    if (!run.restored && found != earlier_.end()) ++changed;
    if (!run.restored) continue;
    restored.push_back(&run);
    found->second.record.restored = true;
    run.earlier_verdict = found->second.record.verdict;
    run.earlier_peak_kib = found->second.record.PeakKib();
  }
  store_.DropAllBut(restored);
  return changed;
}

std::vector<RunRecord> Resumption::Records(const std::vector<PlannedRun>& plan) const {
  std::vector<RunRecord> records(plan.size());
  for (std::size_t i = 0; i < plan.size(); ++i) {
    if (plan[i].restored) records[i] = earlier_.at(InJournal(plan[i].name)).record;
    records[i].name = plan[i].name;
  }
  return records;
}

KeptRun Resumption::Keep(std::size_t index, const PlannedRun& run, const RunRecord& record) {
  if (run.restored) return earlier_.at(InJournal(run.name));
  KeptRun kept;
  kept.identity = identities_[index];
  kept.files = store_.Keep(run);
  kept.record = record;
  return kept;
}

void Resumption::DropOthers(const std::vector<PlannedRun>& plan, const std::string& best) const {
  for (const PlannedRun& run : plan)
    if (run.name == best) store_.DropAllBut({&run});
}

}  // namespace vostrand
