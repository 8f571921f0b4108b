#pragma once

#include "context/self_context.h"
#include "host/records.h"

namespace orlo::vostrand_lib {

/// Writes the option list, sixteen status lines, through the calling thread's run; nothing on a thread
/// without one.
void kelusage();
/// The same through the given run.
void kelusage(self_context* context);

/// Says why the command line is refused, then shows the usage. Always false, for a reader to return.
bool RefuseCommandLine(const char* why, kelpn::mparrunner::VOSTRAND_CONTEXT* context);

/// Writes the usage line and the option list and records exit code 1. The run stays alive.
void usage(kelpn::mparrunner::VOSTRAND_CONTEXT* context);

}  // namespace orlo::vostrand_lib
