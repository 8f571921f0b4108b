#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/logger.h"

namespace orlo::vostrand_lib {
struct self_context;
}

/// The records that host and library share. Both are built against these definitions, with the same C++
/// standard library and its current string type.
namespace orlo::kelpn::mparrunner {

/// One action of a run.
struct STEP {
  static constexpr std::int32_t execute = 0;        ///< `kind`: `command` is a command line to execute.
  static constexpr std::int32_t call_callback = 2;  ///< `kind`: call `callback`.

  std::int32_t kind = execute;
  /// The complete command line, beginning with the tool's name. File names in it are relative to the working
  /// directory. Empty for a callback.
  std::string command;
  /// Called with the run's name and the VOSTRAND_CONTEXT record. Null for a command; valid while the library
  /// is loaded.
  int (*callback)(const char* run_name, void* context) = nullptr;
};

/// One planned place-and-route run. A copy has its own steps.
struct MPAR_SEED {
  static constexpr std::int32_t cancelled = 65280;  ///< `status` of a run that the user cancelled.

  /// Par level and cost table joined by "_" ("5_1"): the stem of the run's files in the output directory.
  std::string name;
  /// 0 when planned. The host stores the outcome: 0 or less finished, `cancelled`, any other positive value
  /// the error code with which the run failed.
  std::int32_t status = 0;
  /// In the order in which the host performs them.
  std::vector<STEP> steps;
};

/// One tool run, owned by the host.
struct VOSTRAND_CONTEXT {
  /// The host's logger, not owned; null means standard output and standard error.
  ILogger* logger = nullptr;
  /// Base directory of the run, not owned: every relative file name is inside it. Null or empty means the
  /// process's current directory. Stays valid until vostrand_exit.
  const char* workDir = nullptr;
  /// Exit code of the tool run: 0, 1 after the usage text or a bad "-n" value, 3 after a fatal user error.
  /// Success leaves the host's own value in place, so the host starts it at 0.
  std::int32_t exitCode = 0;
  /// Set by the stop-at-zero callback: the host starts no further run. Never cleared by the library.
  bool stopRequested = false;
  /// The plan, in run order. vostrand_main appends to it, vostrand_report reads it.
  std::vector<MPAR_SEED> seeds;
  /// The library's side of the run: set by vostrand_main, released and cleared by vostrand_exit.
  vostrand_lib::self_context* selfContext = nullptr;
};

// Host and library meet in memory, so a change of shape is a break for every host that is already built.
static_assert(sizeof(void*) == 8 && sizeof(std::string) == 32, "64 bits, current libstdc++ string");
static_assert(sizeof(STEP) == 48 && sizeof(MPAR_SEED) == 64 && sizeof(VOSTRAND_CONTEXT) == 56);
static_assert(offsetof(VOSTRAND_CONTEXT, exitCode) == 16 && offsetof(VOSTRAND_CONTEXT, stopRequested) == 20 &&
              offsetof(VOSTRAND_CONTEXT, selfContext) == 48);

}  // namespace orlo::kelpn::mparrunner
