#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "options/host_options.h"
#include "result/odds.h"
#include "result/run_record.h"

namespace vostrand {

/// A file as it was when it was looked at.
struct FileRecord {
  std::string role;  ///< "design", "preferences", "trace preferences", "par commands", "timing commands"; for
                     ///< a tool its name.
  std::string path;
  std::int64_t size = 0;         ///< Bytes; -1 when there is no such file.
  std::int64_t modified_ns = 0;  ///< Since the epoch.
  std::string sha256;            ///< Hexadecimal; empty when it was not read.
};

/// A timing preference and how much it counts.
struct Preference {
  std::string name;        ///< Cleaned of blanks, as the weights know it: FREQUENCYNET"clk"100.0MHz.
  std::string text;        ///< As the timing report has it: FREQUENCY NET "clk" 100.0 MHz.
  std::string kind;        ///< "FREQUENCY", "PERIOD", ...
  std::string constraint;  ///< As reported, with its unit: "100.000 MHz".
  float weight = 0;
  float penalty = 0;
  float default_weight = 0;  ///< Of its kind, what an annotation's number is multiplied by.
  float default_penalty = 0;

  /// What people are shown.
  const std::string& Title() const { return text.empty() ? name : text; }
};

/// What one preference gave one run's score.
struct PreferenceScore {
  std::size_t preference = 0;  ///< Index in the result's `preferences`.
  std::string actual;          ///< As reported: "184.332"; "-" when nothing was.
  std::string unit;            ///< "(MHz)", "(ns)" or "".
  float constraint_ns = 0;
  float actual_ns = 0;
  float slack_ns = 0;         ///< constraint_ns - actual_ns
  float factor = 0;           ///< The weight, the negative penalty, or 0.
  float contribution = 0;     ///< slack_ns times weight or penalty.
  bool carried_over = false;  ///< The run's own report did not list it: an earlier run's values stand.
};

/// A run with everything that is known about it at the end.
struct RunResult {
  RunRecord record;
  std::vector<std::vector<std::string>> steps;  ///< Words of each step's command; empty for a callback.
  std::string output_file;
  bool has_row = false;                      ///< There is a place-and-route result row.
  std::int64_t timing_score = 0;             ///< ps; 0 meets timing, -1 is none.
  std::string row;                           ///< The row as read.
  std::optional<float> score;                ///< Performance score; nothing without timing.
  std::vector<PreferenceScore> preferences;  ///< In the order in which they are added up.
};

/// A file of the best run under the output's name.
struct PromotedFile {
  enum class State { equal, differs, missing, unchecked };
  std::string path;
  std::string source;
  std::int64_t size = -1;
  std::string sha256;
  State state = State::unchecked;
};

/// How a sweep ended. Everything that is written about it at the end is made from this one record.
struct SweepResult {
  std::string program_version;
  std::string host_name;
  std::string work_dir;  ///< Full path.
  std::vector<std::string> tool_arguments;
  HostOptions options;
  std::string started;  ///< UTC: "2026-11-23T01:18:20Z".
  double elapsed_seconds = 0;
  std::vector<FileRecord> inputs;
  std::vector<FileRecord> tools;
  bool timing = true;  ///< False when runs are ranked by their place-and-route result alone.
  std::vector<Preference> preferences;
  std::vector<RunResult> runs;     ///< In plan order.
  std::vector<std::size_t> order;  ///< The finished runs' indices, best first.
  std::vector<PromotedFile> promoted;
  std::vector<std::string> missing;  ///< What was asked for and is not there or not right.
  OddsReport odds;
  std::string stopped_because;  ///< Why no further run was started; empty when all were.
  int interrupted_by = 0;       ///< The signal; 0 when none came.
  int exit_code = 0;

  std::size_t Finished() const;
  std::size_t Cancelled() const;  ///< Those never started included.
  std::size_t Failed() const;
};

/// The program's exit code:
///
///   | code          | when                                                             |
///   |---------------|------------------------------------------------------------------|
///   | 129, 130, 143 | interrupted by SIGHUP, SIGINT, SIGTERM                           |
///   | 5             | no run finished                                                  |
///   | 6             | something asked for is missing: the report, a promoted file      |
///   | 4             | some runs failed                                                 |
///   | 0             | done; stopped before the last run on request counts as done      |
///
/// The first that applies. Before a sweep: 2 for the host's own options, 1 and 3 from the library's planning.
int ExitCode(const SweepResult& result);

}  // namespace vostrand
