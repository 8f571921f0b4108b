#include "scoring/preference_file.h"

#include "common/scratch.h"
#include "common/tool_run.h"
#include "context/thread_context.h"
#include "scoring/default_weights.h"
#include "scoring/preference_name.h"

namespace orlo::vostrand_lib {
namespace {

class Weights : public ScratchTest {
 protected:
  // The count and what the file changed, as " name=weight/penalty". Every kind's default is its own.
  std::string Annotations(const std::string& text) const {
    const WeightsMap defaults = {
        {"PERIOD", {2, 3}}, {"FREQUENCY", {5, 7}}, {"INPUT_SETUP", {11, 13}}, {"CLOCK_TO_OUT", {17, 19}}};
    WeightsMap weights = defaults;
    std::ostringstream shown;
    shown.precision(9);
    shown << GetWPFromPrf(Write("top.prf", text).c_str(), weights);
    for (const auto& [name, value] : weights) {
      const auto old = defaults.find(name);
      if (old != defaults.end() && old->second.weight == value.weight) continue;
      shown << ' ' << name.getstring() << '=' << value.weight << '/' << value.penalty;
    }
    return shown.str();
  }
};

TEST_F(Weights, AnnotationsMultiplyTheirKindsDefaults) {
  const std::string x(5000, 'x'), others = "PERIOD B; # w 2\nPERIOD C; # w 2";
  const std::pair<std::string, std::string> cases[] = {
      {"# FREQUENCY A ; # w 2\n\nBLOCK ASYNC ;\nFREQUENCY A ;\n", "0"},
      {"INPUT_SETUP A; # p 4\nCLOCK_TO_OUT\tB; # w 0\n", "2 CLOCK_TO_OUTB=0/19 INPUT_SETUPA=11/52"},
      // Numbers are read by their longest prefix and rounded to 32 bits before they are multiplied.
      {"PERIOD A; # w 1.5.9 p .\\1\nFREQUENCY A; # p 0.15", "2 FREQUENCYA=5/1.05000007 PERIODA=3/0"},
      // Of several kinds the first one of the list counts, in the text with its blanks.
      {"FREQUENCY \"PERIOD_IN\"; # w 2\nFREQUENCY \"PER IOD\"; # w 2",
       "2 FREQUENCY\"PERIOD\"=10/7 FREQUENCY\"PERIOD_IN\"=4/3"},
      {"LIMIT NET \"x\" 3; # w 2\nPERIOd A; # w 2\nCLOCK_TO_OUT INPUT_SETUP; # w 2",
       "1 CLOCK_TO_OUTINPUT_SETUP=22/13"},
      // Statements over several lines, comments among and in them.
      {"PER\r\nIOD A\n # one; more\n\n \t\b\n  _B ; # w 2 \t\b\r\r\nPERIOD B\n # w 3", "1 PERIODA_B=4/3"},
      {"PERIOD A # why \n; # w 2\nPERIOD B # stop;\nPERIOD C; # w 2\n", "2 PERIODA#why=4/3 PERIODC=4/3"},
      // Bytes that are no characters of the host's locale.
      {"PERIOD \"\xe9\xff\"; # w 2 \xfc", "1 PERIOD\"\xe9\xff\"=4/3"},
      // A later statement replaces both numbers; a kind's bare name changes what follows.
      {"PERIOD A; # w 2 p 2\nPERIOD  A ; # p 5", "2 PERIODA=2/15"},
      {"PERIOD A; # w 2\nPERIOD\t; # w 2 p 4\nPERIOD B; # p 2", "3 PERIOD=4/12 PERIODA=4/3 PERIODB=4/24"},
      // Long lines arrive in pieces of 254 characters: an annotation that begins a piece is a comment line;
      // one cut in two leaves its end to the next statement.
      {"PERIOD " + x + "\n" + x + "; # w 2\n", "1 PERIOD" + x + x + "=4/3"},
      {"PERIOD" + x.substr(0, 247) + "; # w 3\n" + others, "2 PERIODB=4/3 PERIODC=4/3"},
      {"PERIOD" + x.substr(0, 243) + ";# w 3\n" + others, "1 PERIODC=4/3"}};
  for (const auto& [text, annotations] : cases) EXPECT_EQ(Annotations(text), annotations) << text;
}

TEST_F(Weights, NamesInReportsKeepOneBlank) {
  EXPECT_STREQ(GetRegularItemName("PERIOD\t  A \t B  ").getstring(), "PERIOD A  B ");
}

TEST_F(Weights, DefaultWeightsComeFromTheFileKindByKind) {
  const std::string words = "[default]\nw=high\n[PERIOD]\np=0.5\n";
  const std::pair<std::string, const char*> cases[] = {
      // The overall defaults, then the map.
      {words, "1/1 CLOCK_TO_OUT=1/1 FREQUENCY=1/1 INPUT_SETUP=1/1 PERIOD=1/1 PERIODA=8/9"},
      {"[CLOCK_TO_OUT]\nw=0\np=-2\n[default]\nw=3\n[FREQUENCY]\np=5\n",
       "3/1 CLOCK_TO_OUT=0/-2 FREQUENCY=3/5 INPUT_SETUP=3/1 PERIOD=3/1 PERIODA=8/9"}};
  for (const auto& [text, weights_text] : cases) {
    ToolRun run("");
    self_context& context = StartRun(run.record);
    WeightsMap weights = {{"PERIODA", {8, 9}}, {"PERIOD", {6, 7}}};
    GetDefaultWPValueFromFile(Write("weights.ini", text).c_str(), weights, &context);
    std::ostringstream shown;
    shown << context.defaultWeight << '/' << context.defaultPenalty;
    for (const auto& [name, value] : weights)
      shown << ' ' << name.getstring() << '=' << value.weight << '/' << value.penalty;
    EXPECT_EQ(shown.str(), weights_text);
  }
}

}  // namespace
}  // namespace orlo::vostrand_lib
