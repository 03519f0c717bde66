#include "headunit/VideoQueue.h"

#include <algorithm>

namespace headunit {
namespace {

std::size_t bytesOf(const VideoItem& item) {
  if (const auto* const config = std::get_if<CodecConfig>(&item)) return config->bytes.size();
  const auto* const frame = std::get_if<VideoFrame>(&item);
  return frame != nullptr ? frame->length : 0;
}

}  // namespace

bool VideoQueue::push(VideoItem item) {
  {
    const std::lock_guard lock(mutex_);
    const std::size_t bytes = bytesOf(item);
    if (closed_ || items_.size() >= limits_.items || bytes > limits_.bytes - bytes_) return false;
    bytes_ += bytes;
    items_.push_back(std::move(item));
  }
  changed_.notify_one();
  return true;
}

bool VideoQueue::pop(VideoItem* item) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return closed_ || !items_.empty(); });
  if (items_.empty()) return false;
  bytes_ -= bytesOf(items_.front());
  *item = std::move(items_.front());
  items_.pop_front();
  return true;
}

std::size_t VideoQueue::drop() {
  std::deque<VideoItem> dropped;
  {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    bytes_ = 0;
    dropped.swap(items_);
  }
  changed_.notify_all();
  return static_cast<std::size_t>(std::count_if(dropped.begin(), dropped.end(), [](const VideoItem& item) {
    return std::holds_alternative<VideoFrame>(item);
  }));
}

void VideoQueue::close() {
  {
    const std::lock_guard lock(mutex_);
    closed_ = true;
  }
  changed_.notify_all();
}

}  // namespace headunit
