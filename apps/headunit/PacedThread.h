#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "headunit/Clock.h"

namespace headunit {

/// Something that happens at certain times. It knows no thread and no clock, so that a test can wind it.
class PacedTask {
 public:
  virtual ~PacedTask() = default;

  /// Does what is due at `now`, and tells when it wants to be called again; `TimePoint::max()` for never.
  virtual TimePoint act(TimePoint now) = 0;
};

/// Calls its tasks on one thread, each at its times, until it is stopped.
class PacedThread {
 public:
  ~PacedThread() { stop(); }

  /// Before `start`; the task outlives the thread.
  void add(PacedTask* task) { due_.push_back({task, TimePoint::min()}); }
  void start();
  /// Waits for a call that is under way.
  void stop();

 private:
  struct Due {
    PacedTask* task;
    TimePoint time;
  };
  void run();

  std::vector<Due> due_;
  std::mutex mutex_;
  std::condition_variable stopped_;
  bool stopping_ = false;
  std::thread thread_;
};

}  // namespace headunit
