#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <variant>
#include <vector>

#include "headunit/VideoFrame.h"

namespace headunit {

struct CodecConfig {
  std::vector<std::uint8_t> bytes;
};
using VideoItem = std::variant<CodecConfig, VideoFrame>;

/// From the reader thread, which never waits, to the decoder, which does.
class VideoQueue {
 public:
  /// `limit`: how many items may wait. A phone that keeps to its unacknowledged frames stays far below it.
  explicit VideoQueue(std::size_t limit) : limit_(limit) {}

  /// Returns false, and drops the item, if the queue is full or closed.
  bool push(VideoItem item);

  /// Waits for an item; false once the queue has been closed and emptied.
  bool pop(VideoItem* item);

  /// No more items come.
  void close();

 private:
  const std::size_t limit_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<VideoItem> items_;
  bool closed_ = false;
};

}  // namespace headunit
