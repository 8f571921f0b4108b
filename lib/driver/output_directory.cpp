#include "driver/output_directory.h"

#include <unistd.h>

#include "context/messages.h"
#include "context/self_context.h"
#include "support/file_names.h"
#include "ut/dir.h"
#include "ut/filemanager.h"

namespace orlo::vostrand_lib {

using kelpn::mparrunner::VOSTRAND_CONTEXT;

namespace {

void Warn(self_context& run, const char* text, const UT_STROBJ& name) {
  run._ut_warning((UT_STROBJ(text) + name).getstring(1));
}

void RemoveDirectory(self_context& run, const UT_STROBJ& path) {
  bool all_removed = true;
  UT_DIR listing(path.getstring(), 1);
  while (const char* const name = listing.getnextfile(nullptr)) {
    if (ut_file->remove((path + "/" + name).getstring())) continue;
    Warn(run, "Unable to remove design directory file: ", name);
    all_removed = false;
  }
  if (all_removed && !ut_file->rmdir(path.getstring()))
    run._ut_warning("Unable to remove old design directory.");
}

void RemoveOldOutput(self_context& run, const UT_STROBJ& path) {
  run._ut_status("Removing old design directory at request of -rem command line option to this program.");
  ut_file->statusWord = 0;
  // A link is removed as a file, whatever it points to: what lies at its other end is not this run's old
  // output.
  if (ut_file->isfile(path.getstring()) || ut_file->islink(path.getstring())) {
    if (!ut_file->remove(path.getstring()))
      Warn(run, "Unable to remove old design file: ", run.runInfo.outputDir);
  } else if (ut_file->isdir(path.getstring())) {
    RemoveDirectory(run, path);
  }
}

}  // namespace

bool FixOutputName(VOSTRAND_CONTEXT& record) {
  MParRunInfo& runInfo = record.selfContext->runInfo;
  UT_STROBJ& name = runInfo.outputDir;
  if (HasExtension(name, ".dir")) {
    _ut_userfatal(("Output filename <" + name + "> must have a \".ncd\" extension.").getstring(1), &record);
    return false;
  }
  const bool has_extension = HasExtension(name, ".ncd");
  if (runInfo.multiRun)
    name = (has_extension ? WithoutExtension(name) : name) + ".dir";
  else if (!has_extension)
    name += ".ncd";

  const UT_STROBJ stem = WithoutExtension(name);
  const unsigned long slash = stem.reverse_find_char('/', stem.size());
  runInfo.outputName = slash < stem.size() ? stem.right_from(slash + 1) : stem;
  return true;
}

void PrepareOutputDirectory(VOSTRAND_CONTEXT& record, const Settings& settings) {
  self_context& run = *record.selfContext;
  if (!run.runInfo.multiRun) return;
  const UT_STROBJ path = GenerateFilePath(record.workDir, run.runInfo.outputDir);
  if (settings.removeOldOutput) RemoveOldOutput(run, path);
  ut_file->statusWord = 0;
  if (::access(path.getstring(), F_OK) != 0) ut_file->mkdir(path.getstring());
}

}  // namespace orlo::vostrand_lib
