#include "par/command_line.h"

#include <filesystem>
#include <functional>
#include <map>

#include "common/files.h"
#include "common/options.h"
#include "common/text.h"

namespace toolchain {
namespace {

namespace fs = std::filesystem;

constexpr const char* usage =
    "par [-f OPTIONS] [-l 1-5] [-i 1-1000] [-n 1] [-t SEED] [-s 1] [-c N] DESIGN OUT.dir|OUT.ncd PREFERENCES";

// Some callers plan several runs themselves and start this program once for each.
void RequireOne(const Word& value) {
  if (value.Number(0, 99) > 1) throw value.Error("this program makes one run; start it once for each run");
}

void Apply(const Option& option, ParRequest& request) {
  const Word& value = option.value;
  const std::string& name = option.name.text;
  if (name == "-l") request.effort = value.Number(1, 5);
  if (name == "-i") request.time_units = value.Number(1, 1000);
  if (name == "-t") request.seed = value.Number(0, 1000000);
  if (name == "-n" || name == "-s") RequireOne(value);
  if (name == "-c") request.cleanups = value.Number(0, 1000) > 0;
  request.options += (request.options.empty() ? "" : " ") + name + ' ' + value.text;
}

void SetOutput(const Word& out, ParRequest& request) {
  const fs::path path = out.text;
  if (path.extension() == ".dir" && !path.stem().empty()) {
    request.row_name = path.stem();
    request.folder = path;
    request.netlist = path / (request.row_name + ".ncd");
    request.pins = path / (request.row_name + ".pad");
    request.report = path.parent_path() / (request.row_name + ".par");
  } else if (path.extension() == ".ncd" && !path.stem().empty()) {
    request.row_name = Format("%d_%d", request.effort, request.seed);
    request.netlist = path;
    request.pins = fs::path(path).replace_extension(".pad");
    request.report = fs::path(path).replace_extension(".par");
  } else {
    throw out.Error("the output must be a \".ncd\" file or a \".dir\" folder");
  }
  const fs::path parent = path.has_parent_path() ? path.parent_path() : ".";
  if (!fs::is_directory(parent)) throw out.Error("there is no folder " + Quoted(parent.string()));
}

}  // namespace

ParRequest ReadParCommandLine(int argc, char** argv) {
  const Arguments arguments =
      SortArguments(ArgumentWords(argc, argv),
                    {{"-l", true}, {"-i", true}, {"-n", true}, {"-t", true}, {"-s", true}, {"-c", true}});
  if (arguments.operands.size() != 3) throw UsageError(usage);
  ParRequest request;
  for (const Option& option : arguments.options) Apply(option, request);
  request.design = arguments.operands[0].text;
  request.preferences = arguments.operands[2].text;
  SetOutput(arguments.operands[1], request);
  std::vector<std::string> inputs = arguments.files;
  inputs.insert(inputs.end(), {request.design, request.preferences});
  RequireApart(inputs, {request.netlist, request.pins, request.report});
  return request;
}

}  // namespace toolchain
