#include "headunit/strip/NoPhone.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace headunit {
namespace {

bool isInk(std::uint32_t pixel) { return (pixel & 0xFFFFFF) != 0; }

/// Rows and columns between which anything is drawn.
Rect inkOf(const Bitmap& bitmap) {
  Point first{bitmap.size.width, bitmap.size.height};
  Point last{-1, -1};
  for (int y = 0; y < bitmap.size.height; ++y) {
    for (int x = 0; x < bitmap.size.width; ++x) {
      if (!isInk(bitmap.pixels[static_cast<std::size_t>(y * bitmap.size.width + x)])) continue;
      first = {std::min(first.x, x), std::min(first.y, y)};
      last = {std::max(last.x, x), std::max(last.y, y)};
    }
  }
  return {first.x, first.y, last.x - first.x + 1, last.y - first.y + 1};
}

TEST(HeadunitNoPhone, StandsInTheMiddleOfAnySize) {
  for (const Size size : {Size{1280, 720}, {800, 480}, {300, 900}, {1920, 200}}) {
    const Bitmap bitmap = drawNoPhone("on 127.0.0.1:7411", size);
    const Rect ink = inkOf(bitmap);
    EXPECT_GT(ink.width, size.width / 20) << size.width;
    EXPECT_NEAR(ink.x + ink.width / 2.0, size.width / 2.0, size.width / 50.0) << size.width;
    EXPECT_NEAR(ink.y + ink.height / 2.0, size.height / 2.0, size.height / 20.0) << size.width;
    for (const std::uint32_t pixel : bitmap.pixels) ASSERT_EQ(pixel >> 24, 0xFFU);
  }
}

TEST(HeadunitNoPhone, TellsWhereAPhoneIsExpected) {
  constexpr Size SIZE{800, 480};
  const Bitmap none = drawNoPhone("", SIZE);
  const Bitmap one = drawNoPhone("on 127.0.0.1:7411", SIZE);
  EXPECT_NE(none.pixels, one.pixels);
  EXPECT_NE(one.pixels, drawNoPhone("on 127.0.0.1:7412", SIZE).pixels);
}

TEST(HeadunitNoPhone, StaysInsideHoweverLongThePlaceIs) {
  constexpr Size SIZE{800, 480};
  const Rect ink = inkOf(drawNoPhone("on " + std::string(10'000, 'W'), SIZE));
  EXPECT_GT(ink.x, 0);
  EXPECT_LT(ink.x + ink.width, SIZE.width);
}

TEST(HeadunitNoPhone, DrawsNothingWhereThereIsNoRoom) {
  for (const Size size : {Size{0, 0}, {0, 480}, {800, 0}, {-3, 10}, {1'000'000, 10}})
    EXPECT_TRUE(drawNoPhone("", size).pixels.empty());
  EXPECT_EQ(drawNoPhone("", {1, 1}).pixels.size(), 1U);
}

}  // namespace
}  // namespace headunit
