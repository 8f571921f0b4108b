#pragma once

#include "driver/settings.h"
#include "host/records.h"

namespace orlo::vostrand_lib {

/// Reads the argument vector in one of its three forms: a design's base name, a base name with "-dissorv" or
/// "-cst", or the full form with switches. False when the run ends here: a wrong command line (message,
/// usage, exit code 1) or a request for help (exit code 0).
bool ReadCommandLine(int argc, const char** argv, kelpn::mparrunner::VOSTRAND_CONTEXT& record,
                     Settings& settings);

/// Opens the run's log and writes the banners. False, with a fatal message, when the log cannot be created.
bool OpenLog(kelpn::mparrunner::VOSTRAND_CONTEXT& record, const Settings& settings);

/// Checks that every required file is named and the design can be read. False, with a message, when not.
bool CheckSettings(kelpn::mparrunner::VOSTRAND_CONTEXT& record, const Settings& settings);

}  // namespace orlo::vostrand_lib
