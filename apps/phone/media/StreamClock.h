#pragma once

#include <cstdint>

#include "phone/media/Ffmpeg.h"

namespace phone {

/// Turns the times that a file's packets or pictures carry into microseconds since the source's start: 0 for
/// the first, never falling, and going on where the file is read again from its beginning.
class StreamClock {
 public:
  /// `rate` spaces what carries no times; `mayJump` tells that the container's times can leap (a recorded
  /// broadcast), which is smoothed over so that nobody waits hours for the next picture.
  StreamClock(AVRational rate, bool mayJump);

  /// The time of the next packet or picture, which carries `time` (AV_NOPTS_VALUE if none) and lasts
  /// `duration` (0 if unknown), both in units of `base`.
  std::int64_t stamp(std::int64_t time, std::int64_t duration, AVRational base);

  /// Another time that the one just stamped carries, on the same scale.
  std::int64_t convert(std::int64_t time, AVRational base) const;

  /// The next one stamped is a file's first again, and starts where the last one ends; a pass through a file
  /// lasts 10 ms at least, so that a file of next to nothing is not read a thousand times for one picture.
  void startAgain();

  /// When the last one stamped ends.
  std::int64_t endUs() const { return endUs_; }

 private:
  std::int64_t intervalUs_;
  bool mayJump_;
  std::int64_t passStartUs_ = 0;
  std::int64_t originUs_ = 0;  // the file's own time at the source's start
  std::int64_t nowUs_ = 0;
  std::int64_t endUs_ = 0;
  bool atStart_ = true;
};

}  // namespace phone
