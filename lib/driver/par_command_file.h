#pragma once

#include <cstdint>

#include "host/records.h"
#include "ut/strobj.h"

/// The par command file: lines of options for the place-and-route tool. Its lines are read whole, whatever
/// their length, so that rewriting never splits one of the user's.
namespace orlo::vostrand_lib {

/// What the par command file decides for the plan.
struct ParOptions {
  std::int32_t runCount = 1;        ///< "-n ": 1 to 99.
  UT_STROBJ level = "5";            ///< "-l ", as written.
  std::int32_t firstCostTable = 1;  ///< "-t "
};

/// Reads the file `name` (relative to `workDir`) into `options` and the run information's flags, and writes
/// it back with "-s" set to the run count and the value of "-stopzero" emptied. A file that cannot be read
/// leaves the defaults, without a message. False, with a message and an exit code, when it holds more than 99
/// runs or cannot be written; a failure leaves the user's text as it was.
bool ReadParCommandFile(kelpn::mparrunner::VOSTRAND_CONTEXT& record, const UT_STROBJ& name,
                        ParOptions& options);

/// The name of run `index`'s temporary copy.
UT_STROBJ TempParCommandFile(const UT_STROBJ& name, int index);

/// Makes the temporary copy `temp_name` of the file `name`, both relative to `workDir`. True when it can be
/// read.
bool CopyParCommandFile(kelpn::mparrunner::VOSTRAND_CONTEXT& record, const UT_STROBJ& name,
                        const UT_STROBJ& temp_name);

/// Rewrites the temporary copy so that it asks for one run, with this cost table. False, with a fatal
/// message, when it cannot be read or written.
bool RewriteTempParCommandFile(kelpn::mparrunner::VOSTRAND_CONTEXT& record, const UT_STROBJ& temp_name,
                               std::int64_t cost_table);

}  // namespace orlo::vostrand_lib
