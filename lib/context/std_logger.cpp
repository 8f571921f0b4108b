#include "context/std_logger.h"

#include <iostream>

namespace orlo::vostrand_lib {
namespace {

// A message is not worth the run; the stream keeps the failure in its state.
void Write(std::ostream& stream, const char* text) {
  try {
    stream << text;
  } catch (const std::ios_base::failure&) {  // The host wants to hear of it, but from calls of its own.
  }
}

}  // namespace

void IStdLogger::onStdout(const char* text) {
  Write(std::cout, text);
}

void IStdLogger::onStderr(const char* text) {
  Write(std::cerr, text);
}

}  // namespace orlo::vostrand_lib
