#include "context/std_logger.h"

#include <iostream>

namespace orlo::vostrand_lib {

void IStdLogger::onStdout(const char* text) {
  std::cout << text;
}

void IStdLogger::onStderr(const char* text) {
  std::cerr << text;
}

}  // namespace orlo::vostrand_lib
