#pragma once

#include "context/self_context.h"
#include "context/weights.h"
#include "export.h"
#include "ut/strobj.h"

/// The weights of preferences without an annotation, from a profile file with whole numbers: section
/// "default" for all kinds, a section per kind name, keys "w" and "p"; 1 where nothing is given.
namespace orlo::vostrand_lib {

/// The place for a build that ships a defaults file to put its path into `path`. This one ships none: `path`
/// stays as it is. The result is 0 and nobody reads it.
VOSTRAND_API int GetWPDefaultValFilePath(UT_STROBJ& path);

/// Fills the run's overall defaults and the four kind entries of `weights` from the file; every value of a
/// file that cannot be opened is its default. Other entries stay. Nothing is reported.
VOSTRAND_API void GetDefaultWPValueFromFile(UT_STROBJ iniPath, WeightsMap& weights, self_context* context);

}  // namespace orlo::vostrand_lib
