#include "common/options.h"

#include <algorithm>
#include <array>

#include "common/text.h"

namespace toolchain {
namespace {

constexpr std::string_view file_option = "-f";
constexpr std::array ignored_options = {OptionRule{"-gui", false}, OptionRule{"-msg", true},
                                        OptionRule{"-msgset", true}, OptionRule{"-stopzero", false}};

class Sorter {
 public:
  explicit Sorter(const std::vector<OptionRule>& rules) : rules_(rules) {}

  void Sort(const std::vector<Word>& words, bool in_file) {
    for (std::size_t at = 0; at < words.size(); ++at) {
      const Word& word = words[at];
      if (!word.text.starts_with('-')) {
        if (in_file) throw word.Error(Quoted(word.text) + " is no option");
        sorted.operands.push_back(word);
        continue;
      }
      const bool names_file = word.text == file_option && !in_file;
      const OptionRule* const rule = names_file ? &file_rule_ : Find(rules_, word.text);
      const OptionRule* const dropped = Find(ignored_options, word.text);
      if (!rule && !dropped) throw word.Error("unknown option " + Quoted(word.text));
      const bool takes_value = rule ? rule->takes_value : dropped->takes_value;
      if (takes_value && at + 1 == words.size()) throw word.Error("option " + word.text + " needs a value");
      const Word value = takes_value ? words[++at] : Word();
      if (names_file) sorted.files.push_back(value.text);
      if (names_file)
        Sort(SplitWords(ReadSource(value.text, "options file")), true);
      else if (rule)
        sorted.options.push_back({word, value});
    }
  }

  Arguments sorted;

 private:
  template <typename Rules>
  static const OptionRule* Find(const Rules& rules, std::string_view name) {
    const auto found =
        std::find_if(rules.begin(), rules.end(), [&](const OptionRule& rule) { return rule.name == name; });
    return found == rules.end() ? nullptr : &*found;
  }

  const std::vector<OptionRule>& rules_;
  const OptionRule file_rule_{file_option, true};
};

}  // namespace

Arguments SortArguments(const std::vector<Word>& words, const std::vector<OptionRule>& rules) {
  Sorter sorter(rules);
  sorter.Sort(words, false);
  return sorter.sorted;
}

Failure UsageError(const std::string& usage) {
  return {ExitCode::usage, "usage: " + usage};
}

}  // namespace toolchain
