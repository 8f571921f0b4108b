#pragma once

#include "driver/par_command_file.h"
#include "driver/settings.h"
#include "host/records.h"

namespace orlo::vostrand_lib {

/// Appends one seed per place-and-route run to the record, writes each run's temporary par command file, and
/// notes in the run information the names that the report needs. A temporary file that cannot be rewritten
/// ends the plan with a fatal message; the seeds in front of that run stay.
void AppendPlan(kelpn::mparrunner::VOSTRAND_CONTEXT& record, const Settings& settings,
                const ParOptions& options);

}  // namespace orlo::vostrand_lib
