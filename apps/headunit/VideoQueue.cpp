#include "headunit/VideoQueue.h"

namespace headunit {

bool VideoQueue::push(VideoItem item) {
  {
    const std::lock_guard lock(mutex_);
    if (closed_ || items_.size() >= limit_) return false;
    items_.push_back(std::move(item));
  }
  changed_.notify_one();
  return true;
}

bool VideoQueue::pop(VideoItem* item) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return closed_ || !items_.empty(); });
  if (items_.empty()) return false;
  *item = std::move(items_.front());
  items_.pop_front();
  return true;
}

void VideoQueue::close() {
  {
    const std::lock_guard lock(mutex_);
    closed_ = true;
  }
  changed_.notify_all();
}

}  // namespace headunit
