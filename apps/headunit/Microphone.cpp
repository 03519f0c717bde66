#include "headunit/Microphone.h"

#include <utility>

namespace headunit {
namespace {

constexpr milliseconds PERIOD(20);

}  // namespace

RecordedMicrophone::RecordedMicrophone(std::vector<std::int16_t> samples) : samples_(std::move(samples)) {
  samples_.resize((samples_.size() + MICROPHONE_BLOCK - 1) / MICROPHONE_BLOCK * MICROPHONE_BLOCK);
}

bool RecordedMicrophone::open(Take take) {
  const std::lock_guard lock(mutex_);
  take_ = std::move(take);
  position_ = 0;
  fresh_ = true;
  return true;
}

void RecordedMicrophone::close() {
  const std::lock_guard lock(mutex_);
  take_ = nullptr;
}

// One block a period at most, however late the call comes: a recording has no hurry.
TimePoint RecordedMicrophone::act(TimePoint now) {
  if (now < next_) return next_;
  const std::lock_guard lock(mutex_);
  // A microphone has to hear a block before it can hand it on; till then the phone has its answer, too.
  const bool heard = !std::exchange(fresh_, false);
  if (take_ && heard && position_ < samples_.size() && take_(&samples_[position_]))
    position_ += MICROPHONE_BLOCK;
  next_ = next_ + PERIOD <= now ? now + PERIOD : next_ + PERIOD;
  return next_;
}

}  // namespace headunit
