#pragma once

#include <array>
#include <cstdint>

#include "headunit/Clock.h"

namespace headunit {

/// Counts durations for percentiles, in the same small memory however many there are. Up to 128 us they are
/// exact, above that a percentile is at most 1.6 % too high. Not for several threads at once.
class LatencyHistogram {
 public:
  /// Negative durations count as 0.
  void add(microseconds duration);

  std::uint64_t count() const { return count_; }
  microseconds longest() const { return microseconds(longest_); }

  /// The duration that `percent` of a hundred do not exceed (nearest rank); 0 if there are none.
  microseconds percentile(double percent) const;

 private:
  static constexpr int EXACT_BITS = 7;
  static constexpr int STEPS = 1 << (EXACT_BITS - 1);  // in each doubling above the exact range
  static constexpr int DOUBLINGS = 64 - EXACT_BITS;

  static std::size_t bucketOf(std::uint64_t value);
  static std::uint64_t highestIn(std::size_t bucket);

  std::array<std::uint64_t, (1 << EXACT_BITS) + STEPS * DOUBLINGS> buckets_{};
  std::uint64_t count_ = 0;
  std::int64_t longest_ = 0;
};

}  // namespace headunit
