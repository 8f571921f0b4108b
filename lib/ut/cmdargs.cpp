#include "ut/cmdargs.h"

#include <algorithm>
#include <deque>
#include <map>
#include <string>
#include <string_view>

namespace {

// Text after one or two dashes; the whole text when it has none.
std::string_view without_dashes(std::string_view text) {
  const std::size_t dashes = std::min(text.find_first_not_of('-'), std::size_t{2});
  return text.substr(std::min(dashes, text.size()));
}

bool looks_like_switch(std::string_view argument) {
  return argument.size() > 1 && argument[0] == '-';
}

// What a synopsis allows.
struct grammar {
  std::map<std::string, bool, std::less<>> switches;  // Name without dashes; does it take a value?
  std::size_t positionals = 0;

  explicit grammar(std::string_view synopsis);

  const bool* takes_value(std::string_view argument) const {
    if (!looks_like_switch(argument)) return nullptr;
    const auto found = switches.find(without_dashes(argument));
    return found == switches.end() ? nullptr : &found->second;
  }
};

grammar::grammar(std::string_view synopsis) {
  std::size_t at = synopsis.find(' ');  // Behind the tool's name.
  while (at < synopsis.size()) {
    const char open = synopsis[at];
    const std::string_view closers = open == '{' ? "}" : open == '[' ? "]" : open == '<' ? ">" : "";
    const std::size_t end = closers.empty() ? at : std::min(synopsis.find(closers, at), synopsis.size());
    const std::string_view item = synopsis.substr(at, end - at).substr(closers.empty() ? 0 : 1);
    if (open == '<')
      ++positionals;
    else if (looks_like_switch(item))
      switches.emplace(without_dashes(item.substr(0, item.find(' '))), item.find('<') != item.npos);
    at = end + 1;
  }
}

bool is_help(std::string_view argument) {
  return argument == "-h" || argument == "--h";
}

}  // namespace

struct UT_CMDARGS::parsed {
  struct occurrence {
    UT_SWITCH record;
    char* value = nullptr;
  };

  // Deques, whose elements stay where they are: records point to values, callers to positionals.
  std::map<std::string, std::deque<occurrence>, std::less<>> switches;
  std::deque<char*> positionals;
  UT_STROBJ error;

  void add_switch(std::string_view name, char* value) {
    occurrence& added = switches[std::string(name)].emplace_back();
    added.value = value;
    if (value) added.record = {1, &added.value};
  }

  void parse(const grammar& allowed, int argc, char** argv);
};

void UT_CMDARGS::parsed::parse(const grammar& allowed, int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const bool* const takes_value = allowed.takes_value(argv[i]);
    if (takes_value) {
      const bool has_value = *takes_value && i + 1 < argc && !allowed.takes_value(argv[i + 1]);
      if (*takes_value && !has_value) {
        error.str_format("Switch \"%s\" needs a value.", argv[i]);
        return;
      }
      add_switch(without_dashes(argv[i]), has_value ? argv[i + 1] : nullptr);
      i += has_value;
    } else if (looks_like_switch(argv[i])) {
      error.str_format("Unknown switch \"%s\".", argv[i]);
      return;
    } else {
      positionals.push_back(argv[i]);
    }
  }
  if (positionals.size() != allowed.positionals)
    error.str_format("Expected %zu arguments besides the switches, but got %zu.", allowed.positionals,
                     positionals.size());
}

UT_CMDARGS::UT_CMDARGS(int argc, char** argv, const char* synopsis, void (*usage)(), unsigned short)
    : parsed_(std::make_unique<parsed>()) {
  const int given = argv && argc > 0 ? argc : 0;
  if (std::any_of(argv + std::min(given, 1), argv + given, is_help)) {
    helpShown = 1;
    if (usage) usage();
    return;
  }
  parsed_->parse(grammar(synopsis ? synopsis : ""), given, argv);
}

UT_CMDARGS::~UT_CMDARGS() = default;

const UT_STROBJ& UT_CMDARGS::error() const {
  return parsed_->error;
}

const UT_SWITCH* UT_CMDARGS::getsw(const char* name, short occurrence) const {
  const auto found = parsed_->switches.find(without_dashes(name ? name : ""));
  if (found == parsed_->switches.end() || occurrence < 0) return nullptr;
  const auto at = static_cast<std::size_t>(occurrence);
  return at < found->second.size() ? &found->second[at].record : nullptr;
}

char** UT_CMDARGS::getarg(short n) const {
  if (n < 0 || static_cast<std::size_t>(n) >= parsed_->positionals.size()) return nullptr;
  return &parsed_->positionals[static_cast<std::size_t>(n)];
}
