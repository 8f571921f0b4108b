#include "plan/dry_run.h"

#include <QTemporaryDir>
#include <algorithm>
#include <filesystem>
#include <iostream>

#include "plan/library_run.h"
#include "plan/tool_files.h"

namespace vostrand {
namespace {

namespace fs = std::filesystem;

// How many folders above the working directory the names lead.
std::ptrdiff_t LevelsAbove(const ToolFiles& files) {
  std::ptrdiff_t most = 0;
  for (const auto* list : {&files.written, &files.read})
    for (const std::string& name : *list) {
      const fs::path path(name);
      most = std::max<std::ptrdiff_t>(most, std::count(path.begin(), path.end(), fs::path("..")));
    }
  return most;
}

// A working directory inside the scratch folder, so deep that no name leads out of it.
fs::path ScratchWorkDir(const fs::path& scratch, std::ptrdiff_t levels_above) {
  fs::path folder = scratch;
  for (std::ptrdiff_t i = 0; i <= levels_above; ++i) folder /= "w";
  fs::create_directories(folder);
  return folder;
}

void CopyWhatPlanningReads(const ToolFiles& files, const fs::path& work_dir, const fs::path& scratch) {
  for (const auto* list : {&files.written, &files.read})
    for (const std::string& name : *list) {
      if (fs::path(name).is_absolute()) continue;
      std::error_code ignored;  // What cannot be copied is missing there as it is here.
      if (!fs::is_directory((work_dir / name).parent_path(), ignored)) continue;
      fs::create_directories((scratch / name).parent_path(), ignored);
      fs::copy_file(work_dir / name, scratch / name, ignored);
    }
}

void ShowPlan(LibraryRun& library) {
  for (const auto& seed : library.Seeds()) {
    std::cout << seed.name << "\n";
    for (const auto& step : seed.steps)
      std::cout << "  " << (step.callback ? "(stop here once a run meets timing)" : step.command) << "\n";
  }
}

}  // namespace

int DryRun(const std::vector<std::string>& tool_arguments, const std::string& work_dir) {
  const ToolFiles files = FilesOf(tool_arguments);
  for (const std::string& name : files.written)
    if (fs::path(name).is_absolute()) {
      std::cerr << "vostrand: --dry-run cannot plan with " << name
                << ": planning writes it, and an absolute name has no copy in a scratch folder\n";
      return 2;
    }
  const QTemporaryDir scratch;
  if (!scratch.isValid()) {
    std::cerr << "vostrand: cannot make a scratch folder: " << scratch.errorString().toStdString() << "\n";
    return 2;
  }
  const fs::path folder = ScratchWorkDir(scratch.path().toStdString(), LevelsAbove(files));
  CopyWhatPlanningReads(files, work_dir.empty() ? "." : work_dir, folder);
  LibraryRun library(folder, true);
  const int code = library.Plan(tool_arguments);
  if (code == 0) ShowPlan(library);
  return library.Exit(code);
}

}  // namespace vostrand
