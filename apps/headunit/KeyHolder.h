#pragma once

#include <vector>

#include "headunit/Clock.h"

namespace headunit {

/// One thing that a key does.
struct KeyAction {
  enum class Kind { press, release, longPress };
  Kind kind = Kind::press;
  unsigned int code = 0;
  unsigned int modifiers = 0;
};

/// Bits of KeyAction::modifiers.
enum : unsigned int { MODIFIER_SHIFT = 1, MODIFIER_ALT = 2, MODIFIER_CONTROL = 4 };

/// Finds out which of the keys that are held down have become a long press.
class KeyHolder {
 public:
  static constexpr milliseconds LONG{600};

  /// Nothing if the key is down already: keyboards repeat.
  std::vector<KeyAction> press(unsigned int code, unsigned int modifiers, TimePoint now);
  /// Nothing if the key is not down.
  std::vector<KeyAction> release(unsigned int code, unsigned int modifiers);
  /// The long presses that are due, one for each time that a key is held.
  std::vector<KeyAction> due(TimePoint now);
  /// When `due` has something to give; `TimePoint::max()` if no key is held.
  TimePoint next() const;

 private:
  struct Held {
    unsigned int code;
    unsigned int modifiers;
    TimePoint longAt;  // TimePoint::max(): it has been told
  };
  std::vector<Held> held_;
};

}  // namespace headunit
