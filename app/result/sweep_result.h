#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "result/ranking.h"

namespace vostrand {

/// How a sweep ended. Everything that is written about it at the end is made from this one record.
struct SweepResult {
  struct Run {
    std::string name;
    int status = 0;
  };

  std::vector<Run> runs;                ///< In plan order.
  std::vector<RankedRun> ranking;       ///< The finished runs, best first.
  std::vector<std::string> best_files;  ///< The best run's files under the output's name.
  std::vector<std::string> missing;     ///< What was asked for and is not there.
  int interrupted_by = 0;               ///< The signal; 0 when none came.

  std::size_t Count(bool (*wanted)(int status)) const;
  std::size_t Finished() const;
  std::size_t Cancelled() const;
  std::size_t Failed() const;
};

/// The program's exit code:
///
///   | code          | when                                                        |
///   |---------------|-------------------------------------------------------------|
///   | 129, 130, 143 | interrupted by SIGHUP, SIGINT, SIGTERM                      |
///   | 5        | no run finished                                                |
///   | 6        | something asked for is missing: the report, a promoted file    |
///   | 4        | some runs failed                                               |
///   | 0        | done; stopped by "-stopzero" counts as done                    |
///
/// The first that applies. Before a sweep: 2 for the host's own options, 1 and 3 from the library's planning.
int ExitCode(const SweepResult& result);

/// Notes in `result` where the best run's files are and what is missing: a file that is older than `began` is
/// an earlier sweep's.
void CheckFiles(const LibraryRun& library, std::filesystem::file_time_type began, SweepResult& result);

/// The ranking, counts and best run, for people.
std::string SummaryText(const SweepResult& result);

}  // namespace vostrand
