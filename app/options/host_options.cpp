#include "options/host_options.h"

#include <algorithm>

#include "context/globals.h"
#include "options/did_you_mean.h"
#include "options/option_list.h"

namespace vostrand {
namespace {

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
    if (!takes_next || word + 1 == arguments.end()) continue;
    // Its value is made of options, which the parser would take for its own.
    if (*word == "--slurm-args")
      host_words.back() += "=" + *++word;
    else
      host_words.push_back(*++word);
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
    if (!line.host.slurm_args.empty() && line.host.launcher != "slurm")
      line.error = "--slurm-args needs --launcher slurm";
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
