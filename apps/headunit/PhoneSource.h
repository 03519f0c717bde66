#pragma once

#include <memory>
#include <string>

#include "headunit/Patience.h"
#include "headunit/Tcp.h"

namespace headunit {

/// Where the connections to phones come from.
class PhoneSource {
 public:
  virtual ~PhoneSource() = default;

  /// Where the next one is expected: "on HOST:PORT", where it has to connect to, or "at HOST:PORT", where it
  /// has to be.
  virtual std::string place() const = 0;

  /// Waits for the next phone. Empty if the patience is over, or if there is no phone to be had, which has
  /// been logged.
  virtual FileDescriptor next() = 0;

  /// While a phone is served: closes the connections of others that have come meanwhile and waited for two
  /// seconds, in which the phone that is served may turn out to have gone, and be the same that calls again.
  /// Without that they would wait, connected and unanswered, until they have gone away. Returns a descriptor
  /// that can be read when more come, or -1: nobody comes by himself, or this is to be called again without
  /// waiting for it.
  virtual int turnOthersAway() { return -1; }
};

/// Phones that connect to `address`. Null if nobody can listen there, which has been logged. `patience`
/// outlives what is returned, here and below.
std::unique_ptr<PhoneSource> phonesThatCall(const Address& address, Patience* patience);

/// The phone at `address`. It may be about to start, so it is called again for a while, unless there is no
/// such host; once it was there, for ever.
std::unique_ptr<PhoneSource> phoneToCall(const Address& address, Patience* patience);

}  // namespace headunit
