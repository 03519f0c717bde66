#ifndef PHONE_TIMERS_H
#define PHONE_TIMERS_H

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <utility>

namespace phone {

using Micros = std::int64_t;  ///< On a clock that never goes back; its zero means nothing.

/// Calls to be made later. Nothing happens by itself: the event loop, or a test, says what time it is.
class Timers {
 public:
  using Id = std::pair<Micros, std::uint64_t>;

  /// With a `clock`, now() reads it, which measures more finely than advance() is called; without one the
  /// time stands still in between.
  explicit Timers(Micros (*clock)() = nullptr) : clock_(clock) {}

  Micros now() const { return clock_ != nullptr ? clock_() : now_; }

  Id at(Micros due, std::function<void()> call);
  Id after(Micros delay, std::function<void()> call) { return at(now() + delay, std::move(call)); }
  /// Harmless on a call that has been made already.
  void cancel(Id id) { calls_.erase(id); }

  /// Makes the calls that are due at `now`, earliest first. A call may add and cancel others; what it
  /// adds for now or earlier is made at the next advance.
  void advance(Micros now);
  /// When the next call is due; empty if none is.
  std::optional<Micros> next() const;

 private:
  Micros (*clock_)();
  Micros now_ = 0;
  std::uint64_t count_ = 0;
  std::map<Id, std::function<void()>> calls_;
};

}  // namespace phone

#endif
