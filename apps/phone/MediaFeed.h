#ifndef PHONE_MEDIAFEED_H
#define PHONE_MEDIAFEED_H

#include <optional>
#include <string>

#include "phone/Bytes.h"
#include "phone/Timers.h"

namespace phone {

/// One message's worth of a stream: a whole access unit, or a block of sound.
struct MediaUnit {
  Bytes data;
  Micros timestamp = 0;  ///< When it is to be shown or heard, on the stream's own clock.
  Micros due = 0;        ///< When it is to be sent, on the same clock; never falls from one unit to the next.
};

/// Where a stream comes from.
class MediaFeed {
 public:
  enum class Pull {
    unit,   ///< `unit` is filled.
    later,  ///< Nothing yet; MediaStream::resume() tells when to ask again.
    end     ///< Nothing more.
  };
  virtual ~MediaFeed() = default;
  /// Sent once before the first unit; empty if the codec needs none.
  virtual Bytes codecConfig() = 0;
  virtual Pull next(MediaUnit* unit) = 0;
  /// Why next() came to no end but broke off, as words for the user; empty if it did not.
  virtual std::string problem() const { return {}; }
  /// When the next unit is due, where that is known before it is made: a live one is then made no earlier.
  virtual std::optional<Micros> nextDue() const { return std::nullopt; }
  /// The unit that next() gave last has been handed to the link.
  virtual void onSent(const MediaUnit&) {}
};

}  // namespace phone

#endif
