#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// What is measured: inputs in sizes of real designs, the same at every call, and tool runs on them.
namespace bench {

/// A timing report of about `bytes` bytes: a table of `preferences` preferences whose names have
/// `name_length` characters, path details, and the "Score:" line at the end. `mhz` is what the first of them
/// achieved.
void WriteTimingReport(const std::string& path, std::size_t bytes, int preferences, std::size_t name_length,
                       int mhz = 120);

/// A place-and-route result of about `bytes` bytes: the tool's log, then the results table of the run `name`.
void WriteParResult(const std::string& path, std::size_t bytes, const std::string& name, int score = 0);

/// `statements` preferences over one to three lines each, among comment lines; one in ten has an annotation.
void WritePreferences(const std::string& path, int statements);

/// A design "top" that is ready to be planned with `runs` runs in the folder `folder`, which is made.
/// `preferences` of them are annotated.
void WriteDesign(const std::string& folder, int runs, int preferences);

/// What the `runs` runs of "top" leave in its output directory: report, result and a run directory with a
/// design and its companions. `report_bytes` is the size of a timing report.
void WriteRuns(const std::string& folder, int runs, int preferences, std::size_t report_bytes);

/// A run directory with four files of `bytes` bytes, all holes.
void WriteRunDirectory(const std::string& folder, const std::string& run, std::size_t bytes);

/// Plans "top" in `folder` and, with `report`, takes the runs that are there for its own and reports on them.
/// Returns the times (s, of the steady clock) of the plan's end, of every run's score, and of the end.
std::vector<double> ToolRun(const std::string& folder, bool report);

/// Seconds of the steady clock.
double Now();

/// The system calls that planning `runs` runs of "top" in `folder` makes for its files, as strace lists them,
/// and nothing else: no line is looked at.
void PlanningCalls(const std::string& folder, int runs);

}  // namespace bench
