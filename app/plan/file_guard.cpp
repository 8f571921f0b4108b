#include "plan/file_guard.h"

#include <algorithm>
#include <climits>
#include <filesystem>

#include "plan/same_place.h"

namespace vostrand {
namespace {

namespace fs = std::filesystem;

constexpr int most_runs = 99;

std::string WhyNameIsRefused(const std::string& name, std::size_t longest_addition) {
  if (name.starts_with('-')) return "the tools would take <" + name + "> for an option; write ./" + name;
  if (fs::path(name).filename().string().size() + longest_addition > NAME_MAX)
    return "the name <" + name + "> is too long for the names that are made of it";
  return {};
}

bool IsLink(const fs::path& path) {
  std::error_code error;
  return fs::is_symlink(path, error);
}

// A link to a file in none of the folders.
bool LeadsOutOf(const std::vector<fs::path>& folders, const fs::path& link) {
  std::error_code error;
  if (!IsLink(link)) return false;
  fs::path end = link;  // What is not there yet would be made there.
  for (int i = 0; i < 40 && IsLink(end); ++i) end = end.parent_path() / fs::read_symlink(end, error);
  const fs::path target = fs::weakly_canonical(end, error);
  return std::none_of(folders.begin(), folders.end(), [&](const fs::path& folder) {
    const fs::path inside = target.lexically_relative(fs::canonical(folder, error));
    return !inside.empty() && *inside.begin() != "..";
  });
}

std::string WhyLinksAreRefused(const ToolFiles& files, bool keeps_old_output, const fs::path& work_dir) {
  const std::string commands = work_dir / files.par_commands;
  for (int i = 0; i < most_runs; ++i)
    if (const std::string copy = commands + ".tmp" + std::to_string(i); IsLink(copy))
      return copy + " is a link: planning would write over what it leads to";
  const std::string stem = work_dir / files.Stem();
  const fs::path folder = stem + ".dir";
  std::error_code error;
  if (keeps_old_output && IsLink(folder) && !fs::exists(folder, error))
    return folder.string() + " is a link that leads nowhere";
  if (!AsksForSeveral(files, work_dir))
    return {};  // One run's are removed first, as the links that they are.
  std::vector<std::string> written;
  if (keeps_old_output) written.push_back(folder / (fs::path(stem).filename().string() + ".par"));
  for (const char* const extension : {".par", ".twr", ".pad", ".dly", ".icf"})
    written.push_back(stem + extension);
  // Promoted into the working directory, wherever the output is.
  if (!IsSame(fs::path(stem).parent_path(), work_dir))
    for (const char* const extension : {".ncd", ".par", ".twr", ".pad", ".dly", ".icf"})
      written.push_back(work_dir / (fs::path(stem).filename().string() + extension));
  const std::vector<fs::path> allowed = {work_dir, fs::path(stem).parent_path()};
  for (const std::string& file : written)
    if (LeadsOutOf(allowed, file))
      return file + " is a link: the result would be written over what it leads to";
  return {};
}

// Inputs that planning or the report would write over.
std::string WhyInputIsWritten(const ToolFiles& files, const std::string& input, const fs::path& work_dir) {
  const fs::path file = work_dir / input;
  for (const std::string& written : {files.log, files.report})
    if (!written.empty() && IsSame(file, work_dir / written))
      return input + " would be written over: it is named as " +
             (written == files.log ? "the log, too" : "the report, too");
  const std::string commands = work_dir / files.par_commands;
  for (int i = 0; i < most_runs; ++i)
    if (IsSame(file, commands + ".tmp" + std::to_string(i)))
      return input + " could be written over by a copy of the par command file";
  return {};
}

// Inputs where the result goes, or in the folder that planning empties.
std::string WhyInputsAreRefused(const ToolFiles& files, bool keeps_old_output, const fs::path& work_dir) {
  const std::string stem = work_dir / files.Stem();
  // One run's result is where the tools write it.
  const bool promotes = AsksForSeveral(files, work_dir);
  const std::string promoted = promotes ? (work_dir / fs::path(stem).filename()).string() : stem;
  for (const std::string& input : files.Read()) {
    const fs::path file = work_dir / input;
    if (input.empty()) continue;
    if (const std::string why = WhyInputIsWritten(files, input, work_dir); !why.empty()) return why;
    if (IsSame(file, stem + ".ncd")) continue;  // Named as the output, too.
    for (const std::string& base : {stem, promoted})
      for (const char* const extension : result_extensions)
        if (IsSame(file, base + extension)) return input + " would be written over by the result";
    if (!keeps_old_output && IsSame(file.parent_path(), stem + ".dir"))
      return input + " lies in the old output, which is removed";
  }
  return {};
}

}  // namespace

std::string WhyFilesAreRefused(const ToolFiles& files, const std::vector<std::string>& tool_arguments,
                               const std::string& work_dir) {
  if (files.output.empty()) return {};  // Planning refuses the command line.
  if (files.output.ends_with(".dir"))
    return "the output <" + files.output + "> must have a \".ncd\" extension";
  constexpr std::size_t extension = 4;
  for (const auto& [name, addition] :
       {std::pair(files.design, std::size_t{0}), std::pair(files.output, extension),
        std::pair(files.preferences, std::size_t{0}), std::pair(files.trace_preferences, std::size_t{0}),
        std::pair(files.par_commands, std::string(".tmp98").size())}) {
    const bool has_it = addition == extension && name.ends_with(".ncd");
    const std::string why = WhyNameIsRefused(name, has_it ? 0 : addition);
    if (!why.empty()) return why;
  }
  const fs::path base(work_dir);
  const bool reports =
      std::find(tool_arguments.begin(), tool_arguments.end(), "-dissorv") == tool_arguments.end();
  for (const std::string& file : {files.output, files.par_commands, reports ? files.report : files.output}) {
    std::error_code error;
    const fs::path folder = (base / file).parent_path();
    if (!fs::is_directory(folder, error)) return "there is no folder " + folder.string() + " for " + file;
  }
  // The short forms remove it always.
  const bool keeps_old_output =
      tool_arguments.size() > 2 &&
      std::find(tool_arguments.begin(), tool_arguments.end(), "-rem") == tool_arguments.end();
  const std::string why = WhyInputsAreRefused(files, keeps_old_output, base);
  return why.empty() ? WhyLinksAreRefused(files, keeps_old_output, base) : why;
}

std::string WhyLeftoversAreRefused(const ToolFiles& files, const std::vector<PlannedRun>& plan,
                                   const std::string& work_dir) {
  for (const std::string& input : files.Read()) {
    if (input.empty()) continue;
    const fs::path file = fs::path(work_dir) / input;
    for (const PlannedRun& run : plan) {
      // What a link leads to is not removed.
      if (!run.leftover_folder.empty() && !IsLink(run.leftover_folder) && LiesIn(run.leftover_folder, file))
        return input + " lies in the folder of run " + run.name + ", which is removed";
      for (const std::string& leftover : run.leftovers)
        if (IsSame(file, leftover))
          return input + " has the name of what run " + run.name + " leaves, and would be removed";
    }
  }
  return {};
}

std::vector<std::string> TakeInLinkedFolder(const std::string& folder, bool started, bool finished) {
  std::error_code error;
  std::vector<std::string> lost;
  if (!IsLink(folder)) return lost;
  const fs::path target = fs::canonical(folder, error);
  fs::remove(folder, error);
  if (!started || target.empty() || error) return lost;
  if (IsSame(target, fs::path(folder).parent_path())) return lost;  // All is there already.
  fs::create_directory(folder, error);
  for (const auto& entry : fs::directory_iterator(target, error)) {
    std::error_code uncopied;
    const fs::path copy = fs::path(folder) / entry.path().filename();
    if (!finished && entry.path().stem() != fs::path(folder).stem()) continue;
    if (!entry.is_regular_file(uncopied) || fs::copy_file(entry.path(), copy, uncopied)) continue;
    fs::remove(copy, uncopied);  // Half of it would be taken for the result.
    lost.push_back(copy.string() + " (whole only as " + entry.path().string() + ")");
  }
  if (error) lost.push_back(folder + " (cannot be read as " + target.string() + ")");
  return lost;
}

}  // namespace vostrand
