#include "scoring/default_weights.h"

#include "common/scratch.h"
#include "common/tool_run.h"
#include "context/thread_context.h"

namespace orlo::vostrand_lib {
namespace {

// The overall defaults, then the map, all as weight/penalty. The map held an annotated preference and an old
// kind default before.
std::string Filled(const std::string& path) {
  ToolRun run("");
  self_context& context = StartRun(run.record);
  WeightsMap weights = {{"PERIODA", {8, 9}}, {"PERIOD", {6, 7}}};
  GetDefaultWPValueFromFile(path.c_str(), weights, &context);
  std::ostringstream shown;
  shown << context.defaultWeight << '/' << context.defaultPenalty;
  for (const auto& [name, value] : weights)
    shown << ' ' << name.getstring() << '=' << value.weight << '/' << value.penalty;
  return shown.str();
}

TEST_F(ScratchTest, DefaultWeightsComeFromTheFileKindByKind) {
  const std::string all_one = "1/1 CLOCK_TO_OUT=1/1 FREQUENCY=1/1 INPUT_SETUP=1/1 PERIOD=1/1 PERIODA=8/9";
  UT_STROBJ path;
  GetWPDefaultValFilePath(path);
  EXPECT_EQ(Filled(path.getstring()), all_one);
  EXPECT_EQ(Filled(Write("words.ini", "[default]\nw=high\n[PERIOD]\np=0.5\n")), all_one);
  EXPECT_EQ(Filled(Write("numbers.ini", "[CLOCK_TO_OUT]\nw=0\np=-2\n[default]\nw=3\n[FREQUENCY]\np=5\n")),
            "3/1 CLOCK_TO_OUT=0/-2 FREQUENCY=3/5 INPUT_SETUP=3/1 PERIOD=3/1 PERIODA=8/9");
}

}  // namespace
}  // namespace orlo::vostrand_lib
