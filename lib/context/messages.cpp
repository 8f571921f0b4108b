#include "context/messages.h"

#include "context/exit.h"
#include "context/self_context.h"
#include "context/thread_context.h"

namespace orlo::vostrand_lib {

using kelpn::mparrunner::VOSTRAND_CONTEXT;

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
