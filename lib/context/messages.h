#pragma once

#include "host/records.h"

/// Every line that the library writes leaves through one of these, as "context/message_line.h" makes it.
namespace orlo::vostrand_lib {

// For code that holds the host's record, between the run's start and its release.
void _ut_status(const char* text, kelpn::mparrunner::VOSTRAND_CONTEXT* context);
void _ut_warning(const char* text, kelpn::mparrunner::VOSTRAND_CONTEXT* context);
void _ut_error(const char* text, kelpn::mparrunner::VOSTRAND_CONTEXT* context);
/// An error that ends the planning: writes the line and records exit code 3. The caller unwinds.
void _ut_userfatal(const char* text, kelpn::mparrunner::VOSTRAND_CONTEXT* context);

// For readers and writers that hold no record: through the calling thread's run. On a thread without a run
// the text is lost, since it is nobody's.
void _ut_status(const char* text);
void _ut_error(const char* text);

}  // namespace orlo::vostrand_lib
