#include "headunit/TouchStrip.h"

#include <gmock/gmock.h>

#include <vector>

#include "headunit/LinkStats.h"
#include "phone/media/TestPicture.h"

namespace test {
namespace {

using headunit::microseconds;
using headunit::touchesSeenIn;
using testing::Optional;

struct HeadunitTouchStrip : testing::Test {
  std::vector<std::uint8_t> pixels;
  headunit::Picture picture;

  void draws(int width, int height, std::uint32_t touches) {
    const auto size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    pixels.assign(2 * size, 0);
    phone::TestFrame frame;
    frame.counter = 7;
    frame.touchSequence = touches;
    frame.touches = {{100, 100, 0}, {200, 100, 1}};
    const phone::YuvView view{
        width, height, {&pixels[0], &pixels[size], &pixels[size + size / 4]}, {width, width / 2, width / 2}};
    phone::TestPicturePainter(width, height).draw(frame, view);
    picture.width = width;
    picture.height = height;
    picture.planes[0] = {pixels.data(), width};
  }
};

TEST_F(HeadunitTouchStrip, IsReadAtEverySize) {
  draws(800, 480, 0xabcdef);
  EXPECT_THAT(touchesSeenIn(picture), Optional(0xabcdefU));
  draws(1280, 720, 33);
  EXPECT_THAT(touchesSeenIn(picture), Optional(33U));
  draws(1920, 1080, 0);
  EXPECT_THAT(touchesSeenIn(picture), Optional(0U));
}

TEST_F(HeadunitTouchStrip, IsNotBelievedWhereACellIsWrong) {
  draws(800, 480, 33);
  for (int y = 456; y < 472; ++y) {
    for (int x = 64 + 16 * 20; x < 64 + 16 * 21; ++x) pixels[static_cast<std::size_t>(y * 800 + x)] ^= 0xff;
  }
  EXPECT_EQ(touchesSeenIn(picture), std::nullopt);
}

TEST_F(HeadunitTouchStrip, IsNotFoundInAnotherPicture) {
  EXPECT_EQ(touchesSeenIn(picture), std::nullopt);
  draws(800, 480, 33);
  std::fill(pixels.begin(), pixels.end(), std::uint8_t{80});
  EXPECT_EQ(touchesSeenIn(picture), std::nullopt);
}

TEST(HeadunitTouchTimes, RunFromTheReportToTheFirstPictureThatShowsIt) {
  const headunit::TimePoint start{};
  headunit::LinkStats stats(start);
  EXPECT_FALSE(stats.awaitsTouches());
  stats.touched(start + microseconds(10));
  stats.touched(start + microseconds(20));
  EXPECT_TRUE(stats.awaitsTouches());
  stats.touchesSeen(0, start + microseconds(30));
  EXPECT_EQ(stats.touches().count, 0U);
  stats.touchesSeen(1, start + microseconds(50));
  EXPECT_EQ(stats.touches().longest, microseconds(40));
  stats.touchesSeen(2, start + microseconds(90));
  stats.touchesSeen(2, start + microseconds(500));
  EXPECT_EQ(stats.touches().count, 2U);
  EXPECT_EQ(stats.touches().longest, microseconds(70));
  EXPECT_FALSE(stats.awaitsTouches());
}

TEST(HeadunitTouchTimes, KeepNoMoreThanAPhoneCanBeExpectedToShow) {
  const headunit::TimePoint start{};
  headunit::LinkStats stats(start);
  for (int i = 0; i < 2000; ++i) stats.touched(start + microseconds(i));
  stats.touchesSeen(2000, start + microseconds(2000));
  EXPECT_EQ(stats.touches().count, 1024U);
}

}  // namespace
}  // namespace test
