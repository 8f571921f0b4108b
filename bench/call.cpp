// One piece of the library's work as a process of its own, measured like its peers: `bench_call WORK
// ARGUMENTS`. What it prints shows that the work was done.
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "results/par_result.h"
#include "results/promotion.h"
#include "scoring/preference_file.h"
#include "scoring/timing_report.h"
#include "ut/filemanager.h"
#include "work.h"

namespace {

using namespace orlo::vostrand_lib;

int Score(const std::string& report) {
  ResultsMap results;
  const UT_STROBJ score = GetPrfResultVal(report.c_str(), results);
  return std::printf("%zu preferences, score%s\n", results.size(), score.getstring()) < 0;
}

int Result(const std::string& file) {
  ParScoreVal result{"5_1", false, 0, ""};
  return !GetParResult(file.c_str(), result);
}

int Weights(const std::string& file) {
  WeightsMap weights;
  for (const char* const kind : {"PERIOD", "FREQUENCY", "INPUT_SETUP", "CLOCK_TO_OUT"})
    weights[kind] = {1, 1};
  return std::printf("%d annotations\n", GetWPFromPrf(file.c_str(), weights)) < 0;
}

int Gather(const std::string& from, const std::string& to) {
  for (int n = 1; n <= 99; ++n)
    CopySeedResult(to.c_str(), (from + "/5_" + std::to_string(n) + ".dir").c_str());
  return 0;
}

// One whole tool run on each of as many threads, in folders of their own.
int ToolRuns(const std::string& folder, int threads) {
  std::vector<std::jthread> running;
  for (int n = 0; n < threads; ++n)
    running.emplace_back([run = folder + "/" + std::to_string(n)] { bench::ToolRun(run, true); });
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  const auto is = [&](const char* work, std::size_t arguments) {
    return words.size() == arguments + 1 && words[0] == work;
  };
  if (is("score", 1)) return Score(words[1]);
  if (is("result", 1)) return Result(words[1]);
  if (is("weights", 1)) return Weights(words[1]);
  if (is("gather", 2)) return Gather(words[1], words[2]);
  if (is("copy", 2)) return !ut_file->copy(words[1].c_str(), words[2].c_str());
  if (is("tool-runs", 2)) return ToolRuns(words[1], std::stoi(words[2]));
  if (is("nothing", 0)) return 0;
  std::fprintf(stderr, "bench_call: unknown work\n");
  return 2;
}
