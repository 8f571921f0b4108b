#include "plan/tool_files.h"

#include <memory>

#include "context/globals.h"
#include "support/file_names.h"
#include "ut/cmdargs.h"

namespace vostrand {
namespace {

void NoHelp() {}

ToolFiles OfBaseName(const std::string& base) {
  return {{base + ".p2t", base + ".log", base + ".ncd", base + ".csv"}, {base + "_map.ncd"}};
}

bool IsSwitch(const std::string& argument) {
  return argument == "-dissorv" || argument == "-cst";
}

}  // namespace

ToolFiles FilesOf(const std::vector<std::string>& tool_arguments) {
  if (tool_arguments.size() == 1) return OfBaseName(tool_arguments[0]);
  if (tool_arguments.size() == 2) return OfBaseName(tool_arguments[IsSwitch(tool_arguments[0]) ? 1 : 0]);

  std::vector<std::string> copy = tool_arguments;
  std::vector<char*> argv = {const_cast<char*>("vostrand")};
  for (std::string& argument : copy) argv.push_back(argument.data());
  argv.push_back(nullptr);
  const UT_CMDARGS parser(static_cast<int>(argv.size()) - 1, argv.data(),
                          orlo::vostrand_lib::cmdformat.getstring(), NoHelp, 0);
  ToolFiles files;
  if (parser.helpShown || !parser.error().empty()) return files;
  const auto add = [&](std::vector<std::string>& list, const char* name) {
    const UT_SWITCH* const given = parser.getsw(name, 0);
    if (given && given->count > 0)
      list.push_back(orlo::vostrand_lib::GetCleanFileName(given->values[0]).getstring());
  };
  for (const char* const name : {"-p", "-log", "-o"}) add(files.written, name);
  files.read.push_back(*parser.getarg(0));
  files.written.push_back(*parser.getarg(1));
  return files;
}

}  // namespace vostrand
