#pragma once

#include <cstdint>

#include "export.h"
#include "ut/strobj.h"

namespace orlo::vostrand_lib {

/// One run's place-and-route result.
struct ParScoreVal {
  UT_STROBJ name;      ///< The run's name, set before the read: what the first column of its row must hold.
  bool valid = false;  ///< A result row was read.
  std::int64_t score =
      0;           ///< Timing score, compared as unsigned: 0 meets timing, all bits set is none at all.
  UT_STROBJ line;  ///< The row as read, without its line end.
};

/// The headings of a results table, trimmed.
inline constexpr const char* par_table_headings[] = {
    "Level/       Number       Worst        Timing       Worst        Timing       Run          NCD",
    "Cost [ncd]   Unrouted     Slack        Score        Slack(hold)  Score(hold)  Time         Status",
    "----------   --------     -----        ------       -----------  -----------  ----         ------",
};

/// Finds the results table of the file at `parFile` (a full path) and reads the first row under its headings.
/// True when that row belongs to the run `result.name` and its design was saved: score, line and valid are
/// set then. Otherwise `result` stays as it was. Reports nothing. Any thread.
VOSTRAND_API bool GetParResult(const UT_STROBJ& parFile, ParScoreVal& result);

}  // namespace orlo::vostrand_lib
