#pragma once

#include "ut/stream.h"

namespace orlo::vostrand_lib {

/// The run's log as its writers see it: there may be none, as after a mere request for help, and then nothing
/// is written.
class RunLog {
 public:
  explicit RunLog(UT_STREAM* stream) : stream_(stream) {}

  RunLog& operator<<(const char* text) {
    if (stream_) *stream_ << text;
    return *this;
  }
  /// Makes what was written visible to whoever reads the file while the run goes on.
  void flush() {
    if (stream_) stream_->flush();
  }

 private:
  UT_STREAM* stream_;
};

}  // namespace orlo::vostrand_lib
