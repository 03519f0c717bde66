#include "headunit/PacedThread.h"

#include <algorithm>

namespace headunit {

void PacedThread::start() {
  if (!due_.empty()) thread_ = std::thread([this] { run(); });
}

void PacedThread::stop() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  stopped_.notify_all();
  if (thread_.joinable()) thread_.join();
}

void PacedThread::run() {
  for (;;) {
    TimePoint next = TimePoint::max();
    for (Due& due : due_) {
      const TimePoint now = Clock::now();
      if (due.time <= now) due.time = due.task->act(now);
      next = std::min(next, due.time);
    }
    std::unique_lock lock(mutex_);
    const auto stopping = [this] { return stopping_; };
    if (next == TimePoint::max()) stopped_.wait(lock, stopping);
    if (stopped_.wait_until(lock, next, stopping)) return;
  }
}

}  // namespace headunit
