#include "headunit/KeyHolder.h"

#include <algorithm>

namespace headunit {

std::vector<KeyAction> KeyHolder::press(unsigned int code, unsigned int modifiers, TimePoint now) {
  const bool isDown =
      std::any_of(held_.begin(), held_.end(), [code](const Held& held) { return held.code == code; });
  if (isDown) return {};
  held_.push_back({code, modifiers, now + LONG});
  return {{KeyAction::Kind::press, code, modifiers}};
}

std::vector<KeyAction> KeyHolder::release(unsigned int code, unsigned int modifiers) {
  const auto found =
      std::find_if(held_.begin(), held_.end(), [code](const Held& held) { return held.code == code; });
  if (found == held_.end()) return {};
  held_.erase(found);
  return {{KeyAction::Kind::release, code, modifiers}};
}

std::vector<KeyAction> KeyHolder::due(TimePoint now) {
  std::vector<KeyAction> actions;
  for (Held& held : held_) {
    if (held.longAt > now) continue;
    actions.push_back({KeyAction::Kind::longPress, held.code, held.modifiers});
    held.longAt = TimePoint::max();
  }
  return actions;
}

TimePoint KeyHolder::next() const {
  TimePoint next = TimePoint::max();
  for (const Held& held : held_) next = std::min(next, held.longAt);
  return next;
}

}  // namespace headunit
