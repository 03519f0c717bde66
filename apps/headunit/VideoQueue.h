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
/// The stream starts or stops here.
struct StreamBoundary {};
using VideoItem = std::variant<CodecConfig, StreamBoundary, VideoFrame>;

/// From the reader thread, which never waits, to the decoder, which does.
class VideoQueue {
 public:
  /// How much may wait. A phone that keeps to its unacknowledged frames stays far below it.
  struct Limits {
    std::size_t items;
    std::size_t bytes;
  };
  explicit VideoQueue(Limits limits) : limits_(limits) {}

  /// Returns false, and drops the item, if the queue is full or closed.
  bool push(VideoItem item);

  /// Waits for an item; false once the queue has been closed and emptied.
  bool pop(VideoItem* item);

  /// No more items come.
  void close();

  /// As close, and those that wait go. Returns how many of them are frames.
  std::size_t drop();

 private:
  const Limits limits_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<VideoItem> items_;
  std::size_t bytes_ = 0;  // in items_
  bool closed_ = false;
};

}  // namespace headunit
