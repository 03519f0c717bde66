#include "phone/media/TestPictureSource.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

#include "media_files.h"
#include "phone/media/NalUnits.h"

namespace test::media {
namespace {

using phone::AccessUnit;
using phone::TestPictureSource;
using phone::TouchMark;
using phone::VideoOptions;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Optional;

VideoOptions small(std::int64_t frames) {
  VideoOptions options;
  options.width = 400;
  options.height = 240;
  options.frames = frames;
  return options;
}

std::unique_ptr<TestPictureSource> sourceOf(const VideoOptions& options) {
  std::string error;
  std::unique_ptr<TestPictureSource> source = phone::makeTestPictureSource(options, &error);
  EXPECT_TRUE(source) << error;
  return source;
}

std::vector<int> nalTypes(const std::vector<std::uint8_t>& bytes) {
  std::vector<int> types;
  for (const phone::NalUnit& unit : phone::splitAnnexB(bytes.data(), bytes.size()))
    types.push_back(unit.type());
  return types;
}

std::string complaintOf(const VideoOptions& options) {
  std::string error;
  EXPECT_EQ(phone::makeTestPicture(options, &error), nullptr);
  return error;
}

TEST(PhoneTestPictureSource, CountsItsFramesFromZeroAndEndsAfterAsManyAsWanted) {
  const auto source = sourceOf(small(20));
  Viewer viewer(source->codecConfig());
  AccessUnit unit;
  for (std::uint32_t i = 0; i < 20; ++i) {
    ASSERT_TRUE(source->next(&unit));
    EXPECT_EQ(viewer.counterOf(unit), i);
    EXPECT_EQ(unit.timestampUs, i * 1'000'000LL / 30);
    EXPECT_EQ(unit.dueUs, unit.timestampUs);
  }
  EXPECT_FALSE(source->next(&unit));
  EXPECT_FALSE(source->next(&unit));
}

TEST(PhoneTestPictureSource, HasTheWantedSize) {
  const auto source = sourceOf(small(1));
  EXPECT_EQ(source->width(), 400);
  EXPECT_EQ(source->height(), 240);
  Viewer viewer(source->codecConfig());
  const std::vector<AccessUnit> units = drain(source.get());
  const AVFrame* frame = viewer.show(units.at(0));
  ASSERT_NE(frame, nullptr);
  EXPECT_EQ(frame->width, 400);
  EXPECT_EQ(frame->height, 240);
}

TEST(PhoneTestPictureSource, CodecConfigIsTheParameterSetsAndNothingRepeatsThem) {
  const auto source = sourceOf(small(61));
  EXPECT_THAT(nalTypes(source->codecConfig()), ElementsAre(phone::NAL_SPS, phone::NAL_PPS));
  for (const AccessUnit& unit : drain(source.get())) {
    EXPECT_THAT(nalTypes(unit.data), testing::Not(testing::Contains(phone::NAL_SPS)));
  }
}

TEST(PhoneTestPictureSource, AKeyFrameComesFirstAndThenEveryTwoSeconds) {
  VideoOptions options = small(45);
  options.fps = 10;
  const auto source = sourceOf(options);
  std::vector<std::size_t> keyframes;
  const std::vector<AccessUnit> units = drain(source.get());
  for (std::size_t i = 0; i < units.size(); ++i) {
    EXPECT_EQ(units[i].keyframe,
              testing::Value(nalTypes(units[i].data), testing::Contains(phone::NAL_KEY_SLICE)));
    if (units[i].keyframe) keyframes.push_back(i);
  }
  EXPECT_THAT(keyframes, ElementsAre(0, 20, 40));
}

TEST(PhoneTestPictureSource, TheNextFrameShowsTheTouchesThatWereSet) {
  const auto source = sourceOf(small(0));
  Viewer viewer(source->codecConfig());
  const auto touchesShown = [&]() -> std::optional<phone::TouchEvidence> {
    AccessUnit unit;
    if (!source->next(&unit)) return {};
    const AVFrame* frame = viewer.show(unit);
    if (frame == nullptr) return {};
    return phone::readTouches(frame->data[0], frame->width, frame->height, frame->linesize[0]);
  };
  EXPECT_EQ(touchesShown()->sequence, 0U);
  EXPECT_EQ(source->shownTouchSequence(), 0U);
  EXPECT_EQ(source->setTouches({{100, 100, 0}, {200, 100, 1}}), 1U);
  EXPECT_EQ(source->shownTouchSequence(), 0U) << "no frame has shown them yet";
  for (int i = 0; i < 2; ++i) {
    const auto touches = touchesShown();
    ASSERT_TRUE(touches);
    EXPECT_EQ(touches->sequence, 1U);
    EXPECT_EQ(touches->fingers, 2);
    EXPECT_EQ(source->shownTouchSequence(), 1U);
  }
  EXPECT_EQ(source->setTouches({}), 2U);
  const auto lifted = touchesShown();
  ASSERT_TRUE(lifted);
  EXPECT_EQ(lifted->sequence, 2U);
  EXPECT_EQ(lifted->fingers, 0);
}

TEST(PhoneTestPictureSource, TouchesMayComeFromAnyThreadWhileFramesAreDrawn) {
  const auto source = sourceOf(small(30));
  constexpr std::uint32_t CALLS = 500;
  std::atomic<std::uint32_t> highest{0};
  const auto tap = [&] {
    for (std::uint32_t i = 0; i < CALLS; ++i) {
      const std::uint32_t sequence = source->setTouches({{static_cast<int>(i), 50, 0}});
      std::uint32_t seen = highest;
      while (seen < sequence && !highest.compare_exchange_weak(seen, sequence)) {
      }
    }
  };
  std::thread one(tap);
  std::thread two(tap);
  std::uint32_t before = 0;
  AccessUnit unit;
  while (source->next(&unit)) {
    EXPECT_GE(source->shownTouchSequence(), before);
    before = source->shownTouchSequence();
  }
  one.join();
  two.join();
  EXPECT_EQ(highest, 2 * CALLS) << "each call has a number of its own";
}

TEST(PhoneTestPictureSource, OptionsThatCannotBeAreRefusedInWords) {
  VideoOptions odd = small(1);
  odd.width = 401;
  EXPECT_THAT(complaintOf(odd), HasSubstr("401x240 cannot be encoded"));
  VideoOptions tiny = small(1);
  tiny.height = 2;
  EXPECT_THAT(complaintOf(tiny), HasSubstr("400x2 cannot be encoded"));
  VideoOptions slow = small(1);
  slow.fps = 0;
  EXPECT_THAT(complaintOf(slow), HasSubstr("0 frames a second"));
  VideoOptions fast = small(1);
  fast.fps = 100000;
  EXPECT_THAT(complaintOf(fast), HasSubstr("100000 frames a second"));
}

TEST(PhoneNalUnits, AreSplitAtStartCodesOfThreeAndFourBytes) {
  const std::vector<std::uint8_t> bytes{0, 0, 0, 1,    0x67, 1,    2,      // a parameter set
                                        0, 0, 1, 0x68, 0,    3,            // another, with a zero inside
                                        0, 0, 0, 0,    1,    0x65, 9, 0};  // padding before, and a last zero
  const std::vector<phone::NalUnit> units = phone::splitAnnexB(bytes.data(), bytes.size());
  ASSERT_EQ(units.size(), 3U);
  EXPECT_EQ(units[0].size, 3U);
  EXPECT_EQ(units[1].size, 3U);
  EXPECT_EQ(units[2].size, 2U);
  EXPECT_THAT(phone::parameterSets(bytes.data(), bytes.size()),
              ElementsAre(0, 0, 0, 1, 0x67, 1, 2, 0, 0, 0, 1, 0x68, 0, 3));
}

TEST(PhoneNalUnits, NoneAreFoundWhereThereIsNoStartCode) {
  const std::vector<std::uint8_t> bytes{0, 0, 2, 0x67, 0, 0};
  EXPECT_TRUE(phone::splitAnnexB(bytes.data(), bytes.size()).empty());
  EXPECT_TRUE(phone::splitAnnexB(nullptr, 0).empty());
  const std::vector<std::uint8_t> onlyCode{0, 0, 1};
  EXPECT_TRUE(phone::splitAnnexB(onlyCode.data(), onlyCode.size()).empty());
}

}  // namespace
}  // namespace test::media
