#pragma once

#include "driver/settings.h"
#include "host/records.h"

namespace orlo::vostrand_lib {

/// Gives the output its final name: ".ncd" for one run, ".dir" for several. False, with a fatal message, for
/// a name that ends in ".dir" already.
bool FixOutputName(kelpn::mparrunner::VOSTRAND_CONTEXT& record);

/// With several runs: empties and removes the old output where asked to, and makes the directory where it is
/// missing. What cannot be removed is warned about and stays.
void PrepareOutputDirectory(kelpn::mparrunner::VOSTRAND_CONTEXT& record, const Settings& settings);

}  // namespace orlo::vostrand_lib
