#pragma once

#include <string>

#include "host/logger.h"

/// A host's logger that keeps what it hears.
class RecordingLogger final : public orlo::kelpn::ILogger {
 public:
  void onStdout(const char* text) override { out += text; }
  void onStderr(const char* text) override { err += text; }

  std::string out;
  std::string err;
};
