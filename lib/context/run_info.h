#pragma once

#include "context/weights.h"
#include "ut/stream.h"
#include "ut/strobj.h"
#include "ut/typed_arrays.h"

namespace orlo::vostrand_lib {

/// What the command line and the par command file decided for one tool run. File names are as given, relative
/// to the record's `workDir`.
struct MParRunInfo {
  bool noTiming = false;    ///< No timing step is planned; runs are ranked by their place-and-route result.
  bool multiRun = false;    ///< The output is a directory that holds one sub-result per run.
  bool stopAtZero = false;  ///< Stop once a run reaches timing score 0.
  UT_STROBJ prefFile;
  UT_STROBJ tracePrefFile;  ///< For the timing analysis; empty when not given.
  UT_STROBJ reportFile;
  UT_STROBJ outputDir;             ///< Ends in ".ncd" for one run, in ".dir" when `multiRun`.
  UT_STROBJ outputName;            ///< `outputDir` without extension and directory part.
  UT_STREAM* logStream = nullptr;  ///< The open log; owned, closed by the context's destructor.
  WeightsMap weights;

  // Element i belongs to the i-th planned run; all three stay empty when `noTiming`.
  DARRAY_UT_STROBJ twrFiles;   ///< The run's timing report.
  DARRAY_UT_STROBJ csvLabels;  ///< The run's label in the report file: its cost table, or the output's stem.
  DARRAY_UT_STROBJ runNames;   ///< The run's name, or the output's stem.
};

}  // namespace orlo::vostrand_lib
