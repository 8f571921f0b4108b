#pragma once

#include "export.h"
#include "ut/strobj.h"

/// File names as the command line gives them and as the library opens them. Pure functions, any thread.
namespace orlo::vostrand_lib {

/// `name` without its surrounding double quotes. Only the last character is looked at: when it is a quote, it
/// and the first character go.
VOSTRAND_API UT_STROBJ GetCleanFileName(const UT_STROBJ& name);

/// The path of `name` inside `directory`. An absolute name stays as it is, an empty one is empty; an empty
/// directory means the current one.
VOSTRAND_API UT_STROBJ GenerateFilePath(const UT_STROBJ& directory, const UT_STROBJ& name);

/// True when `name` ends in `extension` (".ncd").
bool HasExtension(const UT_STROBJ& name, const char* extension);

/// `name` without its last four characters, the extension; a shorter name stays whole.
UT_STROBJ WithoutExtension(const UT_STROBJ& name);

}  // namespace orlo::vostrand_lib
