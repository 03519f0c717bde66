#pragma once

#include <functional>
#include <mutex>

namespace headunit {

/// Wakes a loop that sleeps on a queue of its own, once for any number of changes, and never after it has
/// gone.
class Waker {
 public:
  /// `push` puts the waking into the loop's queue, and returns whether it did.
  explicit Waker(std::function<bool()> push) : push_(std::move(push)) {}

  /// Any thread: something has changed.
  void wake() {
    const std::lock_guard lock(mutex_);
    if (!isGone_ && !isWaking_) isWaking_ = push_();
  }

  /// The loop, before it looks at what has changed: whatever changes from now on wakes it again.
  void heard() {
    const std::lock_guard lock(mutex_);
    isWaking_ = false;
  }

  /// The loop goes. Waits for a push that is on its way; there is none later.
  void close() {
    const std::lock_guard lock(mutex_);
    isGone_ = true;
  }

 private:
  const std::function<bool()> push_;
  std::mutex mutex_;
  bool isWaking_ = false;
  bool isGone_ = false;
};

}  // namespace headunit
