#include "options/option_list.h"

#include <unistd.h>

#include <charconv>
#include <filesystem>
#include <optional>

#include "options/units.h"

namespace vostrand {
namespace {

struct HelpFormatter final : CLI::Formatter {
  std::string make_usage(const CLI::App*, std::string) const override {
    return "Usage: vostrand [host options] [--] <tool arguments>\n";
  }
};

using Parser = CLI::App;

constexpr int most = 10000;  // Of anything that is counted.

void AddDuration(Parser& parser, const std::string& name, double& seconds, double least,
                 const std::string& help, const std::string& group) {
  const auto take = [name, least, &seconds](const std::string& text) {
    const std::optional<double> read = ReadDuration(text);
    if (!read || *read < least)
      throw CLI::ValidationError(name, "needs a duration such as 90s, 20m or 2h, not " + text);
    seconds = *read;
  };
  parser.add_option_function<std::string>(name, take, help)->option_text("DURATION")->group(group);
}

void AddSize(Parser& parser, const std::string& name, std::int64_t& bytes, const std::string& help,
             const std::string& group) {
  const auto take = [name, &bytes](const std::string& text) {
    const std::optional<std::int64_t> read = ReadSize(text);
    if (!read) throw CLI::ValidationError(name, "needs a size such as 512M or 4G, not " + text);
    bytes = *read;
  };
  parser.add_option_function<std::string>(name, take, help)->option_text("SIZE")->group(group);
}

CLI::Option* AddNumber(Parser& parser, const std::string& name, int& number, int least,
                       const std::string& help, const std::string& group) {
  const auto take = [name, least, &number](const std::string& text) {
    int read = 0;  // Decimal whatever its first digits are.
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), read);
    if (error != std::errc() || end != text.data() + text.size() || read < least || read > most)
      throw CLI::ValidationError(name, "needs a whole number from " + std::to_string(least) + " to " +
                                           std::to_string(most) + ", not " + text);
    number = read;
  };
  return parser.add_option_function<std::string>(name, take, help)->option_text("N")->group(group);
}

void AddFolder(Parser& parser, const std::string& name, std::string& folder, const std::string& help) {
  parser.add_option(name, folder, help)
      ->option_text("DIR")
      ->check(CLI::ExistingDirectory.description(""))
      ->group("Running");
}

// A record's file is written long after the command line was read: what is wrong with it is said now.
std::string WhyNotWritable(const std::string& file) {
  const std::filesystem::path path(file);
  const std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : ".";
  std::error_code error;
  if (file.empty() || std::filesystem::is_directory(path, error)) return "needs the name of a file";
  if (!std::filesystem::is_directory(folder, error)) return "there is no folder " + folder.string();
  const bool there = std::filesystem::exists(path, error);
  return access(there ? path.c_str() : folder.c_str(), W_OK) == 0 ? "" : "cannot write " + file;
}

CLI::Option* AddRecord(Parser& parser, const std::string& name, std::string& file, const std::string& help) {
  return parser.add_option(name, file, help)
      ->option_text("FILE")
      ->check(CLI::Validator(WhyNotWritable, ""))
      ->group("Records");
}

void AddRunning(Parser& parser, HostOptions& options) {
  AddNumber(parser, "--jobs", options.jobs, 1,
            "Most runs at once (default: the processors this process may use; on a cluster all)", "Running");
  AddFolder(parser, "--toolchain", options.toolchain, "Folder searched first for par and sorv");
  AddFolder(parser, "--chdir", options.work_dir, "Working directory of the tool run");
  parser.add_option("--launcher", options.launcher, "Where runs run: on this machine or a Slurm cluster")
      ->option_text("local|slurm")
      ->check(CLI::IsMember({"local", "slurm"}).description(""))
      ->group("Running");
  parser.add_option("--slurm-args", options.slurm_args, "Further options for the cluster's sbatch")
      ->option_text("ARGS")
      ->group("Running");
  AddNumber(parser, "--requeues", options.requeues, 0,
            "Submit a run again whose cluster node failed, up to N times (default 2)", "Running");
  parser.add_flag("--resume", options.resume, "Go on with a sweep: what finished is not run again")
      ->group("Running");
}

void AddLimits(Parser& parser, HostOptions& options) {
  const std::string group = "Limits";
  AddDuration(parser, "--timeout", options.timeout_seconds, 0.001, "End a step that takes longer", group);
  AddNumber(parser, "--retries", options.retries, 0, "Try a failed step again, up to N times", group);
  AddSize(parser, "--memory", options.memory_bytes,
          "Start no run whose expected memory does not fit in SIZE with those that run", group);
}

void AddStops(Parser& parser, HostOptions& options) {
  const std::string group = "Stopping";
  AddNumber(parser, "--until", options.until, 1, "Stop once N runs meet timing", group);
  CLI::Option* const fail_fast =
      parser.add_flag("--fail-fast", options.fail_fast, "Stop at the first failed run")->group(group);
  parser
      .add_flag_callback(
          "--keep-going", [] {}, "Go on when runs fail (default)")
      ->excludes(fail_fast)
      ->group(group);
  CLI::Option* const stop_now =
      parser.add_flag("--stop-now", options.stop_now, "When the sweep stops, end the runs that still go on")
          ->group(group);
  AddDuration(parser, "--grace", options.grace_seconds, 0,
              "... but let one end that is expected to within this", group);
  parser.get_option("--grace")->needs(stop_now);
}

void AddRecords(Parser& parser, HostOptions& options) {
  AddRecord(parser, "--json", options.json_file, "Everything about the sweep, for programs");
  AddRecord(parser, "--html", options.html_file, "A report page for people");
  AddRecord(parser, "--events", options.events_file, "One JSON line per event, as it happens");
  CLI::Option* const junit = AddRecord(parser, "--junit", options.junit_file, "A test case per run");
  AddRecord(parser, "--trace", options.trace_file, "A track per job slot, for timeline viewers");
  parser.add_flag("--require-timing", options.require_timing, "A run that misses timing fails its test case")
      ->needs(junit)
      ->group("Records");
  const auto retain = [&options](const std::string& which) { options.retain_best = which == "best"; };
  parser.add_option_function<std::string>("--retain", retain, "Whose files are kept (default: all)")
      ->option_text("all|best")
      ->check(CLI::IsMember({"all", "best"}).description(""))
      ->group("Records");
}

void AddLooks(Parser& parser, HostOptions& options) {
  const std::string group = "Looking";
  CLI::Option* const quiet =
      parser.add_flag("--quiet", options.quiet, "No progress; errors and failed runs only")->group(group);
  parser.add_flag("--verbose", options.verbose, "Show what the tools and the library say too")
      ->excludes(quiet)
      ->group(group);
  parser.add_flag("--dry-run", options.dry_run, "Show the plan; change nothing")->group(group);
  parser.add_flag("--version", options.show_version, "Show the version")->group(group);
  parser.add_flag("--help", options.show_help, "Show this help and the tool arguments")->group(group);
}

}  // namespace

std::unique_ptr<Parser> MakeParser(HostOptions& options) {
  auto parser = std::make_unique<Parser>(
      "Runs one design through many place-and-route runs, scores them and picks the best.", "vostrand");
  parser->formatter(std::make_shared<HelpFormatter>());
  parser->set_help_flag();
  AddRunning(*parser, options);
  AddLimits(*parser, options);
  AddStops(*parser, options);
  AddRecords(*parser, options);
  AddLooks(*parser, options);
  parser->footer(
      "Examples:\n"
      "  vostrand top                            top_map.ncd, top.prf and top.p2t give top.ncd\n"
      "  vostrand --jobs 4 top -dissorv          four at once, ranked by place-and-route result\n"
      "  vostrand --until 3 --html top.html top  stop once three runs meet timing; write a page\n"
      "  vostrand --resume top                   go on with what was interrupted\n"
      "  vostrand --dry-run --chdir designs top  what would be run\n"
      "A lone \"--\" ends the host options.");
  return parser;
}

}  // namespace vostrand
