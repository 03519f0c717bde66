#pragma once

#include <atomic>
#include <optional>

#include "headunit/Clock.h"
#include "headunit/FileDescriptor.h"

namespace headunit {

/// What a server waits with: until something happens, until a time, or until the program is to end.
class Patience {
 public:
  /// `signals`: a signalfd, or any descriptor that becomes readable when the program is to end.
  explicit Patience(int signals) : signals_(signals) {}
  virtual ~Patience() = default;
  Patience(const Patience&) = delete;
  Patience& operator=(const Patience&) = delete;

  /// Any thread: it is over, and so is every wait.
  void end();
  bool isOver() const { return over_; }

  /// Raised by whoever has something to tell: ends a wait, this one or the next.
  WakeEvent* wake() { return &wake_; }
  /// Lowers `wake`, and returns whether it is not over yet: before each look at what is waited for, so that
  /// nothing told after the look is lost.
  bool lasts() {
    wake_.clear();
    return !over_;
  }

  virtual TimePoint now() const { return Clock::now(); }
  /// Until `deadline` at the latest, if there is one, and until `descriptor` can be read, if it is one.
  virtual void waitUntil(std::optional<TimePoint> deadline, int descriptor = -1);

 private:
  const int signals_;
  WakeEvent wake_;
  std::atomic<bool> over_{false};
};

}  // namespace headunit
