#include "headunit/strip/NoPhone.h"

#include <algorithm>

#include "headunit/strip/Brush.h"

namespace headunit {
namespace {

using namespace strip;

// The drawing's own units: at least as many are there of each.
constexpr double LEAST_WIDTH = 640;
constexpr double LEAST_HEIGHT = 360;
constexpr int LARGEST = 16384;
constexpr std::uint32_t OPAQUE = 0xFF000000;

constexpr double LINE = 44;
constexpr double MARGIN = 20;

}  // namespace

Bitmap drawNoPhone(const std::string& place, Size size) {
  Bitmap bitmap;
  if (size.width <= 0 || size.height <= 0 || size.width > LARGEST || size.height > LARGEST) return bitmap;
  bitmap.size = size;
  const auto pixels = static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
  bitmap.pixels.assign(pixels, OPAQUE);
  const double scale = std::min(size.width / LEAST_WIDTH, size.height / LEAST_HEIGHT);
  Brush brush(&bitmap, scale);
  Box lines{MARGIN, size.height / scale / 2 - LINE, size.width / scale - 2 * MARGIN, 2 * LINE};
  brush.text("No phone is connected", lines.takeTop(LINE), DISPLAY, Align::middle);
  brush.text(place.empty() ? "Waiting for one" : "Waiting for one " + place, lines, {18, SOFT_INK},
             Align::middle);
  return bitmap;
}

}  // namespace headunit
