#include "sweep/admission.h"

#include "launch/slurm/adoption.h"
#include "plan/file_guard.h"
#include "plan/record_names.h"

namespace vostrand {
namespace {

// What a killed host has left on a cluster, whatever this sweep runs on: planning would empty its folder.
std::string TakeUpJobs(Sweep& sweep) {
  for (const std::string& folder : sweep.resumption.FoldersOfOutput()) {
    const std::string why =
        Adoption(folder, [&sweep](const std::string& line) { sweep.Warn(line); }).WhyRefused();
    if (!why.empty()) return why;
  }
  Adoption adoption(sweep.resumption.Folder(), [&sweep](const std::string& line) { sweep.Warn(line); });
  const std::string why = sweep.result.options.resume ? adoption.Wait() : adoption.WhyRefused();
  sweep.result.interrupted_by = adoption.InterruptedBy();
  if (!why.empty()) return why;
  if (sweep.result.options.resume)
    for (const AdoptedRun& adopted : adoption.Finished()) sweep.resumption.Adopt(adopted.run, adopted.kept);
  adoption.Clear();
  return sweep.result.interrupted_by == 0 ? "" : "interrupted; what has finished can be resumed";
}

}  // namespace

std::string WhyRefused(Sweep& sweep) {
  std::string why = WhyParCommandsAreRefused(sweep.files, sweep.work_dir);
  if (why.empty()) why = WhyFilesAreRefused(sweep.files, sweep.tool_arguments, sweep.work_dir);
  if (why.empty()) why = WhyRecordsAreRefused(sweep.result.options, sweep.files);
  if (why.empty()) why = sweep.launcher.Unusable();
  if (why.empty() && sweep.slurm) why = sweep.slurm->Unusable();
  if (!why.empty()) return why;
  const std::string no_state = sweep.resumption.Open();
  if (sweep.resumption.IsTaken() || (sweep.slurm && !no_state.empty())) return no_state;
  if (no_state.empty()) why = TakeUpJobs(sweep);
  if (!why.empty()) return why;
  if (sweep.result.options.resume) sweep.resumption.ReadEarlier();
  sweep.launcher.Hold(sweep.resumption.LockFile());
  if (!no_state.empty()) sweep.Warn(no_state + "; the sweep cannot be resumed");
  if (sweep.result.options.resume && sweep.resumption.EarlierCount() == 0)
    sweep.Warn("no run of an earlier sweep with these arguments has finished; all are run");
  if (sweep.result.options.events_file.empty()) return {};
  sweep.event_log.emplace(sweep.result.options.events_file);
  return sweep.event_log->Message();
}

}  // namespace vostrand
