#pragma once

#include <map>

#include "export.h"
#include "ut/strobj.h"

/// The timing report of a run. Called on the thread of the tool run, which owns the map.
namespace orlo::vostrand_lib {

/// One timing preference as a timing report lists it.
struct PrfResultVal {
  UT_STROBJ type;        ///< Its kind, one of `preference_kinds`.
  UT_STROBJ reportRows;  ///< Its rows of the summary table as the log shows them; scoring completes the last.
  UT_STROBJ prefText;    ///< The text before its ";", blanks kept.
  UT_STROBJ constraintText;       ///< The Constraint column with its unit: "100.000 MHz".
  UT_STROBJ actualText;           ///< The Actual column without its unit: "184.332"; "-" when it has none.
  UT_STROBJ unit;                 ///< Of the Actual column: "(ns)", "(MHz)" or "".
  float constraintPeriod = 0.0F;  ///< ns
  float actualPeriod = 0.0F;      ///< ns
};

/// The results by cleaned preference name, shared by all runs of a tool run.
using ResultsMap = std::map<UT_STROBJ, PrfResultVal>;

/// Reads the preference summary and the timing score of the report at `twrPath`. Records are added or
/// overwritten, never removed: what a later report does not list keeps the values of the one that last listed
/// it. Returns the text behind "Score:", untrimmed; "0" when there is none, or, with an error message through
/// the thread's run, when the file cannot be opened.
VOSTRAND_API UT_STROBJ GetPrfResultVal(UT_STROBJ twrPath, ResultsMap& prfResults);

}  // namespace orlo::vostrand_lib
