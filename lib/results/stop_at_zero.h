#pragma once

#include "export.h"

namespace orlo::vostrand_lib {

/// The callback step of a plan with "-stopzero": sets the record's `stopRequested` when the run `runName`,
/// which has just finished, has a timing score of 0. `context` is the VOSTRAND_CONTEXT. Returns 1 when it is
/// null or holds no tool run, 0 otherwise. Any thread, while the run's own is not inside the library.
VOSTRAND_API int CheckStopAtZero(const char* runName, void* context);

}  // namespace orlo::vostrand_lib
