#pragma once

#include "host/logger.h"
#include "ut/strobj.h"

/// One line to a logger. A line is the text, ended by exactly one "\n". The text is never a format: "%" is
/// printed as it is. A null text is empty.
namespace orlo::vostrand_lib {

/// The text itself, to `onStdout`.
void SendStatus(kelpn::ILogger& logger, const char* text);

/// "KIND - vostrand: text" to `onStderr`; `kind` is "WARNING" or "ERROR".
void SendDiagnostic(kelpn::ILogger& logger, const char* kind, const char* text);

/// The sentence `what "path".`, for messages about a file.
UT_STROBJ AboutFile(const char* what, const UT_STROBJ& path);

}  // namespace orlo::vostrand_lib
