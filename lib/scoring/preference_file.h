#pragma once

#include "context/weights.h"
#include "export.h"
#include "ut/strobj.h"

/// The weight and penalty annotations of a preference file. Called on the thread of the tool run, which owns
/// the map.
namespace orlo::vostrand_lib {

/// Reads the annotations of the file at `prfPath` into `weights`, which holds the kind defaults: an
/// annotation's number times its kind's default is the preference's weight or penalty. A later statement
/// replaces an earlier one; a statement that is a kind's bare name changes the kind's default for what
/// follows. Returns the number of annotated preferences; 0, with an error message through the thread's run,
/// when the file cannot be opened. Statements that are no annotated preferences are passed over.
VOSTRAND_API int GetWPFromPrf(UT_STROBJ prfPath, WeightsMap& weights);

}  // namespace orlo::vostrand_lib
