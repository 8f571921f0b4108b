// Preloaded: the calendar's clock jumps an hour ahead and back every half second; that which only runs
// forward stays what it is.
#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept {
  const long result = syscall(SYS_clock_gettime, clock, time);
  timespec steady{};
  syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &steady);
  if (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE)
    time->tv_sec += steady.tv_nsec < 500'000'000 ? 3600 : -3600;
  return static_cast<int>(result);
}

int gettimeofday(timeval* time, void*) noexcept {
  timespec now{};
  const int result = clock_gettime(CLOCK_REALTIME, &now);
  *time = {now.tv_sec, now.tv_nsec / 1000};
  return result;
}
}
