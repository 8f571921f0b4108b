#pragma once

#include <cxxabi.h>
#include <pthread.h>

#include <exception>
#include <utility>

namespace orlo::vostrand_lib {

/// While it lives, whoever cancels the thread waits: files are closed in destructors, which nothing may leave
/// half done.
class NoCancellation {
 public:
  NoCancellation() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before_); }
  ~NoCancellation() { pthread_setcancelstate(before_, nullptr); }
  NoCancellation(const NoCancellation&) = delete;
  NoCancellation& operator=(const NoCancellation&) = delete;

 private:
  int before_ = PTHREAD_CANCEL_ENABLE;
};

/// Runs `body` at an entry of the library and keeps every exception inside: out of memory, or one that the
/// host's logger or streams threw. Returns false when there was one; `on_failure`, when given, hears its
/// text.
template <typename Body, typename OnFailure>
bool GuardBoundary(Body&& body, OnFailure&& on_failure) {
  const NoCancellation no_cancellation;
  const auto report = [&](const char* reason) {
    try {
      on_failure(reason);
    } catch (const abi::__forced_unwind&) {
      throw;
    } catch (...) {  // The message was the last thing that could be done.
    }
    return false;
  };
  try {
    body();
    return true;
  } catch (
      const abi::__forced_unwind&) {  // The host's logger ends the thread; that is no exception to be kept.
    throw;
  } catch (const std::exception& failure) {
    return report(failure.what());
  } catch (...) {
    return report("unknown failure");
  }
}

template <typename Body>
bool GuardBoundary(Body&& body) {
  return GuardBoundary(std::forward<Body>(body), [](const char*) {});
}

}  // namespace orlo::vostrand_lib
