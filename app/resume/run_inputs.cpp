#include "resume/run_inputs.h"

#include <sys/stat.h>

#include <filesystem>
#include <set>

#include "plan/tool_files.h"
#include "result/modified.h"

namespace vostrand {

std::vector<FileRecord> InputFiles(const LibraryRun& library,
                                   const std::vector<std::string>& tool_arguments) {
  const ToolFiles files = FilesOf(tool_arguments);
  const std::pair<const char*, std::string> named[] = {
      {"design", files.design},
      {"par commands", files.par_commands},
      {"preferences", library.Info().prefFile.getstring()},
      {"trace preferences", library.Info().tracePrefFile.getstring()},
      {"timing commands", files.timing_commands},
  };
  std::vector<FileRecord> inputs;
  for (const auto& [role, name] : named) {
    if (name.empty()) continue;
    FileRecord input;
    input.role = role;
    input.path = std::filesystem::absolute(library.PathOf(name)).lexically_normal();
    inputs.push_back(input);
  }
  return inputs;
}

std::vector<FileRecord> Tools(const std::vector<PlannedRun>& plan, const ToolFinder& finder) {
  std::set<std::string> names;
  for (const PlannedRun& run : plan)
    for (const PlannedStep& step : run.steps)
      if (!step.IsCallback()) names.insert(step.words.front());
  std::vector<FileRecord> tools;
  for (const std::string& name : names) {
    FileRecord tool;
    tool.role = name;
    tool.path = finder.Find(name);
    if (!tool.path.empty()) tools.push_back(tool);
  }
  return tools;
}

std::string ChangedFile(const std::vector<FileRecord>& files) {
  for (const FileRecord& file : files) {
    struct stat now;
    const bool there = stat(file.path.c_str(), &now) == 0 && S_ISREG(now.st_mode);
    if ((there ? ModifiedNs(now) : 0) != file.modified_ns) return file.path;
    if (file.size >= 0 && (!there || now.st_size != file.size)) return file.path;  // Others cannot be read.
  }
  return {};
}

}  // namespace vostrand
