// `bench_points FOLDER PROGRAM LIBRARY`: measures what docs/performance.md describes, on inputs that
// it makes in FOLDER, and prints the tables.
#include <cmath>
#include <cstdio>
#include <filesystem>

#include "measure.h"
#include "results/par_result.h"
#include "results/promotion.h"
#include "scoring/performance_score.h"
#include "scoring/preference_file.h"
#include "work.h"

namespace {

namespace fs = std::filesystem;
using namespace bench;
using namespace orlo::vostrand_lib;

constexpr int rounds = 7;
constexpr std::size_t mega = 1UL << 20;

struct Bench {
  std::string folder;            // Of the inputs.
  std::string call, load;        // The programs bench_call and bench_load.
  std::string program, library;  // vostrand, which may be missing, and vostrandlib.

  std::string In(const std::string& name) const { return folder + "/" + name; }
};

void BigFiles(const Bench& b) {
  const std::string report = b.In("report.twr");
  WriteTimingReport(report, 500 * mega, 50, 40);
  WriteTable("1. Timing report, 500 MB",
             {{"limit: cat", {"cat", report}},
              {"peer: grep", {"grep", "-m1", "Score:", report}},
              {"ours", {b.call, "score", report}}},
             rounds);
  fs::remove(report);

  const std::string tables[] = {b.In("1000"), b.In("10000"), b.In("10000_long")};
  WriteTimingReport(tables[0], 0, 1000, 40);
  WriteTimingReport(tables[1], 0, 10000, 40);
  WriteTimingReport(tables[2], 0, 10000, 400);
  WriteTable("1. Tables of preferences (2nd: ten times the 1st, 3rd: names ten times as long)",
             {{"1,000", {b.call, "score", tables[0]}},
              {"10,000", {b.call, "score", tables[1]}},
              {"10,000, names of 400 characters", {b.call, "score", tables[2]}},
              {"start-up alone", {b.call, "nothing"}}},
             rounds);

  const std::string result = b.In("5_1.par");
  WriteParResult(result, 500 * mega, "5_1");
  WriteTable("2. Result file, 500 MB of log before the table",
             {{"limit: cat", {"cat", result}},
              {"peer: grep", {"grep", "-m1", "Level/       Number", result}},
              {"peer: grep for the rarest character", {"grep", "-m1", "Cost \\[ncd\\]", result}},
              {"ours", {b.call, "result", result}}},
             rounds);
  fs::remove(result);

  const std::string preferences = b.In("many.prf");
  WritePreferences(preferences, 200000);
  WriteTable("3. Preference file, 200,000 statements",
             {{"limit: cat", {"cat", preferences}},
              {"ours", {b.call, "weights", preferences}},
              {"peer: awk", {"awk", "-f", VOSTRAND_BENCH_DIR "/weights.awk", preferences}}},
             rounds);
}

void Moving(const Bench& b) {
  const std::string from = b.In("runs");
  const std::string to = b.In("out");
  const auto prepare = [=] {
    fs::remove_all(from);
    fs::remove_all(to);
    fs::create_directories(to);
    for (int n = 1; n <= 99; ++n) WriteRunDirectory(from, "5_" + std::to_string(n), 50 * mega);
  };
  WriteTable(
      "5. Gathering: 99 runs of 4 sparse files of 50 MB",
      {{"peer: mv", {"sh", "-c", "mv " + from + "/*/* " + to + " && rmdir " + from + "/*"}, {}, prepare},
       {"ours", {b.call, "gather", from, to}, {}, prepare}},
      5);
  fs::remove_all(from);
  fs::remove_all(to);

  const std::string design = b.In("best.ncd");
  WriteTimingReport(design, 200 * mega, 50, 40);
  for (const std::string& target : {b.In("promoted.ncd"), std::string("/dev/shm/vostrand-bench.ncd")}) {
    const auto remove = [=] { fs::remove(target); };
    WriteTable("5. Promotion: a design of 200 MB to " + fs::path(target).parent_path().filename().string(),
               {{"peer: cp", {"cp", "--reflink=auto", design, target}, {}, remove},
                {"ours", {b.call, "copy", design, target}, {}, remove}},
               5);
    remove();
  }
  fs::remove(design);
}

double Seconds(const std::function<void()>& work) {
  const double start = Now();
  work();
  return Now() - start;
}

void Planning(const Bench& b) {
  const std::string plain = b.In("plan_calls");
  const std::string ours = b.In("plan");
  const auto fresh = [](const std::string& folder) {
    return [=] {
      fs::remove_all(folder);
      WriteDesign(folder, 99, 500);
    };
  };
  WriteTable("6. Planning 99 runs",
             {{"limit: its system calls",
               {},
               [=] { return Seconds([&] { PlanningCalls(plain, 99); }); },
               fresh(plain)},
              {"ours", {}, [=] { return Seconds([&] { ToolRun(ours, false); }); }, fresh(ours)}},
             31);
}

// What a report consists of, each part for itself and nothing between them.
void ReportParts(const std::string& folder) {
  WeightsMap weights;
  for (const char* const kind : {"PERIOD", "FREQUENCY", "INPUT_SETUP", "CLOCK_TO_OUT"})
    weights[kind] = {1, 1};
  GetWPFromPrf((folder + "/top.prf").c_str(), weights);
  ResultsMap results;
  for (int n = 1; n <= 99; ++n) {
    const std::string stem = folder + "/top.dir/5_" + std::to_string(n);
    ParScoreVal result{UT_STROBJ(fs::path(stem).filename().native()), false, 0, ""};
    GetParResult((stem + ".par").c_str(), result);
    CopySeedResult((folder + "/top.dir").c_str(), (stem + ".dir").c_str());
    ScoreRun((stem + ".twr").c_str(), results, weights);
  }
}

void WholeReport(const Bench& b) {
  const std::string folder = b.In("whole");
  WriteDesign(folder, 99, 500);
  WriteRuns(folder, 99, 500, 2 * mega);
  // As the tools leave it: truncating the files of an earlier report costs more than making new ones.
  const auto prepare = [=] {
    for (const char* const written :
         {"top.log", "top.csv", "top.par", "top.ncd", "top.twr", "top.dir/top.par"})
      fs::remove(folder + "/" + written);
    for (int n = 1; n <= 99; ++n) WriteRunDirectory(folder + "/top.dir", "5_" + std::to_string(n), 100000);
  };
  std::vector<double> early, late;
  const auto whole = [&] {
    const std::vector<double> times = ToolRun(folder, true);
    for (std::size_t n = 2; n <= 20; ++n) early.push_back(times[n] - times[n - 1]);
    for (std::size_t n = times.size() - 20; n < times.size() - 1; ++n)
      late.push_back(times[n] - times[n - 1]);
    return times.back() - times.front();
  };
  WriteTable("7. Whole report: 99 runs, 500 preferences, 2 MB each",
             {{"limit: cat", {"sh", "-c", "cat " + folder + "/top.dir/*.twr >/dev/null"}},
              {"sum of its parts", {}, [=] { return Seconds([&] { ReportParts(folder); }); }, prepare},
              {"ours", {}, whole, prepare}},
             rounds);
  std::printf("\nA run takes %.3f ms among runs 2 to 20, %.3f ms among the last 19: ratio %.2f.\n",
              Median(early) * 1e3, Median(late) * 1e3, Median(late) / Median(early));
  fs::remove_all(folder);
}

void ManyToolRuns(const Bench& b) {
  for (int n = 0; n < 8; ++n) {
    WriteDesign(b.In("threads/") + std::to_string(n), 20, 200);
    WriteRuns(b.In("threads/") + std::to_string(n), 20, 200, 2 * mega);
  }
  std::vector<Contender> contenders;
  for (const int threads : {1, 2, 4, 8})
    contenders.push_back(
        {std::to_string(threads), {b.call, "tool-runs", b.In("threads"), std::to_string(threads)}});
  WriteTable("9. Tool runs at once, a thread each: 20 runs, 200 preferences, 2 MB each", contenders, rounds);
  fs::remove_all(b.In("threads"));
}

// Of a file, or of the timing reports of the tool run in a folder; MB.
double SizeOf(const std::string& path) {
  if (!fs::is_directory(path)) return static_cast<double>(fs::file_size(path)) / 1e6;
  double megabytes = 0;
  for (const auto& entry : fs::directory_iterator(path + "/0/top.dir"))
    if (entry.path().extension() == ".twr") megabytes += SizeOf(entry.path().native());
  return megabytes;
}

// Each step ten times as large as the one before.
void Growth(const Bench& b) {
  std::puts("\n### 10. Growth\n\n| what | input, MB | time, ms | peak, MB |\n|---|---:|---:|---:|");
  const std::string path = b.In("growth");
  for (const std::string work : {"score", "result", "weights", "tool-runs"}) {
    for (double bytes = 50e3; bytes < 1e9; bytes *= 10) {
      const auto size = static_cast<std::size_t>(bytes);
      if (work == "score") WriteTimingReport(path, size, 50, 40);
      if (work == "result") WriteParResult(path, size, "5_1");
      if (work == "weights") WritePreferences(path, static_cast<int>(bytes / 44));
      std::vector<std::string> command = {b.call, work, path};
      if (work == "tool-runs") {
        WriteDesign(path + "/0", 10, 10);
        WriteRuns(path + "/0", 10, 10, size / 10);
        command.emplace_back("1");
      }
      const Measured measured = Alternate({{work, command}}, 5)[0];
      std::printf("| %s | %.3f | %.1f | %.1f |\n", work.c_str(), SizeOf(path), measured.seconds * 1e3,
                  static_cast<double>(measured.peak_kb) / 1024);
      fs::remove_all(path);
    }
  }
}

void StartUp(const Bench& b) {
  WriteTable("11. Start-up: loading the library",
             {{"limit: Qt Core alone", {b.load, VOSTRAND_BENCH_QT}}, {"ours", {b.load, b.library}}}, 21);
  if (!fs::exists(b.program)) return;
  WriteTable("11. Start-up: the program", {{"limit: true", {"true"}}, {"ours", {b.program, "--version"}}},
             21);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return std::fprintf(stderr, "usage: bench_points FOLDER PROGRAM LIBRARY\n"), 2;
  const std::string own = fs::path(argv[0]).parent_path().string();
  const Bench b = {argv[1], own + "/bench_call", own + "/bench_load", argv[2], argv[3]};
  fs::create_directories(b.folder);
  std::puts("Ratios are to a table's first row; times are medians of rounds in which all take their turns.");
  StartUp(b);
  BigFiles(b);
  Moving(b);
  ManyToolRuns(b);
  Growth(b);
  Planning(b);
  WholeReport(b);
  return 0;
}
