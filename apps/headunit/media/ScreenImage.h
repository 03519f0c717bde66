#pragma once

#include "headunit/Screen.h"
#include "headunit/ScreenCamera.h"

namespace headunit {

/// The whole screen as one image: the picture in its place, without its margins, and the strip beside it.
/// Opaque. Any thread, any number at once.
Bitmap drawScreen(const ScreenLayout& layout, const Screen::Shown& shown, Size margins, TimePoint now);

/// Takes what the screen shows now.
class Screenshots : public ScreenCamera {
 public:
  explicit Screenshots(const Screen* screen) : screen_(screen) {}
  Size size() const override { return screen_->layout().size; }
  std::string png() const override;

 private:
  const Screen* const screen_;
};

}  // namespace headunit
