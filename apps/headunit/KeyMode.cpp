#include "headunit/KeyMode.h"

#include <tuple>

#include "headunit/Calls.h"

namespace headunit {

void KeyMode::moveBy(ClusterKey key) {
  if (!hasList) return;
  if (key == ClusterKey::up) --selected;
  if (key == ClusterKey::down) ++selected;
}

bool operator==(const KeyMode& one, const KeyMode& other) {
  const auto all = [](const KeyMode& mode) {
    return std::tie(mode.pairing, mode.rings, mode.hasNotice, mode.hasList, mode.path, mode.start,
                    mode.selected);
  };
  return all(one) == all(other);
}

KeyMode keyModeOf(const ClusterView& view, TimePoint now) {
  KeyMode mode;
  if (view.pairing) {
    mode.pairing = "by " + view.pairing->phoneAddress;  // an address may be empty
    return mode;
  }
  mode.rings = rings(view.phone);
  mode.hasNotice = view.notice && view.notice->until > now;
  mode.hasList = view.browser.open;
  if (!mode.hasList) return mode;
  mode.path = view.browser.path;
  mode.start = view.browser.start;
  mode.selected = view.browser.selected;
  return mode;
}

}  // namespace headunit
