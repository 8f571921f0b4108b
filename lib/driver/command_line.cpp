#include "driver/command_line.h"

#include <iostream>

#include "context/messages.h"
#include "context/run_log.h"
#include "context/self_context.h"
#include "context/usage.h"
#include "driver/full_form.h"
#include "support/file_names.h"
#include "ut/filemanager.h"

namespace orlo::vostrand_lib {

using kelpn::mparrunner::VOSTRAND_CONTEXT;

namespace {

// The names that a design's base name stands for.
void DeriveNames(const UT_STROBJ& base, MParRunInfo& runInfo, Settings& settings) {
  settings.parCommandFile = base + ".p2t";
  settings.designFile = base + "_map.ncd";
  settings.logFile = base + ".log";
  settings.removeOldOutput = true;
  runInfo.prefFile = base + ".prf";
  runInfo.reportFile = base + ".csv";
  runInfo.outputDir = base + ".ncd";
}

// A base name with one switch, in either order. The same switch twice is a base name and a switch.
bool ReadPair(const UT_STROBJ& first, const UT_STROBJ& second, VOSTRAND_CONTEXT& record, Settings& settings) {
  constexpr const char* no_timing = "-dissorv";
  constexpr const char* run_cst = "-cst";
  const auto is = [](const UT_STROBJ& text, const char* name) { return text.strcmp(name) == 0; };
  const bool both =
      (is(first, no_timing) && is(second, run_cst)) || (is(first, run_cst) && is(second, no_timing));
  const bool first_is_switch = is(first, no_timing) || is(first, run_cst);
  const bool second_is_switch = is(second, no_timing) || is(second, run_cst);
  if (both || (!first_is_switch && !second_is_switch)) {
    usage(&record);
    return false;
  }
  MParRunInfo& runInfo = record.selfContext->runInfo;
  runInfo.noTiming = is(first_is_switch ? first : second, no_timing);
  DeriveNames(first_is_switch ? second : first, runInfo, settings);
  return true;
}

}  // namespace

bool ReadCommandLine(int argc, const char** argv, VOSTRAND_CONTEXT& record, Settings& settings) {
  for (int i = 1; argv && i < argc; ++i)
    if (!argv[i]) return RefuseCommandLine("An argument is missing.", &record);
  switch (argv ? argc : 0) {
    case 1:
      usage(&record);
      return false;
    case 2:
      DeriveNames(argv[1], record.selfContext->runInfo, settings);
      return true;
    case 3:
      return ReadPair(argv[1], argv[2], record, settings);
    default:
      return ReadFullForm(argv ? argc : 0, argv, record, settings);
  }
}

bool OpenLog(VOSTRAND_CONTEXT& record, const Settings& settings) {
  UT_STREAM*& log = record.selfContext->runInfo.logStream;
  const UT_STROBJ path = GenerateFilePath(record.workDir, settings.logFile);
  log = ut_file->add_ofile(path.getstring(), UT_ACCESS_WRITE, nullptr, 1);
  if (!log) {
    _ut_userfatal(("Cannot open Log file " + settings.logFile).getstring(1), &record);
    return false;
  }
  RunLog(log) << "---- Vostrand Tool Log File ----\n";

  constexpr const char* banner = "---- Vostrand Tool ----\n";
  if (record.logger) {
    record.logger->onStdout(banner);
    return true;
  }
  try {
    std::cout << banner;
  } catch (...) {  // The host has its reasons; a banner is not worth the run.
  }
  return true;
}

bool CheckSettings(VOSTRAND_CONTEXT& record, const Settings& settings) {
  const MParRunInfo& runInfo = record.selfContext->runInfo;
  const auto refuse = [&](const char* message) { return RefuseCommandLine(message, &record); };
  if (settings.parCommandFile.empty()) return refuse("Par command file is required.");
  if (runInfo.reportFile.empty()) return refuse("Report file is required.");
  if (settings.designFile.empty()) return refuse("Design file is required.");
  if (runInfo.prefFile.empty()) return refuse("Preference file is required.");
  if (!ut_file->canread(GenerateFilePath(record.workDir, settings.designFile).getstring())) {
    _ut_userfatal("Design input file does not exist or is unreadable.", &record);
    return false;
  }
  return true;
}

}  // namespace orlo::vostrand_lib
