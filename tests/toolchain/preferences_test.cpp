#include "common/preferences.h"

#include <gtest/gtest.h>

#include "analysis/design_ports.h"
#include "analysis/preference_table.h"
#include "common/scratch.h"
#include "scoring/preference_file.h"
#include "scoring/timing_report.h"

namespace {

using namespace toolchain;

class PreferencesTest : public ScratchTest {
 protected:
  std::vector<BoundPreference> Read(const std::string& text) const {
    const Ports ports = {
        {.name = "clk", .is_input = true, .is_clock = true, .nets = {"clk", "core/clk"}},
        {.name = "d[0]", .is_input = true, .is_clock = false, .nets = {"d[0]"}},
        {.name = "d[1]", .is_input = true, .is_clock = false, .nets = {"d[1]"}},
        {.name = "dx", .is_input = true, .is_clock = false, .nets = {"dx"}},
        {.name = "a-very-long-name-----for-an-output", .is_input = false, .is_clock = false, .nets = {}},
        {.name = "q", .is_input = false, .is_clock = false, .nets = {"q"}}};
    return Bind(ReadPreferences(Write("p.prf", text)), ports);
  }
};

TEST_F(PreferencesTest, ErrorsShowTheirPlace) {
  struct {
    const char* text;
    const char* message;  // Behind the file's name.
  } const cases[] = {
      {"\n\tFREQENCY NET \"clk\" 1 MHz ;",
       "2:2: unknown statement; known are FREQUENCY, PERIOD, INPUT_SETUP and CLOCK_TO_OUT\n"
       "  \tFREQENCY NET \"clk\" 1 MHz ;\n  \t^"},
      {"PERIOD NET \"clk\"\n  # a comment\n 5 MHz ;", "3:4: expected the unit ns\n   5 MHz ;\n     ^"},
      {"PERIOD PIN \"clk\" 5 ns ;", "1:8: expected NET or PORT\n  PERIOD PIN \"clk\" 5 ns ;\n         ^"},
      {"PERIOD NET clk 5 ns;", "1:12: expected a name in double quotes"},
      {"PERIOD NET \"clk 5 ns;", "1:12: the quote is not closed"},
      {"PERIOD NET \"c;k\" 5 ns;", "1:12: the quote is not closed; a name holds no"},
      {"PERIOD NET \"clk\" #----------------------------------------\n 5 ns;",
       "1:1: the statement, comments between its lines included, holds 40 dashes in a row"},
      {"PERIOD NET \"clk\" 5ns ;", "1:18: expected a number from 0.001 to 99999.999"},
      {"PERIOD NET \"clk\" -1 ns ;", "1:18: expected a number"},
      {"PERIOD NET \"clk\" 1e999 ns ;", "1:18: expected a number"},
      {"PERIOD ; PERIOD NET \"clk\" 5 ns", "1:10: the statement has no \";\""},
      {"PERIOD NET \"clk\" 5 ns PERIOD ;", "1:23: expected \";\""},
      {"PERIOD NET \"clock\" 5 ns ;", "1:12: no clock net \"clock\" in this design"},
      {"PERIOD PORT \"core/clk\" 5 ns ;", "1:13: no port \"core/clk\" in this design"},
      {"PERIOD PORT \"dx\" 5 ns ;", "1:13: \"dx\" clocks nothing in this design"},
      {"INPUT_SETUP ALLPORTS 5 ns ;", "1:27: expected CLKPORT or CLKNET"},
      {"INPUT_SETUP PORT \"e*\" 5 ns CLKNET \"clk\";", "1:18: no port \"e*\" in this design"},
      {"INPUT_SETUP PORT \"q\" 5 ns CLKNET \"clk\";", "1:18: \"q\" is no data input"},
      {"CLOCK_TO_OUT PORT \"clk\" 5 ns CLKNET \"clk\";", "1:19: \"clk\" is no output"},
  };
  for (const auto& [text, message] : cases) try {
      Read(text);
      ADD_FAILURE() << text;
    } catch (const Failure& failure) {
      EXPECT_TRUE(std::string(failure.what()).starts_with(Path("p.prf:") + message)) << failure.what();
      EXPECT_EQ(failure.exit_code(), 2);
    }
}

TEST_F(PreferencesTest, NamesFindTheirPorts) {
  const auto bound = Read(
      "PERIOD ; # w 2\nFREQUENCY NET \"core/clk\" 200 MHz;PERIOD PORT \"clk\" 4 ns ;\n"
      "INPUT_SETUP PORT \"d\" 1 ns CLKPORT \"clk\" ;INPUT_SETUP PORT \"d*\" 1 ns CLKPORT \"clk\" ;\n"
      "INPUT_SETUP ALLPORTS 1 ns CLKNET \"clk\" ;CLOCK_TO_OUT PORT \"*\" 1 ns CLKNET \"clk\" ;");
  ASSERT_EQ(bound.size(), 6U);
  EXPECT_EQ(bound[0].preference.Nanoseconds(), 5.0);
  EXPECT_EQ(bound[1].preference.text, "PERIOD PORT \"clk\" 4 ns ;");
  EXPECT_EQ(bound[2].ports, (std::vector<std::size_t>{1, 2}));
  EXPECT_EQ(bound[3].ports, (std::vector<std::size_t>{1, 2, 3}));
  EXPECT_EQ(bound[4].ports, bound[3].ports);
  EXPECT_EQ(bound[5].ports, (std::vector<std::size_t>{4, 5}));
}

// However a statement is written, the library must find its weight and its result under one name.
TEST_F(PreferencesTest, WeightsAndResultsMeet) {
  const auto bound = Read(
      "FREQUENCY\tNET \"clk\"   200.5 MHz ; # w 2\n"
      "PERIOD PORT \"clk\" # as the board has it\n  \n # not this\n 8.000000 ns ; # w 3\n"
      "CLOCK_TO_OUT PORT \"a-very-long-name-----for-an-output\" 6.5 ns CLKNET \"clk\";# p 4\r\n"
      "INPUT_SETUP ALLPORTS 2 ns CLKPORT \"clk\" ; # w 5\n");
  std::vector<PreferenceTiming> results(bound.size());
  for (PreferenceTiming& result : results) result.actual = 12.5;
  results[3].actual.reset();
  Write("r.twr", PreferenceTable(bound, results) + "\nTiming Score: 7\n");

  using namespace orlo::vostrand_lib;
  WeightsMap weights;
  EXPECT_EQ(GetWPFromPrf(Path("p.prf").c_str(), weights), 4);
  for (const char* const kind : {"PERIOD", "FREQUENCY", "INPUT_SETUP", "CLOCK_TO_OUT"}) weights.erase(kind);
  ResultsMap found;
  EXPECT_EQ(GetPrfResultVal(Path("r.twr").c_str(), found).view(), " 7");
  ASSERT_EQ(found.size(), 4U);
  for (const auto& [name, weight] : weights) {
    ASSERT_TRUE(found.contains(name)) << name.view();
    const PrfResultVal& result = found[name];
    const bool has_path = result.type.view() != "INPUT_SETUP";
    EXPECT_EQ(result.actualPeriod, has_path ? 12.5F : 0.0F) << name.view();
    EXPECT_EQ(result.actualText.view(), !has_path                           ? "-"
                                        : result.type.view() == "FREQUENCY" ? "80.000"
                                                                            : "12.500");
  }
  const auto frequency = found.find("FREQUENCYNET\"clk\"200.5MHz");
  ASSERT_NE(frequency, found.end());
  EXPECT_EQ(frequency->second.constraintText.view(), "200.500 MHz");
}

TEST_F(PreferencesTest, ArgumentsAreUtf8) {
  char program[] = "par", good[] = "\xc3\xbc", bad[] = "\xff.ncd";
  char* arguments[] = {program, good, bad};
  EXPECT_EQ(ArgumentWords(2, arguments).at(0).text, good);
  EXPECT_THROW(ArgumentWords(3, arguments), Failure);
}

}  // namespace
