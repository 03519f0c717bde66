#pragma once

#include <deque>
#include <mutex>
#include <string>
#include <vector>

namespace headunit {

/// The library's last log lines, of which the reason for a failure can be read. Any thread.
class RecentLines {
 public:
  void add(std::string line) {
    const std::lock_guard lock(mutex_);
    lines_.push_back(std::move(line));
    if (lines_.size() > KEPT) lines_.pop_front();
  }
  void clear() {
    const std::lock_guard lock(mutex_);
    lines_.clear();
  }
  std::vector<std::string> all() const {
    const std::lock_guard lock(mutex_);
    return {lines_.begin(), lines_.end()};
  }

 private:
  static constexpr std::size_t KEPT = 32;
  mutable std::mutex mutex_;
  std::deque<std::string> lines_;
};

}  // namespace headunit
