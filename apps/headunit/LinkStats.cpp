#include "headunit/LinkStats.h"

namespace headunit {
namespace {

// Of a phone that never shows any, no more are kept.
constexpr std::size_t MOST_UNSEEN_TOUCHES = 1024;

Latency spreadOf(const LatencyHistogram& histogram) {
  return {histogram.count(), histogram.percentile(50), histogram.percentile(99), histogram.longest()};
}

}  // namespace

void LinkStats::authenticated(TimePoint when) {
  const std::lock_guard lock(mutex_);
  if (!handshake_) handshake_ = between(started_, when);
}

void LinkStats::pinged(microseconds roundTrip) {
  const std::lock_guard lock(mutex_);
  pings_.add(roundTrip);
}

void LinkStats::received(const VideoFrame& frame) {
  const std::lock_guard lock(mutex_);
  if (totals_.frames == 0) firstFrame_ = frame.times.received;
  lastFrame_ = frame.times.received;
  ++totals_.frames;
  totals_.bytes += frame.length;
  socketToReceived_.add(between(frame.times.read, frame.times.received));
}

void LinkStats::refused() {
  const std::lock_guard lock(mutex_);
  ++totals_.refused;
}

void LinkStats::damaged() {
  const std::lock_guard lock(mutex_);
  ++totals_.damaged;
}

void LinkStats::decoded(const FrameTimes& times, int width, int height) {
  const std::lock_guard lock(mutex_);
  ++totals_.decoded;
  totals_.width = width;
  totals_.height = height;
  receivedToDequeued_.add(between(times.received, times.dequeued));
  dequeuedToDecoded_.add(between(times.dequeued, times.decoded));
  socketToDecoded_.add(between(times.read, times.decoded));
}

void LinkStats::dropped() {
  const std::lock_guard lock(mutex_);
  ++totals_.dropped;
}

void LinkStats::shown(const FrameTimes& times) {
  const std::lock_guard lock(mutex_);
  ++totals_.shown;
  decodedToShown_.add(between(times.decoded, times.shown));
}

void LinkStats::touched(TimePoint when) {
  const std::lock_guard lock(mutex_);
  unseenTouches_.push_back(when);
  if (unseenTouches_.size() <= MOST_UNSEEN_TOUCHES) return;
  unseenTouches_.pop_front();
  ++seenTouches_;
}

void LinkStats::touchesSeen(std::uint32_t count, TimePoint when) {
  const std::lock_guard lock(mutex_);
  for (; seenTouches_ < count && !unseenTouches_.empty(); ++seenTouches_) {
    touches_.add(between(unseenTouches_.front(), when));
    unseenTouches_.pop_front();
  }
}

bool LinkStats::awaitsTouches() const {
  const std::lock_guard lock(mutex_);
  return !unseenTouches_.empty();
}

Latency LinkStats::touches() const {
  const std::lock_guard lock(mutex_);
  return spreadOf(touches_);
}

VideoTotals LinkStats::totals() const {
  const std::lock_guard lock(mutex_);
  return totals_;
}

VideoLatencies LinkStats::latencies() const {
  const std::lock_guard lock(mutex_);
  return {spreadOf(socketToReceived_), spreadOf(receivedToDequeued_), spreadOf(dequeuedToDecoded_),
          spreadOf(socketToDecoded_), spreadOf(decodedToShown_)};
}

Latency LinkStats::pings() const {
  const std::lock_guard lock(mutex_);
  return spreadOf(pings_);
}

std::optional<microseconds> LinkStats::handshake() const {
  const std::lock_guard lock(mutex_);
  return handshake_;
}

microseconds LinkStats::streamed() const {
  const std::lock_guard lock(mutex_);
  return between(firstFrame_, lastFrame_);
}

}  // namespace headunit
