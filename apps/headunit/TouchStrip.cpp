#include "headunit/TouchStrip.h"

#include <algorithm>
#include <cstdlib>

namespace headunit {
namespace {

// The lower of two rows of light and dark cells at the foot of the picture. Its width is cut into 50 columns
// and its height into 120 units; from the fifth column on there stand
//
//     dark light | 24 bits touches | 8 bits fingers | 8 bits check | light dark
//
// each the highest bit first. A light cell is a 1.
constexpr int COLUMNS = 50;
constexpr int FIRST_COLUMN = 4;
constexpr int UNITS = 120;
constexpr int TOP = 114;
constexpr int HEIGHT = 4;
constexpr int BITS = 40;
constexpr unsigned int CHECK_START = 0xc3;
constexpr int LEAST_CONTRAST = 40;

// Of the middle half of a cell, where scaling and compression have not mixed in its neighbours.
int brightness(const Picture& picture, int cell) {
  const int column = FIRST_COLUMN + cell;
  const int left = (4 * column + 1) * picture.width / (4 * COLUMNS);
  const int right = std::max(left + 1, (4 * column + 3) * picture.width / (4 * COLUMNS));
  const int top = (4 * TOP + HEIGHT) * picture.height / (4 * UNITS);
  const int bottom = std::max(top + 1, (4 * TOP + 3 * HEIGHT) * picture.height / (4 * UNITS));
  const Picture::Plane& luma = picture.planes[0];
  int sum = 0;
  for (int y = top; y < bottom; ++y) {
    for (int x = left; x < right; ++x) sum += luma.data[static_cast<std::ptrdiff_t>(y) * luma.stride + x];
  }
  return sum / ((right - left) * (bottom - top));
}

// CRC-8 of the 32 bits.
unsigned int checkOf(std::uint32_t value) {
  unsigned int crc = CHECK_START;
  for (int bit = 31; bit >= 0; --bit) {
    const bool carry = ((value >> bit & 1U) ^ (crc >> 7 & 1U)) != 0;
    crc = (crc << 1 & 0xffU) ^ (carry ? 0x07U : 0U);
  }
  return crc;
}

}  // namespace

std::optional<std::uint32_t> touchesSeenIn(const Picture& picture) {
  if (picture.planes[0].data == nullptr || picture.width < COLUMNS || picture.height < UNITS) return {};
  const int dark = (brightness(picture, 0) + brightness(picture, BITS + 3)) / 2;
  const int light = (brightness(picture, 1) + brightness(picture, BITS + 2)) / 2;
  const int contrast = light - dark;
  if (contrast < LEAST_CONTRAST) return {};
  std::uint64_t bits = 0;
  for (int i = 0; i < BITS; ++i) {
    const int aboveMiddle = 2 * brightness(picture, 2 + i) - light - dark;
    if (std::abs(aboveMiddle) < contrast / 4) return {};
    bits = bits << 1 | (aboveMiddle > 0 ? 1U : 0U);
  }
  const auto value = static_cast<std::uint32_t>(bits >> 8);
  if ((bits & 0xffU) != checkOf(value)) return {};
  return value >> 8;
}

}  // namespace headunit
