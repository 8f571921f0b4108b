#include "common/preferences.h"

#include <array>
#include <charconv>
#include <utility>

#include "common/preference_lexer.h"
#include "common/text.h"

namespace toolchain {
namespace {

// Both ends print in the thirteen columns that a report has for a value.
constexpr double least_value = 0.001;
constexpr double most_value = 99999.999;

constexpr std::array kinds = {std::pair("FREQUENCY", PreferenceKind::frequency),
                              std::pair("PERIOD", PreferenceKind::period),
                              std::pair("INPUT_SETUP", PreferenceKind::input_setup),
                              std::pair("CLOCK_TO_OUT", PreferenceKind::clock_to_out)};

class StatementReader {
 public:
  explicit StatementReader(const Statement& statement) : statement_(statement) {}

  // The preference, or nothing when the statement is a bare kind.
  std::optional<Preference> Read() {
    Preference preference;
    preference.text = statement_.text;
    // A report's row is 40 characters of it, and one that begins with a dash ends the table.
    if (preference.text.find(std::string(40, '-')) != std::string::npos)
      throw Next().word.Error("the statement, comments between its lines included, holds 40 dashes in a row");
    preference.kind = TakeKind();
    if (Next().kind == Token::Kind::end) return std::nullopt;
    ReadObject(preference);
    ReadValue(preference);
    if (!preference.IsClock()) {
      preference.clock_object = TakeOneOf(
          {{"CLKPORT", Preference::Object::port}, {"CLKNET", Preference::Object::net}}, "CLKPORT or CLKNET");
      preference.clock = TakeName();
    }
    if (Next().kind != Token::Kind::end) throw Next().word.Error("expected \";\"");
    return preference;
  }

 private:
  using Choice = std::pair<std::string_view, Preference::Object>;

  const Token& Next() const { return statement_.tokens[at_]; }

  PreferenceKind TakeKind() {
    for (const auto& [name, kind] : kinds)
      if (Next().kind == Token::Kind::word && Next().word.text == name) {
        ++at_;
        return kind;
      }
    throw Next().word.Error("unknown statement; known are FREQUENCY, PERIOD, INPUT_SETUP and CLOCK_TO_OUT");
  }

  Preference::Object TakeOneOf(std::initializer_list<Choice> choices, std::string_view expected) {
    for (const auto& [word, object] : choices)
      if (Next().kind == Token::Kind::word && Next().word.text == word) {
        ++at_;
        return object;
      }
    throw Next().word.Error("expected " + std::string(expected));
  }

  Word TakeName() {
    if (Next().kind != Token::Kind::name) throw Next().word.Error("expected a name in double quotes");
    if (Next().word.text.empty()) throw Next().word.Error("the name is empty");
    return statement_.tokens[at_++].word;
  }

  void ReadObject(Preference& preference) {
    if (preference.IsClock())
      preference.object =
          TakeOneOf({{"NET", Preference::Object::net}, {"PORT", Preference::Object::port}}, "NET or PORT");
    else
      preference.object =
          TakeOneOf({{"PORT", Preference::Object::port}, {"ALLPORTS", Preference::Object::all_ports}},
                    "PORT or ALLPORTS");
    if (preference.object == Preference::Object::all_ports)
      preference.name = statement_.tokens[at_ - 1].word;
    else
      preference.name = TakeName();
  }

  void ReadValue(Preference& preference) {
    const Word& word = Next().word;
    const char* const end = word.text.data() + word.text.size();
    const auto [stop, error] =
        std::from_chars(word.text.data(), end, preference.value, std::chars_format::fixed);
    if (Next().kind != Token::Kind::word || error != std::errc() || stop != end ||
        !(preference.value >= least_value && preference.value <= most_value))
      throw word.Error(Format("expected a number from %.3f to %.3f", least_value, most_value));
    ++at_;
    const std::string unit = preference.kind == PreferenceKind::frequency ? "MHz" : "ns";
    TakeOneOf({{unit, Preference::Object::port}}, "the unit " + unit);
  }

  const Statement& statement_;
  std::size_t at_ = 0;
};

}  // namespace

std::string InUnitOf(const Preference& preference, double nanoseconds) {
  return preference.kind == PreferenceKind::frequency ? Format("%.3f MHz", 1000.0 / nanoseconds)
                                                      : Format("%.3f ns", nanoseconds);
}

std::vector<Preference> ReadPreferences(const std::string& path) {
  PreferenceLexer lexer(ReadSource(path, "preference file"));
  std::vector<Preference> preferences;
  while (const std::optional<Statement> statement = lexer.Next())
    if (std::optional<Preference> preference = StatementReader(*statement).Read())
      preferences.push_back(std::move(*preference));
  return preferences;
}

}  // namespace toolchain
