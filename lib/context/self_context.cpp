#include "context/self_context.h"

#include "context/live_contexts.h"
#include "context/message_line.h"
#include "context/std_logger.h"
#include "ut/filemanager.h"

namespace orlo::vostrand_lib {

self_context::self_context(kelpn::ILogger* host_logger) : logger(host_logger ? host_logger : &stdlogger) {
  live_contexts::Add(this);
}

self_context::~self_context() {
  live_contexts::Remove(this);
  delete cmdArgs;
  cmdArgs = nullptr;
  ut_file->rm_ofile(runInfo.logStream);
  runInfo.logStream = nullptr;
}

void self_context::_ut_status(const char* text) {
  SendStatus(*logger, text);
}

void self_context::_ut_warning(const char* text) {
  SendDiagnostic(*logger, "WARNING", text);
}

void self_context::_ut_error(const char* text) {
  SendDiagnostic(*logger, "ERROR", text);
}

}  // namespace orlo::vostrand_lib
