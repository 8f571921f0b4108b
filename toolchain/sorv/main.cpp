// Reports the timing of a routed design. Everything it needs of the device is in the design, so the engine
// does not run.
#include <string>

#include "common/child_process.h"
#include "common/files.h"
#include "common/options.h"
#include "common/text.h"
#include "sorv/timing_report.h"

namespace {

using namespace toolchain;

constexpr const char* usage = "sorv [-f OPTIONS] [-v PATHS] -o REPORT.twr DESIGN.ncd PREFERENCES";

struct SorvRequest {
  std::string report;
  std::string design;
  std::string preferences;
  int paths = 3;  // Of each preference, in the report.
};

SorvRequest ReadSorvCommandLine(int argc, char** argv) {
  const Arguments arguments = SortArguments(ArgumentWords(argc, argv), {{"-o", true}, {"-v", true}});
  SorvRequest request;
  for (const Option& option : arguments.options) {
    if (option.name.text == "-o") request.report = option.value.text;
    if (option.name.text == "-v") request.paths = option.value.Number(1, 1000);
  }
  if (request.report.empty() || arguments.operands.size() != 2) throw UsageError(usage);
  request.design = arguments.operands[0].text;
  request.preferences = arguments.operands[1].text;
  std::vector<std::string> inputs = arguments.files;
  inputs.insert(inputs.end(), {request.design, request.preferences});
  RequireApart(inputs, {request.report});
  return request;
}

void ReportTiming(int argc, char** argv) {
  const SorvRequest request = ReadSorvCommandLine(argc, argv);
  RemoveFile(request.report);  // A failed run must leave nothing that looks like its result.
  const RoutedDesign design = ParseRoutedFile(ReadFile(request.design, "design"), request.design);
  const std::vector<BoundPreference> preferences = Bind(ReadPreferences(request.preferences), design.ports);
  CatchSignals();  // What was read may be a pipe: before here one ends this program at once.
  const std::vector<PreferenceTiming> results =
      Analyse(design, preferences, {.ideal_clocks = false, .paths = request.paths});
  CheckSignals();
  WriteFile(request.report, TimingReport(request.design, request.preferences, preferences, results));
}

}  // namespace

int main(int argc, char** argv) {
  return RunProgram("sorv", [&] { ReportTiming(argc, argv); });
}
