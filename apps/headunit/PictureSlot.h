#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <utility>

namespace headunit {

/// Hands over one thing at a time, and the newest wins: what has not been taken when the next one comes is
/// dropped and counted. Neither side ever waits for the other to be done.
template <class T>
class NewestWins {
 public:
  /// Before use: called after each change, on the thread that made it.
  void whenChanged(std::function<void()> call) { whenChanged_ = std::move(call); }

  /// Returns whether an older one had to give way.
  bool put(T thing) {
    bool replaced = false;
    {
      const std::lock_guard lock(mutex_);
      replaced = waiting_.has_value();
      dropped_ += replaced ? 1 : 0;
      waiting_ = std::move(thing);
    }
    changed_.notify_all();
    whenChanged_();
    return replaced;
  }

  /// What waits, if anything does.
  std::optional<T> take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(waiting_, std::nullopt);
  }

  /// Waits for something to come; nothing once the slot has been closed and emptied.
  std::optional<T> wait() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return closed_ || waiting_.has_value(); });
    return std::exchange(waiting_, std::nullopt);
  }

  /// Ends every wait, now and later. What still comes can be taken.
  void close() {
    {
      const std::lock_guard lock(mutex_);
      closed_ = true;
    }
    changed_.notify_all();
    whenChanged_();
  }

  bool isClosed() const {
    const std::lock_guard lock(mutex_);
    return closed_;
  }

  std::uint64_t dropped() const {
    const std::lock_guard lock(mutex_);
    return dropped_;
  }

 private:
  std::function<void()> whenChanged_ = [] {};
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::optional<T> waiting_;
  std::uint64_t dropped_ = 0;
  bool closed_ = false;
};

}  // namespace headunit
