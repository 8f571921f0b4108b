#pragma once

#include "export.h"
#include "ut/stream.h"
#include "ut/strobj.h"

/// Turns the runs' scattered files into the tool's result. What cannot be copied or removed is not reported.
namespace orlo::vostrand_lib {

/// Gathers one run's files: moves every file of `runDir` (a full path) into `targetDir`, over same-named
/// files there, and removes `runDir`. A file goes only after its copy is complete; a sub-directory stays, and
/// `runDir` with it. Nothing happens when `runDir` is no directory.
VOSTRAND_API void CopySeedResult(const UT_STROBJ& targetDir, const UT_STROBJ& runDir);

/// Promotes the run `best`: keeps the summary `<workDir>/<outputName>.par` in the output directory, appends
/// the run's own report to it, and copies the run's design and companion files to `<workDir>/<outputName>.*`.
/// Notes it in `log`, which may be null. Returns 1, having done nothing, when `best` is empty, and 0
/// otherwise.
VOSTRAND_API int copybestup(const UT_STROBJ& best, UT_STREAM* log, UT_STROBJ workDir, UT_STROBJ outputName,
                            UT_STROBJ outputDirPath);

}  // namespace orlo::vostrand_lib
