#pragma once

#include <WorkQueue.h>

#include <functional>

namespace headunit {

/// Where decoding of images and writing of files go, which would hold up a reader thread. Any thread.
class SlowWork {
 public:
  explicit SlowWork(int threads);
  ~SlowWork() { queue_.shutdown(); }
  SlowWork(const SlowWork&) = delete;
  SlowWork& operator=(const SlowWork&) = delete;

  /// Work that has not begun when this object goes is dropped.
  void post(std::function<void()> work);

 private:
  WorkQueue queue_;
};

}  // namespace headunit
