#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "headunit/Layout.h"

namespace headunit {

/// A drawing: one native-endian 0xAARRGGBB a pixel, colours multiplied by alpha, row after row without gaps.
struct Bitmap {
  Size size;
  std::vector<std::uint32_t> pixels;
};

/// Shared between threads, and therefore never changed any more.
using Image = std::shared_ptr<const Bitmap>;

}  // namespace headunit
