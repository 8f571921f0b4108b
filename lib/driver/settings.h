#pragma once

#include "ut/strobj.h"

namespace orlo::vostrand_lib {

/// What the command line says beyond what the run information keeps. File names as given, relative to
/// `workDir`.
struct Settings {
  UT_STROBJ parCommandFile;
  UT_STROBJ timingCommandFile;  ///< Empty when not given.
  UT_STROBJ logFile;
  UT_STROBJ designFile;
  bool removeOldOutput = false;
  UT_STROBJ extraOptions;  ///< Appended to every planned command line, with its own trailing blank.
};

}  // namespace orlo::vostrand_lib
