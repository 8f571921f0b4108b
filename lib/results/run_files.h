#pragma once

#include "support/file_names.h"
#include "ut/strobj.h"

namespace orlo::vostrand_lib {

/// The path `<directory>/<stem><extension>`. The "/" is left out behind a directory that is empty or ends in
/// one, so that an empty working directory never turns into the root.
inline UT_STROBJ RunFile(const UT_STROBJ& directory, const UT_STROBJ& stem, const char* extension) {
  const bool needs_slash = !directory.empty() && directory.right(1).strcmp("/") != 0;
  return (needs_slash ? directory + '/' : directory) + stem + extension;
}

}  // namespace orlo::vostrand_lib
