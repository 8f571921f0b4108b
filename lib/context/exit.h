#pragma once

#include "host/records.h"

namespace orlo::vostrand_lib {

/// Records the exit code, over any earlier one, and with `release` releases the run's context: on its own
/// thread, or on a thread that holds none. A null record does nothing.
void onExit(int code, kelpn::mparrunner::VOSTRAND_CONTEXT* context, bool release);

}  // namespace orlo::vostrand_lib
