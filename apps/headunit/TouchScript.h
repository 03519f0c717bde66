#pragma once

#include <functional>
#include <optional>
#include <string>

#include "headunit/Controls.h"
#include "headunit/PacedThread.h"

namespace headunit {

/// A finger that taps one place again and again, for runs without a driver.
struct TouchScript {
  Point place;  ///< in the picture
  milliseconds every{0};
};

/// X,Y,EVERY_MS; nothing if it is not that.
std::optional<TouchScript> parseTouchScript(const std::string& text);

/// Plays the script: down at the beginning of each period, up in its middle. A place that the picture does
/// not have is not touched, which is logged once.
class TouchPlayer : public PacedTask {
 public:
  /// `pictureSize`: of the latest picture, empty before the first one; nothing is touched before that.
  TouchPlayer(TouchScript script, Controls* controls, std::function<Size()> pictureSize)
      : script_(script), controls_(controls), pictureSize_(std::move(pictureSize)) {}

  TimePoint act(TimePoint now) override;

 private:
  bool isInside(Size picture);

  const TouchScript script_;
  Controls* const controls_;
  const std::function<Size()> pictureSize_;
  bool down_ = false;
  bool complained_ = false;
};

}  // namespace headunit
