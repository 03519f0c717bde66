#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "headunit/PictureSlot.h"
#include "headunit/VideoFrame.h"

namespace headunit {

class LinkStats;

/// A decoded picture: luma at full size, two colour planes at half the width and height. Copies share the
/// pixels, which nobody changes any more.
struct Picture {
  struct Plane {
    const std::uint8_t* data = nullptr;
    int stride = 0;
  };

  int width = 0;
  int height = 0;
  std::array<Plane, 3> planes;
  bool fullRange = false;  ///< luma from 0 to 255 instead of 16 to 235
  bool bt709 = false;      ///< the colours of HD video instead of BT.601
  FrameTimes times;
  std::shared_ptr<const void> pixels;  ///< keeps the planes alive
  std::shared_ptr<LinkStats> stats;    ///< of the link that it came by
};

using PictureSlot = NewestWins<Picture>;

}  // namespace headunit
