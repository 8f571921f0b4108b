#include "sweep/inputs.h"

#include <unistd.h>

#include <QCoreApplication>
#include <algorithm>

#include "result/file_hasher.h"
#include "resume/run_identity.h"
#include "resume/run_inputs.h"

namespace vostrand {
namespace {

// Their records lack something then.
void WarnOfUnread(const Sweep& sweep) {
  for (const std::vector<FileRecord>* const files : {&sweep.result.inputs, &sweep.result.tools})
    for (const FileRecord& file : *files)
      if (file.size < 0 && access(file.path.c_str(), F_OK) == 0)
        sweep.Warn("cannot read " + file.path + ": the records are without its size and hash");
  for (const PlannedStep& step : sweep.plan.front().steps)
    if (!step.IsCallback() && std::none_of(sweep.result.tools.begin(), sweep.result.tools.end(),
                                           [&](const auto& tool) { return tool.role == step.words.front(); }))
      sweep.Warn("cannot find " + step.words.front() + ": the records are without it");
}

}  // namespace

void LookAtInputs(Sweep& sweep) {
  FileHasher hasher;
  sweep.end_what_goes_on = [&] { hasher.Cancel(); };
  std::vector<FileRecord> files = InputFiles(sweep.library, sweep.tool_arguments);
  const auto input_count = static_cast<std::ptrdiff_t>(files.size());
  const std::vector<FileRecord> tools = Tools(sweep.plan, sweep.tools);
  files.insert(files.end(), tools.begin(), tools.end());
  hasher.Start(files, [&](const std::vector<FileRecord>& hashed) {
    sweep.result.inputs.assign(hashed.begin(), hashed.begin() + input_count);
    sweep.result.tools.assign(hashed.begin() + input_count, hashed.end());
    QCoreApplication::quit();
  });
  QCoreApplication::exec();
  sweep.end_what_goes_on = nullptr;

  std::vector<std::string> identities;
  for (const PlannedRun& run : sweep.plan)
    identities.push_back(RunIdentity(run, sweep.work_dir, sweep.result.inputs, sweep.result.tools));
  if (sweep.slurm) sweep.slurm->Prepare(sweep.plan, identities);
  if (sweep.result.interrupted_by != 0) return;
  WarnOfUnread(sweep);
  const std::size_t changed = sweep.resumption.Restore(sweep.plan, std::move(identities));
  if (changed > 0)
    sweep.Warn(std::to_string(changed) +
               " finished runs are run again: what they are made from has changed, or what was kept of them");
}

bool HaveInputsChanged(Sweep& sweep) {
  std::string changed = ChangedFile(sweep.result.inputs);
  if (changed.empty()) changed = ChangedFile(sweep.result.tools);
  if (!changed.empty() && sweep.changed_input.empty())
    sweep.Warn(changed + " has changed while runs were made from it; those cannot be resumed");
  if (!changed.empty()) sweep.changed_input = changed;
  return !changed.empty();
}

}  // namespace vostrand
