#include "headunit/MicrophoneFeed.h"

#include <protos.pb.h>

#include <algorithm>

namespace headunit {

int MicrophoneFeed::request(bool open, int maxUnacked) {
  close();
  if (!open) {
    const std::lock_guard lock(mutex_);
    return session_;
  }
  int session = 0;
  {
    const std::lock_guard lock(mutex_);
    session = ++session_;
    maxUnacked_ = std::max(maxUnacked, 1);
    unacked_ = 0;
  }
  const bool listening = microphone_ != nullptr &&
                         microphone_->open([this](const std::int16_t* samples) { return take(samples); });
  return listening ? session : STATUS_INVALID_STATE;
}

void MicrophoneFeed::acknowledged(int session, unsigned int count) {
  const std::lock_guard lock(mutex_);
  if (session != session_) return;  // of an earlier opening
  unacked_ -= static_cast<int>(std::min(count, static_cast<unsigned int>(unacked_)));
}

void MicrophoneFeed::close() {
  if (microphone_ != nullptr) microphone_->close();
}

bool MicrophoneFeed::take(const std::int16_t* samples) {
  const std::lock_guard lock(mutex_);
  if (unacked_ >= maxUnacked_) {
    ++totals_.heldBack;
    return false;
  }
  const ::shared_ptr<IoBuffer> buffer(new IoBuffer(2 * MICROPHONE_BLOCK));
  for (std::size_t i = 0; i < MICROPHONE_BLOCK; ++i) {
    buffer->data[2 * i] = static_cast<unsigned char>(samples[i] & 0xff);
    buffer->data[2 * i + 1] = static_cast<unsigned char>(samples[i] >> 8 & 0xff);
  }
  ++unacked_;
  ++totals_.blocks;
  totals_.mostUnacked = std::max(totals_.mostUnacked, unacked_);
  const auto now = std::chrono::duration_cast<microseconds>(Clock::now().time_since_epoch());
  send_(static_cast<unsigned long long>(now.count()), buffer);
  return true;
}

MicrophoneTotals MicrophoneFeed::totals() const {
  const std::lock_guard lock(mutex_);
  return totals_;
}

}  // namespace headunit
