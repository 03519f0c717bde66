#pragma once

#include <cstdint>

namespace phone {

/// Cuts sound into blocks of milliseconds so that the samples of all of them add up exactly, also where a
/// millisecond is no whole number of samples.
class PcmClock {
 public:
  explicit PcmClock(int sampleRate) : rate_(sampleRate) {}

  /// Starts the next block; returns how many samples (of each channel) belong into it.
  std::int64_t startBlock(int milliseconds) {
    start_ = framesUntil(elapsedMs_);
    elapsedMs_ += milliseconds;
    return framesUntil(elapsedMs_) - start_;
  }

  /// The position of the block's first sample, in samples and in microseconds.
  std::int64_t blockStart() const { return start_; }
  std::int64_t blockStartUs() const { return start_ * 1'000'000 / rate_; }

 private:
  std::int64_t framesUntil(std::int64_t milliseconds) const { return milliseconds * rate_ / 1000; }

  std::int64_t rate_;
  std::int64_t elapsedMs_ = 0;
  std::int64_t start_ = 0;
};

}  // namespace phone
