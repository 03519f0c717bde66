#include "headunit/media/WindowInput.h"

#include <SDL.h>

#include "headunit/media/KeyMap.h"

namespace headunit {
namespace {

constexpr unsigned int MOUSE = 0;  // fingers count from 1

Point scaled(int x, int y, float scale) {
  return {static_cast<int>(static_cast<float>(x) * scale), static_cast<int>(static_cast<float>(y) * scale)};
}

// Touch devices number fingers as they like, and the phone wants small numbers.
unsigned int fingerId(SDL_FingerID id) { return 1 + static_cast<unsigned int>(id % 1000); }

unsigned int modifiersOf(Uint16 state) {
  return ((state & KMOD_SHIFT) != 0 ? MODIFIER_SHIFT : 0U) | ((state & KMOD_ALT) != 0 ? MODIFIER_ALT : 0U) |
         ((state & KMOD_CTRL) != 0 ? MODIFIER_CONTROL : 0U);
}

}  // namespace

void WindowInput::handle(const SDL_Event& event, const WindowView& view,
                         const std::vector<StripTarget>& targets) {
  switch (event.type) {
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
    case SDL_MOUSEMOTION: return onMouse(event, view, targets);
    case SDL_FINGERDOWN:
    case SDL_FINGERUP:
    case SDL_FINGERMOTION: return onFinger(event, view, targets);
    case SDL_KEYDOWN:
    case SDL_KEYUP: return onKey(event);
    case SDL_MOUSEWHEEL:
      if (event.wheel.y != 0) controls_->turn(event.wheel.y);
      return;
    default: return;
  }
}

void WindowInput::onMouse(const SDL_Event& event, const WindowView& view,
                          const std::vector<StripTarget>& targets) {
  const PictureView& picture = view.picture;
  if (event.type == SDL_MOUSEMOTION) {
    const bool mine = mouseDown_ && event.motion.which != SDL_TOUCH_MOUSEID && picture.area().width > 0;
    if (mine)
      controls_->touchMove(MOUSE, picture.toPicture(scaled(event.motion.x, event.motion.y, view.scale)),
                           picture.picture());
    return;
  }
  if (event.button.which == SDL_TOUCH_MOUSEID || event.button.button != SDL_BUTTON_LEFT) return;
  const Point place = scaled(event.button.x, event.button.y, view.scale);
  if (event.type == SDL_MOUSEBUTTONUP) {
    mouseDown_ = false;
    controls_->touchUp(MOUSE);
  } else if (picture.isInside(place)) {
    mouseDown_ = true;
    controls_->touchDown(MOUSE, picture.toPicture(place), picture.picture());
  } else {
    clickStrip(place, view, targets);
  }
}

void WindowInput::onFinger(const SDL_Event& event, const WindowView& view,
                           const std::vector<StripTarget>& targets) {
  const PictureView& picture = view.picture;
  const unsigned int id = fingerId(event.tfinger.fingerId);
  // Finger coordinates go from 0 to 1 over the window.
  const Point place{static_cast<int>(event.tfinger.x * static_cast<float>(view.layout.size.width)),
                    static_cast<int>(event.tfinger.y * static_cast<float>(view.layout.size.height))};
  if (event.type == SDL_FINGERUP) {
    controls_->touchUp(id);
  } else if (event.type == SDL_FINGERMOTION) {
    if (picture.area().width > 0) controls_->touchMove(id, picture.toPicture(place), picture.picture());
  } else if (picture.isInside(place)) {
    controls_->touchDown(id, picture.toPicture(place), picture.picture());
  } else {
    clickStrip(place, view, targets);
  }
}

void WindowInput::clickStrip(Point place, const WindowView& view, const std::vector<StripTarget>& targets) {
  const Rect strip = view.layout.strip;
  if (!contains(strip, place)) return;
  const Point inStrip{place.x - strip.x, place.y - strip.y};
  for (const StripTarget& target : targets) {
    if (contains(target.place, inStrip)) return press(target);
  }
}

// Before each key, for what it does may have changed since the one before, too.
void WindowInput::press(const StripTarget& target) {
  KeyMode expected = target.mode;
  for (const ClusterKey key : target.keys) {
    if (!(keyModeOf(cluster_->view(), Clock::now()) == expected)) return;
    clusterKeys_->press(key);
    expected.moveBy(key);
  }
}

void WindowInput::onKey(const SDL_Event& event) {
  const SDL_Keysym& key = event.key.keysym;
  const bool down = event.type == SDL_KEYDOWN;
  const bool isRepeated = down && event.key.repeat != 0;
  if (const std::optional<ClusterKey> own = clusterKeyOf(key.sym, (key.mod & KMOD_ALT) != 0)) {
    // A key that is held must not answer the question that comes up meanwhile.
    if (down && !isRepeated) clusterKeys_->press(*own);
    if (down) return;
  }
  const std::optional<unsigned int> code = keyCodeOf(key.sym);
  if (!code || isRepeated) return;
  const unsigned int modifiers = modifiersOf(key.mod);
  send(down ? keys_.press(*code, modifiers, Clock::now()) : keys_.release(*code, modifiers));
}

void WindowInput::tick(TimePoint now) { send(keys_.due(now)); }

void WindowInput::send(const std::vector<KeyAction>& actions) {
  for (const KeyAction& action : actions) controls_->key(action);
}

}  // namespace headunit
