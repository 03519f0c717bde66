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

void WindowInput::handle(const SDL_Event& event, const PictureView& view, float scale) {
  switch (event.type) {
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
    case SDL_MOUSEMOTION: return onMouse(event, view, scale);
    case SDL_FINGERDOWN:
    case SDL_FINGERUP:
    case SDL_FINGERMOTION: return onFinger(event, view);
    case SDL_KEYDOWN:
    case SDL_KEYUP: return onKey(event);
    case SDL_MOUSEWHEEL:
      if (event.wheel.y != 0) controls_->turn(event.wheel.y);
      return;
    default: return;
  }
}

void WindowInput::onMouse(const SDL_Event& event, const PictureView& view, float scale) {
  if (view.area().width == 0) return;
  if (event.type == SDL_MOUSEMOTION) {
    const bool mine = mouseDown_ && event.motion.which != SDL_TOUCH_MOUSEID;
    if (mine)
      controls_->touchMove(MOUSE, view.toPicture(scaled(event.motion.x, event.motion.y, scale)),
                           view.picture());
    return;
  }
  if (event.button.which == SDL_TOUCH_MOUSEID || event.button.button != SDL_BUTTON_LEFT) return;
  const Point place = scaled(event.button.x, event.button.y, scale);
  if (event.type == SDL_MOUSEBUTTONUP) {
    mouseDown_ = false;
    controls_->touchUp(MOUSE);
  } else if (view.isInside(place)) {
    mouseDown_ = true;
    controls_->touchDown(MOUSE, view.toPicture(place), view.picture());
  }
}

void WindowInput::onFinger(const SDL_Event& event, const PictureView& view) {
  if (view.area().width == 0) return;
  const unsigned int id = fingerId(event.tfinger.fingerId);
  // Finger coordinates go from 0 to 1 over the window; the picture stands in its middle.
  const Rect area = view.area();
  const auto width = static_cast<float>(area.width + 2 * area.x);
  const auto height = static_cast<float>(area.height + 2 * area.y);
  const Point place{static_cast<int>(event.tfinger.x * width), static_cast<int>(event.tfinger.y * height)};
  if (event.type == SDL_FINGERUP) {
    controls_->touchUp(id);
  } else if (event.type == SDL_FINGERMOTION) {
    controls_->touchMove(id, view.toPicture(place), view.picture());
  } else if (view.isInside(place)) {
    controls_->touchDown(id, view.toPicture(place), view.picture());
  }
}

void WindowInput::onKey(const SDL_Event& event) {
  const std::optional<unsigned int> code = keyCodeOf(event.key.keysym.sym);
  if (!code) return;
  const unsigned int modifiers = modifiersOf(event.key.keysym.mod);
  send(event.type == SDL_KEYDOWN ? keys_.press(*code, modifiers, Clock::now())
                                 : keys_.release(*code, modifiers));
}

void WindowInput::tick(TimePoint now) { send(keys_.due(now)); }

void WindowInput::send(const std::vector<KeyAction>& actions) {
  for (const KeyAction& action : actions) controls_->key(action);
}

}  // namespace headunit
