#pragma once

#include "driver/settings.h"
#include "host/records.h"

namespace orlo::vostrand_lib {

/// Reads a command line with switches. `argv` holds `argc` texts, argument 0 included. False when the run
/// ends here, as ReadCommandLine.
bool ReadFullForm(int argc, const char* const* argv, kelpn::mparrunner::VOSTRAND_CONTEXT& record,
                  Settings& settings);

}  // namespace orlo::vostrand_lib
