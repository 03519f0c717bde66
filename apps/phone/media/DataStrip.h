#pragma once

#include <cstdint>
#include <optional>

#include "phone/media/Canvas.h"

namespace phone {

/// Two rows of light and dark cells at the foot of the picture, for programs to read. The picture's width is
/// cut into 50 columns, so that the strip is found again at any scale; columns 4 to 47 of each row hold
///
///     dark light | 32 bits, the highest first | 8 bits check | light dark
///
/// A light cell is a 1. The check is a CRC-8 that starts from another value in each row, so that one row is
/// never taken for the other.
enum class StripRow { Counter, Touch };

/// The height in pixels, from the foot of the picture upwards, that the strip covers.
int stripHeight(int pictureHeight);

/// Draws one row; what lies around the cells is left alone.
void drawStripRow(const YuvView& picture, StripRow row, std::uint32_t value);

/// The middle of a row's cells, in pixels from the top of the picture, for the row's label.
int stripRowMiddle(StripRow row, int pictureHeight);

/// A picture as the reader sees it: brightness is 0 to 255 in any range, as long as it is the same all over.
struct LumaView {
  const std::uint8_t* data = nullptr;
  int width = 0;
  int height = 0;
  int stride = 0;          // in bytes
  bool packedRgb = false;  // three bytes a pixel in place of one

  int brightness(int x, int y) const;
};

/// Nothing if there is no such row, or if any of its cells is in doubt.
std::optional<std::uint32_t> readStripRow(const LumaView& picture, StripRow row);

}  // namespace phone
