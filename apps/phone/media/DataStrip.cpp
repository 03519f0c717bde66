#include "phone/media/DataStrip.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

namespace phone {
namespace {

constexpr int COLUMNS = 50;
constexpr int FIRST_COLUMN = 4;
constexpr int BITS = 32;
constexpr int CHECK_BITS = 8;
constexpr int CELLS = 2 + BITS + CHECK_BITS + 2;
constexpr int HEIGHT_UNITS = 120;  // rows are placed in 120ths of the picture's height
constexpr int ROW_UNITS = 4;
constexpr int STRIP_TOP = 107;

constexpr Colour LIGHT = colour(0xe8eef6);
constexpr Colour DARK = colour(0x1a222e);
constexpr int LEAST_CONTRAST = 40;

struct RowLayout {
  int top;
  std::uint8_t checkStart;
};

RowLayout layoutOf(StripRow row) {
  return row == StripRow::Counter ? RowLayout{109, 0x5a} : RowLayout{114, 0xc3};
}

std::uint8_t check(std::uint32_t value, std::uint8_t start) {
  unsigned int crc = start;
  for (int bit = BITS - 1; bit >= 0; --bit) {
    const unsigned int in = (value >> bit & 1) ^ (crc >> 7);
    crc = (crc << 1 & 0xff) ^ (in != 0 ? 0x07 : 0);
  }
  return static_cast<std::uint8_t>(crc);
}

using Cells = std::array<bool, CELLS>;

Cells cellsOf(StripRow row, std::uint32_t value) {
  const std::uint64_t bits = std::uint64_t{value} << CHECK_BITS | check(value, layoutOf(row).checkStart);
  Cells cells{};
  cells[1] = cells[CELLS - 2] = true;
  for (int i = 0; i < BITS + CHECK_BITS; ++i) {
    cells[static_cast<std::size_t>(2 + i)] = (bits >> (BITS + CHECK_BITS - 1 - i) & 1) != 0;
  }
  return cells;
}

// Drawn edges stand on even pixels, since two pixels share their colour.
void fill(const YuvView& picture, Box box, Colour colour) {
  for (int plane = 0; plane < 3; ++plane) {
    const int step = plane == 0 ? 1 : 2;
    const int value = plane == 0 ? colour.y : plane == 1 ? colour.u : colour.v;
    const auto width = static_cast<std::size_t>((box.right - box.left) / step);
    for (int y = box.top / step; y < box.bottom / step; ++y) {
      std::memset(picture.row(plane, y) + box.left / step, value, width);
    }
  }
}

int evenColumn(int column, int width) { return column * width / COLUMNS & ~1; }
int evenRow(int unit, int height) { return unit * height / HEIGHT_UNITS & ~1; }

// The middle half of a cell, where scaling and compression have not mixed in its neighbours.
int brightnessOfCell(const LumaView& picture, int cell, int top) {
  const int quarterX = 4 * (FIRST_COLUMN + cell);
  const int quarterY = 4 * top;
  const int left = (quarterX + 1) * picture.width / (4 * COLUMNS);
  const int right = std::max(left + 1, (quarterX + 3) * picture.width / (4 * COLUMNS));
  const int upper = (quarterY + ROW_UNITS) * picture.height / (4 * HEIGHT_UNITS);
  const int lower = std::max(upper + 1, (quarterY + 3 * ROW_UNITS) * picture.height / (4 * HEIGHT_UNITS));
  int sum = 0;
  for (int y = upper; y < lower; ++y) {
    for (int x = left; x < right; ++x) sum += picture.brightness(x, y);
  }
  return sum / ((right - left) * (lower - upper));
}

}  // namespace

int stripHeight(int pictureHeight) { return pictureHeight - evenRow(STRIP_TOP, pictureHeight); }

int stripRowMiddle(StripRow row, int pictureHeight) {
  return (2 * layoutOf(row).top + ROW_UNITS) * pictureHeight / (2 * HEIGHT_UNITS);
}

void drawStripRow(const YuvView& picture, StripRow row, std::uint32_t value) {
  const int top = evenRow(layoutOf(row).top, picture.height);
  const int bottom = evenRow(layoutOf(row).top + ROW_UNITS, picture.height);
  int column = FIRST_COLUMN;
  for (const bool light : cellsOf(row, value)) {
    const int left = evenColumn(column, picture.width);
    fill(picture, {left, top, evenColumn(++column, picture.width), bottom}, light ? LIGHT : DARK);
  }
}

int LumaView::brightness(int x, int y) const {
  const std::uint8_t* row = data + static_cast<std::ptrdiff_t>(y) * stride;
  if (!packedRgb) return row[x];
  const std::uint8_t* pixel = row + 3 * x;
  return (77 * pixel[0] + 150 * pixel[1] + 29 * pixel[2]) >> 8;
}

std::optional<std::uint32_t> readStripRow(const LumaView& picture, StripRow row) {
  if (picture.data == nullptr || picture.width < COLUMNS || picture.height < HEIGHT_UNITS / ROW_UNITS)
    return {};
  std::array<int, CELLS> found{};
  for (int i = 0; i < CELLS; ++i) {
    found[static_cast<std::size_t>(i)] = brightnessOfCell(picture, i, layoutOf(row).top);
  }
  const int light = (found[1] + found[CELLS - 2]) / 2;
  const int dark = (found[0] + found[CELLS - 1]) / 2;
  const int contrast = light - dark;
  if (contrast < LEAST_CONTRAST) return {};

  std::uint64_t bits = 0;
  for (const int brightness : found) {
    const int aboveMiddle = 2 * brightness - light - dark;
    if (std::abs(aboveMiddle) < contrast / 4) return {};
    bits = bits << 1 | (aboveMiddle > 0 ? 1 : 0);
  }
  const auto value = static_cast<std::uint32_t>(bits >> (CHECK_BITS + 2));
  std::uint64_t expected = 0;
  for (const bool cell : cellsOf(row, value)) expected = expected << 1 | (cell ? 1 : 0);
  if (bits != expected) return {};
  return value;
}

}  // namespace phone
