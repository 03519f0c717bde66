#pragma once

#include <ctime>

/// This thread's processor time in seconds: what a piece of work costs, whatever else the machine is doing.
inline double now() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

inline double secondsSince(double start) { return now() - start; }
