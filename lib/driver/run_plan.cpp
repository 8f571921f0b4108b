#include "driver/run_plan.h"

#include <string>
#include <utility>

#include "context/self_context.h"
#include "results/stop_at_zero.h"
#include "support/file_names.h"

namespace orlo::vostrand_lib {

using kelpn::mparrunner::MPAR_SEED;
using kelpn::mparrunner::STEP;
using kelpn::mparrunner::VOSTRAND_CONTEXT;

namespace {

// Plans the runs one after the other, announcing each command as it is planned.
class Planner {
 public:
  Planner(VOSTRAND_CONTEXT& record, const Settings& settings, const ParOptions& options)
      : record_(record),
        run_(*record.selfContext),
        info_(run_.runInfo),
        settings_(settings),
        options_(options) {}

  bool AppendRun(int index);

 private:
  struct Run {
    UT_STROBJ name;           // Level and cost table: "5_1".
    std::int64_t cost_table;  // May lie beyond 32 bits for a first table close to their end.
    UT_STROBJ temp_file;      // Its par command file.
    bool has_temp_file = false;
  };

  UT_STROBJ ParCommand(const Run& run) const;
  UT_STROBJ SorvCommand(const Run& run, const UT_STROBJ& report) const;
  void NoteNames(const Run& run, const UT_STROBJ& report);
  void AppendCommand(MPAR_SEED& seed, const UT_STROBJ& command);
  void Status(const char* label, const UT_STROBJ& value) {
    run_._ut_status((UT_STROBJ(label) + value).getstring(1));
  }
  // What the run's files are called: the run's name among several, the output's for a single one.
  UT_STROBJ Stem(const Run& run) const {
    return info_.multiRun ? run.name : WithoutExtension(info_.outputDir);
  }
  // The directory that the place-and-route tool writes this run into.
  UT_STROBJ RunDirectory(const Run& run) const { return info_.outputDir + "/" + run.name + ".dir"; }

  VOSTRAND_CONTEXT& record_;
  self_context& run_;
  MParRunInfo& info_;
  const Settings& settings_;
  const ParOptions& options_;
};

UT_STROBJ Planner::ParCommand(const Run& run) const {
  UT_STROBJ command = "par ";
  command += run.has_temp_file ? "-f " + run.temp_file + " " : "-l 5 -i 15 -n 1 -t 1 -s 1 -c 1 ";
  command += settings_.designFile + " " + (info_.multiRun ? RunDirectory(run) : info_.outputDir) + " ";
  return command + info_.prefFile + " " + settings_.extraOptions + " ";
}

UT_STROBJ Planner::SorvCommand(const Run& run, const UT_STROBJ& report) const {
  const UT_STROBJ design = info_.multiRun ? RunDirectory(run) + "/" + run.name + ".ncd" : Stem(run) + ".ncd";
  UT_STROBJ command = "sorv ";
  if (!settings_.timingCommandFile.empty()) command += "-f " + settings_.timingCommandFile + " ";
  const UT_STROBJ& preferences = info_.tracePrefFile.empty() ? info_.prefFile : info_.tracePrefFile;
  return command + "-o " + report + " " + design + " " + preferences + " " + settings_.extraOptions + " ";
}

void Planner::NoteNames(const Run& run, const UT_STROBJ& report) {
  info_.csvLabels.add(info_.multiRun ? UT_STROBJ(std::to_string(run.cost_table)) : Stem(run));
  info_.runNames.add(Stem(run));
  info_.twrFiles.add(report);
}

void Planner::AppendCommand(MPAR_SEED& seed, const UT_STROBJ& command) {
  run_._ut_status(command.getstring(1));
  STEP step;
  step.kind = STEP::execute;
  step.command = command.view();
  seed.steps.push_back(std::move(step));
}

bool Planner::AppendRun(int index) {
  Run run;
  run.cost_table = std::int64_t{options_.firstCostTable} + index;
  run.name = options_.level.trimmed() + "_" + std::to_string(run.cost_table).c_str();
  run.temp_file = TempParCommandFile(settings_.parCommandFile, index);
  run.has_temp_file = CopyParCommandFile(record_, settings_.parCommandFile, run.temp_file);

  MPAR_SEED seed;
  seed.name = run.name.view();
  if (!run.has_temp_file) run_._ut_status("Temp Par Command file does not exist. Using defaults");
  AppendCommand(seed, ParCommand(run));
  Status("Output design is: ", info_.outputName);
  Status("Output DIR    is: ", ".");
  Status("Preference file is: ", info_.prefFile);
  if (!RewriteTempParCommandFile(record_, run.temp_file, run.cost_table)) return false;

  if (info_.stopAtZero && options_.runCount != 1) {
    STEP check;
    check.kind = STEP::call_callback;
    check.callback = CheckStopAtZero;
    seed.steps.push_back(std::move(check));
  }
  if (!info_.noTiming) {
    const UT_STROBJ report = (info_.multiRun ? info_.outputDir + "/" : UT_STROBJ()) + Stem(run) + ".twr";
    NoteNames(run, report);
    AppendCommand(seed, SorvCommand(run, report));
  }
  record_.seeds.push_back(std::move(seed));
  return true;
}

}  // namespace

void AppendPlan(VOSTRAND_CONTEXT& record, const Settings& settings, const ParOptions& options) {
  Planner planner(record, settings, options);
  for (int i = 0; i < options.runCount; ++i)
    if (!planner.AppendRun(i)) return;
}

}  // namespace orlo::vostrand_lib
