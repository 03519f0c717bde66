#pragma once

#include "headunit/Controls.h"
#include "headunit/KeyHolder.h"
#include "headunit/Layout.h"

union SDL_Event;

namespace headunit {

/// Makes touches, keys and turns of the knob out of what the user does with mouse, touch screen and keyboard.
/// Main thread.
class WindowInput {
 public:
  explicit WindowInput(Controls* controls) : controls_(controls) {}

  /// `view`: how the window shows the picture now, in the renderer's pixels. `scale`: renderer pixels to a
  /// pixel of mouse coordinates.
  void handle(const SDL_Event& event, const PictureView& view, float scale);

  /// Reports the long presses that are due.
  void tick(TimePoint now);
  /// When the next one is due.
  TimePoint nextTick() const { return keys_.next(); }

 private:
  void onMouse(const SDL_Event& event, const PictureView& view, float scale);
  void onFinger(const SDL_Event& event, const PictureView& view);
  void onKey(const SDL_Event& event);
  void send(const std::vector<KeyAction>& actions);

  Controls* const controls_;
  KeyHolder keys_;
  bool mouseDown_ = false;
};

}  // namespace headunit
