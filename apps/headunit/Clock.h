#pragma once

#include <chrono>

namespace headunit {

using Clock = std::chrono::steady_clock;
using TimePoint = Clock::time_point;
using std::chrono::microseconds;
using std::chrono::milliseconds;

inline microseconds between(TimePoint from, TimePoint to) {
  return std::chrono::duration_cast<microseconds>(to - from);
}

}  // namespace headunit
