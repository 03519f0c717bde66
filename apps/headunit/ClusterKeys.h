#pragma once

#include <mutex>

namespace headunit {

/// What the user does with the cluster's keys.
enum class ClusterKey { up, down, left, right, enter, back, call, browser, radio };

/// Whoever acts on the cluster's keys: the services of the link that is up. One call at a time.
class ClusterKeyListener {
 public:
  virtual ~ClusterKeyListener() = default;
  virtual void clusterKey(ClusterKey key) = 0;
};

/// The keys beside the strip, for whichever phone is there. Any thread.
class ClusterKeys {
 public:
  /// `listener` must stay until detach, which waits for a call that is on its way.
  void attach(ClusterKeyListener* listener) {
    const std::lock_guard lock(mutex_);
    listener_ = listener;
  }
  void detach() { attach(nullptr); }

  void press(ClusterKey key) {
    const std::lock_guard lock(mutex_);
    if (listener_ != nullptr) listener_->clusterKey(key);
  }

 private:
  std::mutex mutex_;
  ClusterKeyListener* listener_ = nullptr;
};

}  // namespace headunit
