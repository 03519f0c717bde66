#pragma once

#include <cstddef>
#include <cstdint>

namespace phone {

/// A YUV 4:2:0 picture that somebody else owns: three planes and the bytes from one row to the next of each.
/// Luma and chroma are in the limited range (16 to 235, 16 to 240) that video uses.
struct YuvView {
  int width = 0;   // even
  int height = 0;  // even
  std::uint8_t* planes[3] = {};
  int strides[3] = {};

  std::uint8_t* row(int plane, int y) const {
    return planes[plane] + static_cast<std::ptrdiff_t>(y) * strides[plane];
  }
};

}  // namespace phone
