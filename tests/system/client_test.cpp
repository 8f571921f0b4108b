// A host as anybody may write one: it includes the public headers, links the shared library, and sees the
// rest through files and messages.
#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>

#include "common/golden.h"
#include "common/pretend_tools.h"
#include "common/recording_logger.h"
#include "common/scratch.h"
#include "host/entry_points.h"

using namespace orlo::kelpn::mparrunner;

namespace {

class ClientTest : public ScratchTest {
 protected:
  ClientTest() {
    Write("top_map.ncd", "design");
    Write("top.p2t", "-l 5 -i 15 -n 4 -t 1 -s 1 -c 1 -stopzero\n");
    Write("top.prf",
          "# Two preferences; the setup time matters most.\n"
          "FREQUENCY NET \"clk_c\" 100.000000 MHz ; # w 2 p 3\n"
          "INPUT_SETUP PORT \"data_with_a_long_name\"\n"
          "  5.000 ns CLKPORT \"clk\" ; # p 4.5\n");
    record.logger = &logger;
    record.workDir = Root().c_str();
  }

  int Main(std::vector<const char*> argv) {
    return vostrand_main(static_cast<int>(argv.size()), argv.data(), &record);
  }

  std::string Listing() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(Root()))
      names.push_back(entry.path().lexically_relative(Root()).string() + "\n");
    std::sort(names.begin(), names.end());
    std::string text;
    for (const std::string& name : names) text += name;
    return text;
  }

  RecordingLogger logger;
  VOSTRAND_CONTEXT record;
};

}  // namespace

TEST_F(ClientTest, WholeToolRun) {
  ASSERT_EQ(Main({"vostrand", "top"}), 0);
  ASSERT_EQ(record.seeds.size(), 4U);
  const PretendedRun runs[] = {
      {"5_1", 98.0, 4.2, 1250}, {"5_2", 112.5, 5.3, 300}, {"5_3", 107.25, 3.999, 0}, {"5_4", 1.0, 9.0, 9}};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(record.seeds[i].name, runs[i].name);
    runs[i].LeaveIn(Path("top.dir"));
    const STEP& check = record.seeds[i].steps.at(1);
    ASSERT_EQ(check.kind, STEP::call_callback);
    EXPECT_EQ(check.callback(record.seeds[i].name.c_str(), &record), 0);
    EXPECT_EQ(record.stopRequested, i >= 2) << "the third run is the first to meet timing";
  }
  record.seeds[3].status = MPAR_SEED::cancelled;
  ASSERT_EQ(vostrand_report(&record), 0);
  EXPECT_EQ(vostrand_exit(0, &record), 0);

  ExpectGolden(logger.out, "whole_run/stdout.txt");
  EXPECT_EQ(logger.err, "");
  ExpectGolden(Read("top.p2t"), "whole_run/top.p2t");
  ExpectGolden(Read("top.p2t.tmp2"), "whole_run/top.p2t.tmp2");
  ExpectGolden(Read("top.log"), "whole_run/top.log");
  ExpectGolden(Read("top.csv"), "whole_run/top.csv");
  ExpectGolden(Read("top.dir/top.par"), "whole_run/summary.par");
  EXPECT_EQ(Read("top.par"), Read("top.dir/top.par") + runs[2].ParResult());
  EXPECT_EQ(Read("top.ncd"), "design of 5_3\n");
  EXPECT_EQ(Read("top.twr"), runs[2].TimingReport());
  ExpectGolden(Listing(), "whole_run/listing.txt");
}

TEST_F(ClientTest, ThePlanOfOneRunIsASingleDesignFile) {
  Write("top.p2t", "-l 5 -i 15\n");
  ASSERT_EQ(Main({"vostrand", "-dissorv", "top"}), 0);
  ASSERT_EQ(record.seeds.size(), 1U);
  ASSERT_EQ(record.seeds[0].steps.size(), 1U);
  EXPECT_EQ(record.seeds[0].steps[0].command, "par -f top.p2t.tmp0 top_map.ncd top.ncd top.prf  ");
  EXPECT_FALSE(Exists("top.dir"));
  EXPECT_EQ(vostrand_exit(0, &record), 0);
}

TEST_F(ClientTest, TheHostsExitCodeIsItsOwnUntilSomethingFails) {
  record.exitCode = 5;
  EXPECT_EQ(Main({"vostrand", "top"}), 5);
  EXPECT_EQ(Main({"vostrand", "missing"}), 3);
  EXPECT_EQ(record.seeds.size(), 4U) << "a second plan would stand behind the first";
  EXPECT_EQ(vostrand_main(2, nullptr, nullptr), 1);
  EXPECT_EQ(vostrand_report(nullptr), 1);
  EXPECT_EQ(vostrand_exit(7, &record), 7);
  EXPECT_EQ(record.exitCode, 7);
}
