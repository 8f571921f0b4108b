#pragma once

#include <cstdint>

#include "context/run_info.h"
#include "host/logger.h"
#include "ut/cmdargs.h"

namespace orlo::vostrand_lib {

/// The library's side of one tool run. Used by one thread at a time; released by vostrand_exit, by the next
/// run on its thread, or by the end of its thread.
struct self_context {
  /// A null `host_logger` means `stdlogger`.
  explicit self_context(kelpn::ILogger* host_logger);
  /// Deletes the parser and closes the log before the run information goes. The logger is not touched.
  ~self_context();
  self_context(const self_context&) = delete;
  self_context& operator=(const self_context&) = delete;

  /// A status line: the text, ended by one "\n", to the logger's `onStdout`.
  void _ut_status(const char* text);
  /// "WARNING - vostrand: text" to `onStderr`.
  void _ut_warning(const char* text);
  /// "ERROR - vostrand: text" to `onStderr`.
  void _ut_error(const char* text);

  UT_CMDARGS* cmdArgs = nullptr;  ///< Owned; null until the command line has been parsed.
  kelpn::ILogger* logger;         ///< Not owned, never null.
  std::int32_t defaultWeight = 1;
  std::int32_t defaultPenalty = 1;
  MParRunInfo runInfo;
};

}  // namespace orlo::vostrand_lib
