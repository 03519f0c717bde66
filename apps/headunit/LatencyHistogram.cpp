#include "headunit/LatencyHistogram.h"

#include <algorithm>
#include <cmath>

namespace headunit {

std::size_t LatencyHistogram::bucketOf(std::uint64_t value) {
  if (value < (1U << EXACT_BITS)) return value;
  const int magnitude = 63 - __builtin_clzll(value);  // at least EXACT_BITS
  const int shift = magnitude - EXACT_BITS + 1;
  const std::uint64_t step = (value >> shift) - STEPS;
  return (1U << EXACT_BITS) + static_cast<std::size_t>(shift - 1) * STEPS + step;
}

std::uint64_t LatencyHistogram::highestIn(std::size_t bucket) {
  if (bucket < (1U << EXACT_BITS)) return bucket;
  const std::size_t above = bucket - (1U << EXACT_BITS);
  const std::uint64_t step = above % STEPS + STEPS;
  return ((step + 1) << (above / STEPS + 1)) - 1;
}

void LatencyHistogram::add(microseconds duration) {
  const std::int64_t value = std::max<std::int64_t>(duration.count(), 0);
  ++buckets_[bucketOf(static_cast<std::uint64_t>(value))];
  ++count_;
  longest_ = std::max(longest_, value);
}

microseconds LatencyHistogram::percentile(double percent) const {
  const auto rank = static_cast<std::uint64_t>(std::ceil(percent / 100 * static_cast<double>(count_)));
  std::uint64_t passed = 0;
  for (std::size_t bucket = 0; bucket < buckets_.size(); ++bucket) {
    passed += buckets_[bucket];
    if (passed < rank || passed == 0) continue;
    return microseconds(std::min(static_cast<std::int64_t>(highestIn(bucket)), longest_));
  }
  return microseconds(0);
}

}  // namespace headunit
