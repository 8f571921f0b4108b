#include "plan/tool_files.h"

#include <climits>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <utility>

#include "context/globals.h"
#include "plan/command_words.h"
#include "support/file_names.h"
#include "support/option_strings.h"
#include "ut/cmdargs.h"

namespace vostrand {
namespace {

constexpr std::size_t longest_level = 235;  // Of the 255 bytes of a name, beside cost table and extension.

void NoHelp() {}

ToolFiles OfBaseName(const std::string& base) {
  return {
      base + ".p2t", base + ".log", base + ".csv", base + ".ncd", base + "_map.ncd", base + ".prf", "", ""};
}

bool IsSwitch(const std::string& argument) {
  return argument == "-dissorv" || argument == "-cst";
}

// What a par command file asks for.
struct Asked {
  std::string path;
  bool several = false;
  UT_STROBJ level = "5";  // What the library takes where the file says nothing.
  UT_STROBJ table = "1";
  bool read_whole = false;
};

Asked AskedBy(const ToolFiles& files, const std::string& work_dir) {
  Asked asked;
  asked.path = orlo::vostrand_lib::GenerateFilePath(work_dir.c_str(), files.par_commands.c_str()).getstring();
  std::ifstream lines(asked.path);
  for (std::string line; std::getline(lines, line);) {
    asked.several = asked.several || line.find("-n ") != std::string::npos;
    for (const auto& [option, value] : {std::pair("-l ", &asked.level), {"-t ", &asked.table}})
      if (line.find(option) != std::string::npos)
        *value = orlo::vostrand_lib::GetOptionValue(line.c_str(), option).trimmed();
  }
  asked.read_whole = lines.eof();
  return asked;
}

}  // namespace

ToolFiles FilesOf(const std::vector<std::string>& tool_arguments) {
  if (tool_arguments.size() == 1) return OfBaseName(tool_arguments[0]);
  if (tool_arguments.size() == 2 && IsSwitch(tool_arguments[0]) == IsSwitch(tool_arguments[1]) &&
      (!IsSwitch(tool_arguments[0]) || tool_arguments[0] != tool_arguments[1]))
    return {};
  if (tool_arguments.size() == 2) return OfBaseName(tool_arguments[IsSwitch(tool_arguments[0]) ? 1 : 0]);

  std::vector<std::string> copy = tool_arguments;
  copy.insert(copy.begin(), "vostrand");
  std::vector<char*> argv;
  argv.reserve(copy.size() + 1);
  for (std::string& argument : copy) argv.push_back(argument.data());
  argv.push_back(nullptr);
  const UT_CMDARGS parser(static_cast<int>(copy.size()), argv.data(),
                          orlo::vostrand_lib::cmdformat.getstring(), NoHelp, 0);
  if (parser.helpShown || !parser.error().empty()) return {};
  const auto value_of = [&](const char* name) -> std::string {
    const UT_SWITCH* const given = parser.getsw(name, 0);
    if (!given || given->count == 0) return {};
    return orlo::vostrand_lib::GetCleanFileName(given->values[0]).getstring();
  };
  return {value_of("-p"),    value_of("-log"), value_of("-o"),   *parser.getarg(1),
          *parser.getarg(0), value_of("-pr"),  value_of("-tpr"), value_of("-tf")};
}

std::string WhyParCommandsAreRefused(const ToolFiles& files, const std::string& work_dir) {
  if (files.par_commands.empty()) return {};
  const Asked asked = AskedBy(files, work_dir);
  std::error_code error;
  if (!asked.read_whole && std::filesystem::exists(asked.path, error)) return "cannot read " + asked.path;
  const std::string level = asked.level.getstring();
  if (level.size() > longest_level) return "the level in " + asked.path + " is too long for file names";
  if (FitsCommandLine(level) && level.find('/') == std::string::npos) return {};
  return "the level \"" + level + "\" in " + asked.path +
         " makes run names with blanks, quotes or \"/\", which cannot be run";
}

bool AsksForSeveral(const ToolFiles& files, const std::string& work_dir) {
  return AskedBy(files, work_dir).several;
}

std::string WhyPlanIsRefused(const ToolFiles& files, const std::string& work_dir, bool multi_run,
                             const std::string& first_run) {
  const Asked asked = AskedBy(files, work_dir);
  std::error_code error;
  if (!std::filesystem::is_regular_file(asked.path, error)) return {};
  const std::size_t underscore = first_run.rfind('_');
  const long long wanted = std::atoll(asked.table.getstring());
  const bool same_table =
      std::abs(wanted) > INT_MAX || std::atoll(first_run.c_str() + underscore + 1) == wanted;
  if (asked.read_whole && asked.several == multi_run &&
      first_run.substr(0, underscore) == asked.level.getstring() && same_table)
    return {};
  return "the plan is not what " + asked.path + " asks for, or that cannot be read";
}

}  // namespace vostrand
