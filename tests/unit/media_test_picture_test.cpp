#include "phone/media/TestPicture.h"

#include <gmock/gmock.h>

#include <cstring>

#include "media_files.h"
#include "phone/media/H264Encoder.h"

namespace test::media {
namespace {

using phone::AccessUnit;
using phone::FramePtr;
using phone::readCounter;
using phone::readCounterRgb;
using phone::readTouches;
using phone::TestFrame;
using phone::TestPicturePainter;
using phone::VideoOptions;
using testing::Optional;

constexpr std::uint32_t TELLING_VALUES[] = {
    0, 1, 2, 255, 256, 65535, 0x55555555, 0xaaaaaaaa, 0x80000000, 0x7fffffff, 0xffffffff, 123456789};

FramePtr drawn(const TestPicturePainter& painter, int width, int height, const TestFrame& picture) {
  FramePtr frame = phone::makeYuvFrame(width, height);
  painter.draw(picture, viewOf(*frame));
  return frame;
}

FramePtr drawn(const TestFrame& picture) {
  static const TestPicturePainter painter(800, 480);
  return drawn(painter, 800, 480, picture);
}

TestFrame numbered(std::uint32_t counter) {
  TestFrame picture;
  picture.counter = counter;
  picture.timeUs = counter * 33'333LL;
  return picture;
}

std::optional<std::uint32_t> counterIn(const AVFrame& frame) {
  return readCounter(frame.data[0], frame.width, frame.height, frame.linesize[0]);
}

std::vector<std::uint8_t> lumaOf(const AVFrame& frame) {
  std::vector<std::uint8_t> luma;
  for (int y = 0; y < frame.height; ++y) {
    const std::uint8_t* row = frame.data[0] + y * frame.linesize[0];
    luma.insert(luma.end(), row, row + frame.width);
  }
  return luma;
}

void expectReadableAfterEncoding(int width, int height) {
  SCOPED_TRACE(testing::Message() << width << "x" << height);
  VideoOptions options;
  options.width = width;
  options.height = height;
  std::string error;
  const auto encoder = phone::H264Encoder::create(options, &error);
  ASSERT_TRUE(encoder) << error;
  Viewer viewer(encoder->codecConfig());
  const TestPicturePainter painter(width, height);
  for (const std::uint32_t value : TELLING_VALUES) {
    const FramePtr frame = drawn(painter, width, height, numbered(value));
    AccessUnit unit;
    ASSERT_TRUE(encoder->encode(frame.get(), &unit));
    const AVFrame* decoded = viewer.show(unit);
    ASSERT_NE(decoded, nullptr);
    EXPECT_THAT(counterIn(*decoded), Optional(value));
    EXPECT_THAT(counterIn(*scaled(*decoded, width / 2, height / 2)), Optional(value)) << "at half the size";
    EXPECT_THAT(counterIn(*scaled(*decoded, width * 13 / 10, height * 13 / 10)), Optional(value)) << "at 1.3";
  }
}

TEST(PhoneTestPicture, CounterIsReadAfterEncodingDecodingAndScaling) {
  for (const auto& [width, height] : {std::pair{800, 480}, {1280, 720}, {640, 480}, {480, 800}, {482, 270}}) {
    expectReadableAfterEncoding(width, height);
  }
}

TEST(PhoneTestPicture, CounterIsReadAtTheLargestSize) { expectReadableAfterEncoding(1920, 1080); }

TEST(PhoneTestPicture, CounterIsReadFromRgb) {
  const FramePtr frame = drawn(numbered(0xdeadbeef));
  std::vector<std::uint8_t> rgb(800 * 480 * 3);
  std::uint8_t* const planes[] = {rgb.data()};
  const int strides[] = {800 * 3};
  const phone::ScalerPtr scaler(sws_getContext(800, 480, AV_PIX_FMT_YUV420P, 800, 480, AV_PIX_FMT_RGB24,
                                               SWS_BICUBIC, nullptr, nullptr, nullptr));
  sws_scale(scaler.get(), frame->data, frame->linesize, 0, 480, planes, strides);
  EXPECT_THAT(readCounterRgb(rgb.data(), 800, 480, 800 * 3), Optional(0xdeadbeef));
  const auto touches = phone::readTouchesRgb(rgb.data(), 800, 480, 800 * 3);
  ASSERT_TRUE(touches);
  EXPECT_EQ(touches->fingers, 0);
}

TEST(PhoneTestPicture, NothingIsReadWithoutAStrip) {
  const std::vector<std::uint8_t> grey(800 * 480, 128);
  EXPECT_EQ(readCounter(grey.data(), 800, 480, 800), std::nullopt);
  std::vector<std::uint8_t> noise(800 * 480);
  std::uint32_t state = 1;
  for (std::uint8_t& pixel : noise)
    pixel = static_cast<std::uint8_t>((state = state * 1664525 + 1013904223) >> 24);
  EXPECT_EQ(readCounter(noise.data(), 800, 480, 800), std::nullopt);
}

TEST(PhoneTestPicture, NothingIsReadFromAPictureTooSmallToHoldAStrip) {
  const std::vector<std::uint8_t> few(49 * 29, 0);
  EXPECT_EQ(readCounter(few.data(), 49, 29, 49), std::nullopt);
  EXPECT_EQ(readCounter(few.data(), 1, 1, 1), std::nullopt);
  EXPECT_EQ(readCounter(few.data(), 0, 0, 0), std::nullopt);
  EXPECT_EQ(readCounter(nullptr, 800, 480, 800), std::nullopt);
}

TEST(PhoneTestPicture, OneWrongCellIsNoticedWhereverItIs) {
  for (int cell = 0; cell < 44; ++cell) {
    const FramePtr frame = drawn(numbered(4242));
    for (int y = 436; y < 452; ++y) {
      for (int x = 0; x < 16; ++x) {
        std::uint8_t& pixel = frame->data[0][y * frame->linesize[0] + (4 + cell) * 16 + x];
        pixel = pixel > 128 ? 40 : 220;
      }
    }
    EXPECT_EQ(counterIn(*frame), std::nullopt) << "cell " << cell;
  }
}

TEST(PhoneTestPicture, ACellOfDoubtfulBrightnessIsNotGuessed) {
  const FramePtr frame = drawn(numbered(4242));
  for (int y = 436; y < 452; ++y) std::memset(frame->data[0] + y * frame->linesize[0] + 160, 130, 16);
  EXPECT_EQ(counterIn(*frame), std::nullopt);
}

// The picture as it looks when brightness differs `divisor` times less than it should.
FramePtr faded(const TestFrame& picture, int divisor) {
  FramePtr frame = drawn(picture);
  for (int i = 0; i < frame->linesize[0] * 480; ++i) {
    frame->data[0][i] = static_cast<std::uint8_t>(128 + (frame->data[0][i] - 128) / divisor);
  }
  return frame;
}

TEST(PhoneTestPicture, AFadedPictureIsReadAsLongAsItsCellsStandOut) {
  EXPECT_THAT(counterIn(*faded(numbered(4242), 3)), Optional(4242U));
  EXPECT_EQ(counterIn(*faded(numbered(4242), 8)), std::nullopt);
}

TEST(PhoneTestPicture, TheTouchRowIsNeverTakenForTheCounter) {
  const FramePtr frame = drawn(numbered(4242));
  const auto stride = static_cast<std::size_t>(frame->linesize[0]);
  std::memmove(frame->data[0] + 436 * stride, frame->data[0] + 456 * stride, 16 * stride);
  EXPECT_EQ(counterIn(*frame), std::nullopt);
  EXPECT_TRUE(readTouches(frame->data[0], 800, 480, frame->linesize[0]));
}

TEST(PhoneTestPicture, TheSameFrameGivesTheSamePicture) {
  const FramePtr one = drawn(numbered(77));
  const FramePtr other = phone::makeYuvFrame(800, 480);
  for (int plane = 0; plane < 3; ++plane) {
    std::memset(other->data[plane], 0xee,
                static_cast<std::size_t>(other->linesize[plane] * (plane ? 240 : 480)));
  }
  TestPicturePainter(800, 480).draw(numbered(77), viewOf(*other));
  for (int plane = 0; plane < 3; ++plane) {
    for (int y = 0; y < (plane ? 240 : 480); ++y) {
      ASSERT_EQ(std::memcmp(one->data[plane] + y * one->linesize[plane],
                            other->data[plane] + y * other->linesize[plane], plane ? 400 : 800),
                0)
          << "plane " << plane << ", row " << y;
    }
  }
}

TEST(PhoneTestPicture, MovesWithTimeAlone) {
  TestFrame now = numbered(5);
  TestFrame later = now;
  later.timeUs += 33'333;
  const std::vector<std::uint8_t> first = lumaOf(*drawn(now));
  const std::vector<std::uint8_t> second = lumaOf(*drawn(later));
  int changed = 0;
  for (std::size_t i = 0; i < first.size(); ++i) changed += first[i] != second[i] ? 1 : 0;
  EXPECT_GT(changed, 800 * 480 / 100) << "a still picture would hide a stream that stands still";
}

TEST(PhoneTestPicture, AFingerIsMarkedWhereItIs) {
  TestFrame picture = numbered(9);
  const std::vector<std::uint8_t> without = lumaOf(*drawn(picture));
  picture.touches = {{300, 240, 0}};
  const std::vector<std::uint8_t> with = lumaOf(*drawn(picture));
  int changedFarAway = 0;
  int darkOnRing = 0;
  for (int y = 0; y < 428; ++y) {
    for (int x = 0; x < 800; ++x) {
      const auto at = static_cast<std::size_t>(y * 800 + x);
      const int square = (x - 300) * (x - 300) + (y - 240) * (y - 240);
      changedFarAway += square > 46 * 46 && with[at] != without[at] ? 1 : 0;
      darkOnRing += square > 33 * 33 && square < 35 * 35 && with[at] < 150 ? 1 : 0;
    }
  }
  EXPECT_EQ(changedFarAway, 0);
  EXPECT_EQ(darkOnRing, 0);
}

TEST(PhoneTestPicture, TouchesAreReadBack) {
  TestFrame picture = numbered(1);
  picture.touchSequence = 0xabcdef;
  picture.touches = {{10, 10, 0}, {790, 470, 1}, {400, 475, 2}};
  const FramePtr frame = drawn(picture);
  const auto touches = readTouches(frame->data[0], 800, 480, frame->linesize[0]);
  ASSERT_TRUE(touches);
  EXPECT_EQ(touches->sequence, 0xabcdefU);
  EXPECT_EQ(touches->fingers, 3);
  EXPECT_THAT(counterIn(*frame), Optional(1U)) << "fingers on the strip hide nothing";
}

TEST(PhoneTestPicture, ALiftedFingerIsMarkedFaintlyAndNotCounted) {
  TestFrame picture = numbered(1);
  const std::vector<std::uint8_t> none = lumaOf(*drawn(picture));
  picture.touches = {{300, 240, 0}};
  const std::vector<std::uint8_t> down = lumaOf(*drawn(picture));
  picture.touches = {{300, 240, 0, true}};
  const FramePtr frame = drawn(picture);
  const std::vector<std::uint8_t> lifted = lumaOf(*frame);
  const std::size_t onTheRing = 240 * 800 + 300 + 34;
  EXPECT_GT(lifted[onTheRing], none[onTheRing]);
  EXPECT_LT(lifted[onTheRing], down[onTheRing]);
  EXPECT_EQ(readTouches(frame->data[0], 800, 480, frame->linesize[0])->fingers, 0);
}

TEST(PhoneTestPicture, AFingerAtTheEdgeIsMarkedUpToTheEdge) {
  TestFrame picture = numbered(1);
  picture.touches = {{300, 34, 0}, {34, 240, 1}};
  const std::vector<std::uint8_t> luma = lumaOf(*drawn(picture));
  EXPECT_GT(luma[300], 150);
  EXPECT_GT(luma[240 * 800], 150);
}

TEST(PhoneTestPicture, FingersBeyondThePictureAreCutOff) {
  TestFrame picture = numbered(1);
  picture.touches = {{-5000, -5000, 0}, {0, 0, 1}, {799, 479, 2}, {100000, 3, -7}, {3, 100000, 12345}};
  const FramePtr frame = drawn(picture);
  EXPECT_THAT(counterIn(*frame), Optional(1U));
}

}  // namespace
}  // namespace test::media
