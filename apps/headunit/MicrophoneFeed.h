#pragma once

#include <IAudioSourceCallbacks.h>
#include <IoBuffer.h>
#include <shared_ptr.h>

#include <cstdint>
#include <functional>
#include <mutex>

#include "headunit/Microphone.h"

namespace headunit {

struct MicrophoneTotals {
  std::uint64_t blocks = 0;    ///< sent
  std::uint64_t heldBack = 0;  ///< offered when the phone had its limit unacknowledged
  int mostUnacked = 0;
};

/// One link's use of the microphone: opens and closes it as the phone asks, and never has more blocks
/// unacknowledged than the phone allows.
class MicrophoneFeed {
 public:
  using Send = std::function<void(unsigned long long timestamp, ::shared_ptr<IoBuffer> const& buffer)>;

  /// `microphone` may be null: there is none, and the phone is told so.
  MicrophoneFeed(Microphone* microphone, Send send) : microphone_(microphone), send_(std::move(send)) {}
  ~MicrophoneFeed() { close(); }

  /// Reader thread: the phone's request. Returns the session, or a negative status.
  int request(bool open, int maxUnacked);
  /// Reader thread.
  void acknowledged(int session, unsigned int count);
  /// Nothing is sent any more once this has returned.
  void close();

  MicrophoneTotals totals() const;

 private:
  bool take(const std::int16_t* samples);

  Microphone* const microphone_;
  const Send send_;
  mutable std::mutex mutex_;
  int session_ = 0;
  int maxUnacked_ = 1;
  int unacked_ = 0;
  MicrophoneTotals totals_;
};

/// What the library calls; forwards to a MicrophoneFeed, which outlives it.
class MicrophoneCallbacks : public IAudioSourceCallbacks {
 public:
  explicit MicrophoneCallbacks(MicrophoneFeed* feed) : feed_(feed) {}
  void ackReceived(int sessionId, unsigned int ack) override { feed_->acknowledged(sessionId, ack); }
  int microphoneRequest(bool open, bool, bool, int maxUnacked) override {
    return feed_->request(open, maxUnacked);
  }

 private:
  MicrophoneFeed* const feed_;
};

}  // namespace headunit
