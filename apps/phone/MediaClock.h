#ifndef PHONE_MEDIACLOCK_H
#define PHONE_MEDIACLOCK_H

#include <optional>

#include "phone/Timers.h"

namespace phone {

/// The clock on which the streams of a link are played together, so that sound stays with its picture. It
/// runs from the first unit of any of them.
class MediaClock {
 public:
  bool runs() const { return zero_.has_value(); }
  /// When it will be `time` on this clock, told on the timers' clock. Only while it runs.
  Micros at(Micros time) const { return *zero_ + time; }
  /// Makes it `time` at `now`; all streams move along.
  void set(Micros time, Micros now) { zero_ = now - time; }

 private:
  std::optional<Micros> zero_;
};

}  // namespace phone

#endif
