#include "work.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "host/entry_points.h"

namespace bench {
namespace {

class Clocking final : public orlo::kelpn::ILogger {
 public:
  void onStdout(const char* text) override {
    if (std::string_view(text).starts_with("Total PSScore")) times.push_back(Now());
  }
  void onStderr(const char* text) override {
    std::fputs(text, stderr);
    std::exit(1);
  }
  std::vector<double> times;
};

}  // namespace

double Now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::vector<double> ToolRun(const std::string& folder, bool report) {
  Clocking logger;
  orlo::kelpn::mparrunner::VOSTRAND_CONTEXT record;
  record.logger = &logger;
  record.workDir = folder.c_str();
  const char* argv[] = {"vostrand", "-p",  "top.p2t", "-log",        "top.log", "-o",
                        "top.csv",  "-pr", "top.prf", "top_map.ncd", "top.ncd", nullptr};
  vostrand_main(11, argv, &record);
  logger.times.push_back(Now());
  if (report) vostrand_report(&record);
  logger.times.push_back(Now());
  vostrand_exit(record.exitCode, &record);
  return logger.times;
}

}  // namespace bench
