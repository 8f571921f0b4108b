#include "results/promotion.h"

#include "context/run_log.h"
#include "results/run_files.h"
#include "ut/dir.h"
#include "ut/filemanager.h"

namespace orlo::vostrand_lib {
namespace {

void Move(const UT_STROBJ& from, const UT_STROBJ& to) {
  // What cannot be copied, a sub-directory for one, must not cost the file of its name.
  if (!ut_file->isfile(from.getstring()) || !ut_file->canread(from.getstring())) return;
  // A link goes too, even one that leads nowhere: the copy must lie here, not at its other end.
  if (ut_file->exist(to.getstring()) || ut_file->islink(to.getstring())) ut_file->remove(to.getstring());
  if (ut_file->copy(from.getstring(), to.getstring())) ut_file->remove(from.getstring());
}

}  // namespace

void CopySeedResult(const UT_STROBJ& targetDir, const UT_STROBJ& runDir) {
  ut_file->statusWord = 0;
  if (!ut_file->isdir(runDir.getstring())) return;
  if (ut_file->issame(runDir.getstring(), targetDir.getstring())) return;  // Every file is its own target.
  UT_DIR listing(runDir.getstring(), 1);
  while (const char* const name = listing.getnextfile(nullptr))
    Move(runDir + "/" + name, targetDir + "/" + name);
  ut_file->rmdir(runDir.getstring());
}

int copybestup(const UT_STROBJ& best, UT_STREAM* log, UT_STROBJ workDir, UT_STROBJ outputName,
               UT_STROBJ outputDirPath) {
  if (best.empty()) return 1;
  const auto promoted = [&](const char* extension) { return RunFile(workDir, outputName, extension); };
  const auto of_best = [&](const char* extension) { return RunFile(outputDirPath, best, extension); };
  ut_file->copy(promoted(".par").getstring(), RunFile(outputDirPath, outputName, ".par").getstring());
  ut_file->append(of_best(".par").getstring(), promoted(".par").getstring());

  RunLog(log) << ("Copy " + best + ".ncd to " + outputName + ".ncd\n").getstring() << "\n\n\n";

  for (const char* const extension : {".ncd", ".twr"})
    ut_file->copy(of_best(extension).getstring(), promoted(extension).getstring());
  for (const char* const extension : {".pad", ".dly", ".icf"})
    if (ut_file->exist(of_best(extension).getstring()))
      ut_file->copy(of_best(extension).getstring(), promoted(extension).getstring());
  return 0;
}

}  // namespace orlo::vostrand_lib
