#include "plan/dry_run.h"

#include <QTemporaryDir>
#include <algorithm>
#include <filesystem>
#include <iostream>

#include "observe/harmless.h"
#include "plan/file_guard.h"
#include "plan/library_run.h"
#include "plan/tool_files.h"

namespace vostrand {
namespace {

namespace fs = std::filesystem;

// How many folders above the working directory the names lead.
std::ptrdiff_t LevelsAbove(const std::vector<std::string>& names) {
  std::ptrdiff_t most = 0;
  for (const std::string& name : names) {
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

// What cannot be copied is missing in the scratch folder as it is here.
void PrepareScratch(const ToolFiles& files, const fs::path& work_dir, const fs::path& scratch) {
  std::error_code ignored;
  std::vector<std::string> names = files.Written();
  names.push_back(files.design);
  for (const std::string& name : names)
    if (!fs::path(name).is_absolute() && fs::is_directory((work_dir / name).parent_path(), ignored))
      fs::create_directories((scratch / name).parent_path(), ignored);
  fs::copy_file(work_dir / files.par_commands, scratch / files.par_commands, ignored);
  if (!fs::path(files.design).is_absolute())  // Only looked at.
    fs::create_symlink(fs::absolute(work_dir / files.design), scratch / files.design, ignored);
}

void ShowPlan(LibraryRun& library) {
  for (const auto& seed : library.Seeds()) {
    std::cout << Harmless(seed.name) << "\n";
    for (const auto& step : seed.steps)
      std::cout << "  " << (step.callback ? "(stop here once a run meets timing)" : Harmless(step.command))
                << "\n";
  }
}

}  // namespace

int DryRun(const std::vector<std::string>& tool_arguments, const std::string& work_dir) {
  const ToolFiles files = FilesOf(tool_arguments);
  std::vector<std::string> names = files.Written();
  for (const std::string& name : names)
    if (fs::path(name).is_absolute()) {
      std::cerr << "vostrand: --dry-run cannot plan with " << name
                << ": planning writes it, and an absolute name has no copy in a scratch folder\n";
      return 2;
    }
  std::string refusal = WhyParCommandsAreRefused(files, work_dir);
  if (refusal.empty()) refusal = WhyFilesAreRefused(files, tool_arguments, work_dir.empty() ? "." : work_dir);
  const QTemporaryDir scratch;
  if (!refusal.empty() || !scratch.isValid()) {
    const std::string no_scratch = "cannot make a scratch folder: " + scratch.errorString().toStdString();
    std::cerr << "vostrand: " << Harmless(refusal.empty() ? no_scratch : refusal) << "\n";
    return 2;
  }
  names.push_back(files.design);
  const fs::path folder = ScratchWorkDir(scratch.path().toStdString(), LevelsAbove(names));
  PrepareScratch(files, work_dir.empty() ? "." : work_dir, folder);
  LibraryRun library(folder, true);
  const int code = library.Plan(tool_arguments);
  if (code == 0) ShowPlan(library);
  return library.Exit(code);
}

}  // namespace vostrand
