#include "context/messages.h"

#include "context/exit.h"
#include "context/self_context.h"
#include "context/thread_context.h"
#include "ut/strobj.h"

namespace orlo::vostrand_lib {

using kelpn::mparrunner::VOSTRAND_CONTEXT;

namespace {

UT_STROBJ AsLine(UT_STROBJ text) {
  if (text.right(1).strcmp("\n") != 0) text += "\n";
  return text;
}

}  // namespace

void SendStatus(kelpn::ILogger& logger, const char* text) {
  const UT_STROBJ line = AsLine(text);
  logger.onStdout(line.getstring(1));
}

void SendDiagnostic(kelpn::ILogger& logger, const char* kind, const char* text) {
  const UT_STROBJ line = AsLine(UT_STROBJ().str_format("%s - %s: %s", kind, "vostrand", text ? text : ""));
  logger.onStderr(line.getstring(1));
}

void _ut_status(const char* text, VOSTRAND_CONTEXT* context) {
  context->selfContext->_ut_status(text);
}

void _ut_warning(const char* text, VOSTRAND_CONTEXT* context) {
  context->selfContext->_ut_warning(text);
}

void _ut_error(const char* text, VOSTRAND_CONTEXT* context) {
  context->selfContext->_ut_error(text);
}

void _ut_userfatal(const char* text, VOSTRAND_CONTEXT* context) {
  context->selfContext->_ut_error(text);
  onExit(3, context, false);
}

void _ut_status(const char* text) {
  if (self_context* const run = ThreadContext()) run->_ut_status(text);
}

void _ut_error(const char* text) {
  if (self_context* const run = ThreadContext()) run->_ut_error(text);
}

}  // namespace orlo::vostrand_lib
