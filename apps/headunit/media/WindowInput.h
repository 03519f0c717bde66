#pragma once

#include <vector>

#include "headunit/ClusterKeys.h"
#include "headunit/Controls.h"
#include "headunit/KeyHolder.h"
#include "headunit/Layout.h"
#include "headunit/strip/StripPainter.h"

union SDL_Event;

namespace headunit {

/// How the window is shared out now, in the renderer's pixels.
struct WindowView {
  PictureView picture;
  ScreenLayout layout;
  float scale = 1;  ///< renderer pixels to a pixel of mouse coordinates
};

/// Makes touches, keys and turns of the knob out of what the user does with mouse, touch screen and keyboard:
/// for the phone what is done to its picture, and for the strip what is done there. Main thread.
class WindowInput {
 public:
  /// `cluster`: what the strip shows.
  WindowInput(Controls* controls, ClusterKeys* clusterKeys, const Cluster* cluster)
      : controls_(controls), clusterKeys_(clusterKeys), cluster_(cluster) {}

  /// `targets`: of the strip, as it is drawn now.
  void handle(const SDL_Event& event, const WindowView& view, const std::vector<StripTarget>& targets = {});

  /// Reports the long presses that are due.
  void tick(TimePoint now);
  /// When the next one is due.
  TimePoint nextTick() const { return keys_.next(); }

 private:
  void onMouse(const SDL_Event& event, const WindowView& view, const std::vector<StripTarget>& targets);
  void onFinger(const SDL_Event& event, const WindowView& view, const std::vector<StripTarget>& targets);
  void onKey(const SDL_Event& event);
  void press(const StripTarget& target);
  void clickStrip(Point place, const WindowView& view, const std::vector<StripTarget>& targets);
  void send(const std::vector<KeyAction>& actions);

  Controls* const controls_;
  ClusterKeys* const clusterKeys_;
  const Cluster* const cluster_;
  KeyHolder keys_;
  bool mouseDown_ = false;
};

}  // namespace headunit
