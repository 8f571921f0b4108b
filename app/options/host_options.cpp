#include "options/host_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "context/globals.h"
#include "options/did_you_mean.h"

namespace vostrand {
namespace {

struct HelpFormatter final : CLI::Formatter {
  std::string make_usage(const CLI::App*, std::string) const override {
    return "Usage: vostrand [host options] [--] <tool arguments>\n";
  }
};

// The options as the parser library knows them, bound to where their values go.
std::unique_ptr<CLI::App> MakeParser(HostOptions& options) {
  auto app = std::make_unique<CLI::App>(
      "Runs one design through many place-and-route runs, scores them and picks the best.", "vostrand");
  app->formatter(std::make_shared<HelpFormatter>());
  app->set_help_flag();
  app->add_option("--jobs", options.jobs, "Most runs at once (default: the processors this process may use)")
      ->option_text("N")
      ->check(CLI::Range(1, 10000).description(""))
      ->group("Running");
  app->add_option("--toolchain", options.toolchain, "Folder searched first for par and sorv")
      ->option_text("DIR")
      ->check(CLI::ExistingDirectory.description(""))
      ->group("Running");
  app->add_option("--chdir", options.work_dir, "Working directory of the tool run")
      ->option_text("DIR")
      ->check(CLI::ExistingDirectory.description(""))
      ->group("Running");
  app->add_flag("--dry-run", options.dry_run, "Show the plan; change nothing")->group("Looking");
  app->add_flag("--verbose", options.verbose, "Show the library's status lines too")->group("Looking");
  app->add_flag("--version", options.show_version, "Show the version")->group("Looking");
  app->add_flag("--help", options.show_help, "Show this help and the tool arguments")->group("Looking");
  app->footer(
      "Examples:\n"
      "  vostrand top                            top_map.ncd, top.prf and top.p2t give top.ncd\n"
      "  vostrand --jobs 4 top -dissorv          four at once, ranked by place-and-route result\n"
      "  vostrand --dry-run --chdir designs top  what would be run\n"
      "A lone \"--\" ends the host options.");
  return app;
}

std::string NameOf(const std::string& word) {
  return word.substr(0, word.find('='));
}

// The option of this name, or null.
const CLI::Option* Find(const CLI::App& parser, const std::string& word) {
  return parser.get_option_no_throw(NameOf(word));
}

// The switches of the library's synopsis, as written with two dashes.
std::vector<std::string> LibrarySwitches() {
  std::vector<std::string> switches;
  const std::string synopsis = orlo::vostrand_lib::cmdformat.getstring();
  for (std::size_t at = synopsis.find('-'); at != std::string::npos; at = synopsis.find('-', at)) {
    const std::size_t begin = synopsis.find_first_not_of('-', at);
    const std::size_t end = synopsis.find_first_of(" }]", begin);
    switches.push_back("--" + synopsis.substr(begin, end - begin));
    at = end;
  }
  return switches;
}

bool IsLong(const std::string& word) {
  return word.size() > 2 && word.starts_with("--");
}

// Why a word among the tool arguments cannot be one; empty when it can.
std::string WhyNoToolArgument(const CLI::App& parser, const std::string& word) {
  if (!IsLong(word)) return {};
  if (Find(parser, word))
    return NameOf(word) + " is a host option: it stands in front of the tool arguments.";
  std::vector<std::string> known = LibrarySwitches();
  if (std::find(known.begin(), known.end(), word) != known.end()) return {};
  for (const CLI::Option* option : parser.get_options()) known.push_back("--" + option->get_lnames().at(0));
  const std::string closest = ClosestTo(NameOf(word), known);
  return "unknown option " + word + (closest.empty() ? "." : "; did you mean " + closest + "?");
}

}  // namespace

CommandLine ReadCommandLine(const std::vector<std::string>& arguments) {
  CommandLine line;
  const std::unique_ptr<CLI::App> parser = MakeParser(line.host);
  std::vector<std::string> host_words;
  auto word = arguments.begin();
  for (; word != arguments.end() && *word != "--"; ++word) {
    const CLI::Option* const option = IsLong(*word) ? Find(*parser, *word) : nullptr;
    if (!option) break;
    host_words.push_back(*word);
    const bool takes_next = option->get_items_expected_max() > 0 && word->find('=') == std::string::npos;
    if (takes_next && word + 1 != arguments.end()) host_words.push_back(*++word);
  }
  const bool ended = word != arguments.end() && *word == "--";
  line.tool.assign(ended ? word + 1 : word, arguments.end());
  if (!ended && line.tool == std::vector<std::string>{"-h"}) {
    line.host.show_help = true;
    return line;
  }
  for (auto tool = line.tool.begin(); !ended && tool != line.tool.end() && *tool != "--"; ++tool) {
    line.error = WhyNoToolArgument(*parser, *tool);
    if (!line.error.empty()) return line;
  }
  try {
    std::reverse(host_words.begin(), host_words.end());  // The parser takes them from the back.
    parser->parse(host_words);
  } catch (const CLI::ParseError& error) {
    line.error = error.what();
  }
  return line;
}

std::string HelpText() {
  HostOptions unused;
  return MakeParser(unused)->help();
}

}  // namespace vostrand
