#include "plan/record_names.h"

#include <filesystem>
#include <map>

#include "plan/same_place.h"

namespace vostrand {
namespace {

namespace fs = std::filesystem;

// The same for all names of one file, whether or not it exists yet.
fs::path OneName(const fs::path& path) {
  std::error_code error;
  const fs::path name = fs::weakly_canonical(fs::absolute(path, error), error);
  return error ? path.lexically_normal() : name;
}

// `begin` and a run's number.
bool IsCopy(const std::string& name, const std::string& begin) {
  if (!name.starts_with(begin) || name.size() == begin.size() || name.size() > begin.size() + 2) return false;
  return name.find_first_not_of("0123456789", begin.size()) == std::string::npos;
}

}  // namespace

std::string WhyRecordsAreRefused(const HostOptions& options, const ToolFiles& files) {
  const fs::path work_dir = options.work_dir.empty() ? "." : options.work_dir;
  std::map<fs::path, std::string> taken;
  for (const std::string& file : {files.par_commands, files.log, files.report, files.design,
                                  files.preferences, files.trace_preferences, files.timing_commands})
    if (!file.empty()) taken[OneName(work_dir / file)] = "the sweep's own " + file;
  const std::string copies = OneName(work_dir / files.par_commands).string() + ".tmp";
  const std::string stem = files.Stem();
  const bool promotes = AsksForSeveral(files, work_dir);  // To here from elsewhere.
  for (const std::string& base : {stem, promotes ? fs::path(stem).filename().string() : stem})
    for (const char* const extension : result_extensions)
      taken[OneName(work_dir / (base + extension))] = "a result of the sweep";
  const fs::path output_folder = work_dir / (stem + ".dir");

  for (const std::string& file :
       {options.json_file, options.html_file, options.events_file, options.junit_file, options.trace_file}) {
    std::error_code error;
    if (file.empty() || (fs::exists(file, error) && !fs::is_regular_file(file, error))) continue;
    const fs::path name = OneName(file);
    if (IsCopy(name, copies)) return file + ": planning writes copies of the par commands there";
    if (LiesIn(output_folder, name)) return file + ": the sweep empties its output folder";
    const auto [at, free] = taken.try_emplace(name, "another record");
    if (!free) return file + " cannot be a record: it is " + at->second;
  }
  return {};
}

}  // namespace vostrand
