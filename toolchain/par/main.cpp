// Places and routes one design once. The timing of the result is measured by the same analysis that sorv
// runs.
#include <chrono>
#include <cstdio>
#include <filesystem>

#include "common/child_process.h"
#include "common/files.h"
#include "common/text.h"
#include "par/command_line.h"
#include "par/engine_run.h"
#include "par/reports.h"

namespace {

using namespace toolchain;

// A failed run must leave nothing that looks like its result.
void RemoveOldOutput(const ParRequest& request) {
  for (const std::string& path : {request.report, request.netlist, request.pins}) RemoveFile(path);
}

void MakeFolder(const std::string& folder) {
  if (folder.empty()) return;
  std::error_code error;
  std::filesystem::create_directory(folder, error);
  if (error)
    throw Failure(ExitCode::output, "cannot make the folder " + Quoted(folder) + ": " + error.message());
}

void PlaceAndRouteOnce(int argc, char** argv) {
  const auto start = std::chrono::steady_clock::now();
  const ParRequest request = ReadParCommandLine(argc, argv);
  RemoveOldOutput(request);
  const Ports ports = PortsOfDesign(ReadFile(request.design, "design file"), request.design);
  // Before the engine starts: a misspelt name should not cost a run.
  const std::vector<BoundPreference> preferences = Bind(ReadPreferences(request.preferences), ports);

  CatchSignals();  // What is read may be a pipe: before here one ends this program at once.
  const EngineFiles files = PlaceAndRoute(request);
  const std::string routed = MakeRoutedFile(files.netlist, files.report, files.timing, ports);
  const RoutedDesign design = ParseRoutedFile(routed, request.netlist);
  const std::vector<PreferenceTiming> results = Analyse(design, preferences, {});
  CheckSignals();

  MakeFolder(request.folder);
  WriteFile(request.netlist, routed);
  WriteFile(request.pins, PinList(design));
  const auto run_time =
      std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start);
  WriteFile(request.report, ParReport(request, design, preferences, results, run_time));

  const TimingSummary timing = Summarise(results, &PreferenceTiming::setup);
  std::printf("par: %s routed, %d endpoints fail, timing score %ld\n", request.row_name.c_str(),
              timing.failing, timing.score);
}

}  // namespace

int main(int argc, char** argv) {
  return RunProgram("par", [&] { PlaceAndRouteOnce(argc, argv); });
}
