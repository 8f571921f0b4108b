#pragma once

#include "export.h"
#include "host/logger.h"

namespace orlo::vostrand_lib {

/// Writes to standard output and standard error, without a flush of its own. A null text sets the stream's
/// badbit.
class VOSTRAND_API IStdLogger final : public kelpn::ILogger {
 public:
  void onStdout(const char* text) override;
  void onStderr(const char* text) override;
};

/// The logger of every run whose host supplies none. Outlives every context, at the process's exit too.
VOSTRAND_API extern IStdLogger stdlogger;

}  // namespace orlo::vostrand_lib
