#include "results/promotion.h"

#include "context/run_log.h"
#include "results/run_files.h"
#include "ut/dir.h"
#include "ut/filemanager.h"

namespace orlo::vostrand_lib {

void CopySeedResult(const UT_STROBJ& targetDir, const UT_STROBJ& runDir) {
  ut_file->statusWord = 0;
  if (!ut_file->isdir(runDir.getstring())) return;
  if (ut_file->issame(runDir.getstring(), targetDir.getstring())) return;  // Every file is its own target.
  UT_DIR listing(runDir.getstring(), 1);
  while (const char* const name = listing.getnextfile(nullptr))
    ut_file->move((runDir + "/" + name).getstring(), (targetDir + "/" + name).getstring());
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
