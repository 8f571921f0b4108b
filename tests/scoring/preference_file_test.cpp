#include "scoring/preference_file.h"

#include "common/scratch.h"
#include "common/tool_run.h"
#include "context/thread_context.h"
#include "scoring/preference_weights.h"

namespace orlo::vostrand_lib {
namespace {

class PreferenceFile : public ScratchTest {
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

TEST_F(PreferenceFile, AnnotationsMultiplyTheirKindsDefaults) {
  const std::pair<const char*, const char*> cases[] = {
      {"# FREQUENCY A ; # w 2\n\nBLOCK ASYNC ;\nFREQUENCY A ;\n", "0"},
      {"FREQUENCY NET \"c\"\t100.0 MHz ; # w 2 p 3\n", "1 FREQUENCYNET\"c\"100.0MHz=10/21"},
      {"INPUT_SETUP A; # p 4\nCLOCK_TO_OUT B; # w 0\n", "2 CLOCK_TO_OUTB=0/19 INPUT_SETUPA=11/52"},
      // Numbers are read by their longest prefix and rounded to 32 bits before they are multiplied.
      {"PERIOD A; # w 1.5.9 p .\\1\nFREQUENCY A; # p 0.15", "2 FREQUENCYA=5/1.05000007 PERIODA=3/0"},
      // Of several kinds the first one of the list counts, in the text with its blanks.
      {"FREQUENCY \"PERIOD_IN\"; # w 2\nFREQUENCY \"PER IOD\"; # w 2",
       "2 FREQUENCY\"PERIOD\"=10/7 FREQUENCY\"PERIOD_IN\"=4/3"},
      {"LIMIT NET \"x\" 3; # w 2\nPERIOd A; # w 2\nCLOCK_TO_OUT INPUT_SETUP; # w 2",
       "1 CLOCK_TO_OUTINPUT_SETUP=22/13"},
      // Statements over several lines, comments among and in them.
      {"PER\r\nIOD A\n # one; more\n\n \t\b\n  _B ; # w 2\r\n", "1 PERIODA_B=4/3"},
      {"PERIOD A # why \n; # w 2\nPERIOD B # stop;\n ; # w 2\n", "1 PERIODA#why=4/3"},
      {" \tPERIOD A ; # w 2 \t\b\r\r\nPERIOD B\n # w 3", "1 PERIODA=4/3"},
      // Bytes that are no characters of the host's locale.
      {"PERIOD \"\xe9\xff\"; # w 2 \xfc", "1 PERIOD\"\xe9\xff\"=4/3"},
      // A later statement replaces both numbers; a kind's bare name changes what follows.
      {"PERIOD A; # w 2 p 2\nPERIOD  A ; # p 5", "2 PERIODA=2/15"},
      {"PERIOD A; # w 2\nPERIOD\t; # w 2 p 4\nPERIOD B; # p 2\nPERIOD ; # w 2",
       "4 PERIOD=8/12 PERIODA=4/3 PERIODB=4/24"}};
  for (const auto& [text, annotations] : cases) EXPECT_EQ(Annotations(text), annotations) << text;
}

TEST_F(PreferenceFile, LongLinesArriveInPiecesOf254Characters) {
  const std::string x(5000, 'x');
  EXPECT_EQ(Annotations("PERIOD " + x + "\n" + x + "; # w 2\n"), "1 PERIOD" + x + x + "=4/3");
  // An annotation that begins a piece is a comment line; one cut in two leaves its end to the next statement.
  const std::string others = "PERIOD B; # w 2\nPERIOD C; # w 2";
  EXPECT_EQ(Annotations("PERIOD" + x.substr(0, 247) + "; # w 3\n" + others), "2 PERIODB=4/3 PERIODC=4/3");
  EXPECT_EQ(Annotations("PERIOD" + x.substr(0, 243) + ";# w 3\n" + others), "1 PERIODC=4/3");
  const std::string full = "PERIOD" + x.substr(0, 241);
  EXPECT_EQ(Annotations(full + ";# w 2\r\n"), "1 " + full + "=4/3");  // Only the "\n" is in the next piece.
}

TEST_F(PreferenceFile, WeightsAreTheOwnOnesOrTheKinds) {
  WeightsMap weights = {{"PERIODA", {2, 0}}, {"PERIOD", {1, 3}}};
  EXPECT_EQ(GetWPByPrfName("PERIODA", "PERIOD", weights).penalty, 0);
  EXPECT_EQ(GetWPByPrfName("PERIODB", "PERIOD", weights).penalty, 3);
  EXPECT_EQ(GetWPByPrfName("B", "FREQUENCY", weights).weight, 0);
  EXPECT_EQ(weights.count("FREQUENCY"), 1U);  // The only change: what is missing is made, with zeros.
  EXPECT_EQ(weights.size(), 3U);
}

TEST_F(PreferenceFile, ThatCannotBeOpenedIsAnErrorThatNamesIt) {
  ToolRun run(Root());
  StartRun(run.record);
  WeightsMap weights;
  for (const std::string& path : {Path("100%s.prf"), Root()}) {
    run.logger.err.clear();
    EXPECT_EQ(GetWPFromPrf(path.c_str(), weights), 0);
    EXPECT_EQ(run.logger.err, "ERROR - vostrand: Unable to open preference file \"" + path + "\".\n");
  }
}

}  // namespace
}  // namespace orlo::vostrand_lib
