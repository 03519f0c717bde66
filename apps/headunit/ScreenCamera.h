#pragma once

#include <string>

#include "headunit/Layout.h"

namespace headunit {

/// Looks at the screen for somebody who is not in the car. Any thread.
class ScreenCamera {
 public:
  virtual ~ScreenCamera() = default;
  virtual Size size() const = 0;
  /// The bytes of a PNG file of that size. Takes its time.
  virtual std::string png() const = 0;
};

}  // namespace headunit
