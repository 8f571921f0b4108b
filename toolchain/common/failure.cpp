#include "common/failure.h"

#include <cstdio>
#include <exception>

namespace toolchain {

int RunProgram(const char* program, const std::function<void()>& body) {
  try {
    body();
    return static_cast<int>(ExitCode::done);
  } catch (const Failure& failure) {
    std::fprintf(stderr, "%s: error: %s\n", program, failure.what());
    return failure.exit_code();
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s: error: %s\n", program, failure.what());
    return static_cast<int>(ExitCode::engine);
  }
}

}  // namespace toolchain
