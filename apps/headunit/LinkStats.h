#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>

#include "headunit/LatencyHistogram.h"
#include "headunit/VideoFrame.h"

namespace headunit {

/// What has come by one link so far.
struct VideoTotals {
  std::uint64_t frames = 0;   ///< media messages received
  std::uint64_t bytes = 0;    ///< encoded bytes in them
  std::uint64_t decoded = 0;  ///< pictures
  std::uint64_t damaged = 0;  ///< frames that could not be decoded, or not wholly
  std::uint64_t refused =
      0;  ///< frames too many or too long, or left when the link broke: thrown away undecoded
  std::uint64_t dropped = 0;  ///< pictures that gave way to a newer one before they were shown
  std::uint64_t shown = 0;
  int width = 0;
  int height = 0;
};

/// The spread of one stage of a frame's way.
struct Latency {
  std::uint64_t count = 0;
  microseconds p50{0};
  microseconds p99{0};
  microseconds longest{0};
};

struct VideoLatencies {
  Latency socketToReceived;  ///< decryption and putting together
  Latency receivedToDequeued;
  Latency dequeuedToDecoded;
  Latency socketToDecoded;  ///< the three together
  Latency decodedToShown;
};

/// Counts and times what one link does. Any thread may tell, any may ask.
class LinkStats {
 public:
  /// `started`: when the connection stood.
  explicit LinkStats(TimePoint started) : started_(started) {}

  void authenticated(TimePoint when);
  void pinged(microseconds roundTrip);
  void received(const VideoFrame& frame);
  void refused();
  void damaged();
  void decoded(const FrameTimes& times, int width, int height);
  void dropped();
  void shown(const FrameTimes& times);
  /// A touch report is about to go out.
  void touched(TimePoint when);
  /// A picture that shows the first `count` of them can be seen.
  void touchesSeen(std::uint32_t count, TimePoint when);

  VideoTotals totals() const;
  VideoLatencies latencies() const;
  Latency pings() const;
  /// From a touch report to the first picture that shows it.
  Latency touches() const;
  bool awaitsTouches() const;
  /// From connection to authentication.
  std::optional<microseconds> handshake() const;
  /// From the first frame's receipt to the last one's.
  microseconds streamed() const;
  TimePoint started() const { return started_; }

 private:
  mutable std::mutex mutex_;
  const TimePoint started_;
  std::optional<microseconds> handshake_;
  VideoTotals totals_;
  TimePoint firstFrame_;
  TimePoint lastFrame_;
  LatencyHistogram pings_;
  LatencyHistogram socketToReceived_;
  LatencyHistogram receivedToDequeued_;
  LatencyHistogram dequeuedToDecoded_;
  LatencyHistogram socketToDecoded_;
  LatencyHistogram decodedToShown_;
  std::deque<TimePoint> unseenTouches_;
  std::uint64_t seenTouches_ = 0;
  LatencyHistogram touches_;
};

}  // namespace headunit
