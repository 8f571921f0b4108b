#include "par/engine_run.h"

#include <QDir>
#include <QTemporaryDir>
#include <array>
#include <filesystem>

#include "analysis/routed_design.h"
#include "common/child_process.h"
#include "common/files.h"
#include "common/text.h"

namespace toolchain {
namespace {

struct Effort {
  const char* in_words;
  std::vector<std::string> arguments;
};

const Effort& EffortAt(int level) {
  static const std::array<Effort, 5> efforts = {{
      {"analytic placement by wire length alone", {"--no-tmdriv"}},
      {"analytic placement, timing counts little",
       {"--placer-heap-timingweight", "3", "--placer-heap-critexp", "1"}},
      {"analytic placement, timing counts", {}},
      {"analytic placement, timing counts much",
       {"--placer-heap-timingweight", "30", "--placer-heap-critexp", "4"}},
      {"placement by simulated annealing", {"--placer", "sa"}},
  }};
  return efforts.at(static_cast<std::size_t>(level) - 1);
}

// The router's last line of progress: "iter=12 wires=12257 overused=3 overuse=3 ...".
std::string RoutingProgress(const std::string& log) {
  const std::size_t line = log.rfind("iter=");
  const std::size_t used = line == std::string::npos ? line : log.find("overused=", line);
  if (used == std::string::npos) return "routing had not begun";
  const int count = std::atoi(log.c_str() + used + std::string("overused=").size());
  const int iteration = std::atoi(log.c_str() + line + std::string("iter=").size());
  return Format("after %d rounds of routing %d wires were still wanted by more than one net", iteration,
                count);
}

std::string FirstErrorIn(const Outcome& outcome) {
  const std::size_t error = outcome.output.find("ERROR: ");
  if (error != std::string::npos) {
    const std::size_t begin = error + std::string("ERROR: ").size();
    return outcome.output.substr(begin, outcome.output.find('\n', begin) - begin);
  }
  const std::string how =
      outcome.signal ? Format("signal %d", outcome.signal) : Format("exit code %d", outcome.exit_code);
  return how + (outcome.output.empty() ? "" : "\n" + outcome.output);
}

void RequireSuccess(const Outcome& outcome, const ParRequest& request, const std::string& log) {
  if (outcome.timed_out) {
    const std::string progress =
        std::filesystem::exists(log) ? RoutingProgress(ReadFile(log, "the engine's log")) : "";
    throw Failure(ExitCode::too_long, Format("not routed within %lld s (-i %d): %s",
                                             static_cast<long long>(TimeLimit(request).count()),
                                             request.time_units, progress.c_str()));
  }
  if (outcome.signal || outcome.exit_code)
    throw Failure(ExitCode::engine, "place and route failed: " + FirstErrorIn(outcome));
}

}  // namespace

const char* EffortInWords(int level) {
  return EffortAt(level).in_words;
}

std::chrono::seconds TimeLimit(const ParRequest& request) {
  constexpr std::chrono::seconds unit{8};
  return unit * request.time_units;
}

EngineFiles PlaceAndRoute(const ParRequest& request) {
  const QTemporaryDir scratch(QDir::tempPath() + "/vostrand-XXXXXX");
  if (!scratch.isValid()) throw Failure(ExitCode::output, "cannot make a temporary folder");
  const auto in_scratch = [&](const char* name) { return scratch.filePath(name).toStdString(); };
  Command engine{.program = "nextpnr-generic",
                 .arguments = {"--json",
                               request.design,
                               "--seed",
                               std::to_string(request.seed),
                               "--router",
                               "router2",
                               "--timing-allow-fail",
                               "--pre-pack",
                               EngineFile("pre_pack.py"),
                               "--pre-place",
                               EngineFile("pre_place.py"),
                               "--post-route",
                               EngineFile("post_route.py"),
                               "--write",
                               in_scratch("routed"),
                               "--report",
                               in_scratch("report"),
                               "--log",
                               in_scratch("log"),
                               "-q"},
                 .folder = {},
                 .environment = {{"VOSTRAND_TIMING", in_scratch("timing")}},
                 .time_limit = TimeLimit(request)};
  const std::vector<std::string>& effort = EffortAt(request.effort).arguments;
  engine.arguments.insert(engine.arguments.end(), effort.begin(), effort.end());
  RequireSuccess(Run(engine), request, in_scratch("log"));
  EngineFiles files{.netlist = ReadFile(in_scratch("routed"), "the engine's netlist"),
                    .report = ReadFile(in_scratch("report"), "the engine's report"),
                    .timing = ReadFile(in_scratch("timing"), "the engine's delays")};
  if (const int unrouted = UnroutedIn(files.timing); unrouted != 0)
    throw Failure(ExitCode::engine, Format("place and route failed: %d connections are unrouted", unrouted));
  return files;
}

}  // namespace toolchain
