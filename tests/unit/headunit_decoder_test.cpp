#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "headunit/media/FfmpegDecoder.h"
#include "media_files.h"
#include "phone/media/H264Encoder.h"
#include "phone/media/TestPicture.h"
#include "phone/media/VideoSource.h"

namespace headunit {
namespace {

/// What the phone draws, decoded.
class HeadunitDecoder : public testing::Test {
 protected:
  HeadunitDecoder() {
    phone::VideoOptions options;
    options.width = 320;
    options.height = 240;
    options.frames = 20;
    std::string error;
    source = phone::makeTestPicture(options, &error);
    EXPECT_TRUE(source) << error;
  }

  static VideoFrame frameOf(const std::vector<std::uint8_t>& bytes) {
    constexpr unsigned int PREFIX = 10;  // as in a media message
    VideoFrame frame;
    frame.buffer = ::shared_ptr<IoBuffer>(new IoBuffer(PREFIX + static_cast<unsigned int>(bytes.size())));
    frame.offset = PREFIX;
    frame.length = static_cast<unsigned int>(bytes.size());
    if (!bytes.empty()) std::memcpy(frame.data(), bytes.data(), bytes.size());
    return frame;
  }

  std::string decode(const std::vector<std::uint8_t>& bytes) {
    return decoder.decode(frameOf(bytes),
                          [this](Picture picture) { pictures.push_back(std::move(picture)); });
  }

  static std::optional<std::uint32_t> counterIn(const Picture& picture) {
    return phone::readCounter(picture.planes[0].data, picture.width, picture.height,
                              picture.planes[0].stride);
  }

  std::unique_ptr<phone::VideoSource> source;
  FfmpegDecoder decoder;
  std::vector<Picture> pictures;
};

TEST_F(HeadunitDecoder, GivesEachPictureOutAtOnce) {
  decoder.configure({source->codecConfig()});
  phone::AccessUnit unit;
  for (std::uint32_t i = 0; source->next(&unit); ++i) {
    EXPECT_EQ(decode(unit.data), "");
    ASSERT_EQ(pictures.size(), i + 1);
    EXPECT_EQ(pictures.back().width, 320);
    EXPECT_EQ(pictures.back().height, 240);
    EXPECT_EQ(counterIn(pictures.back()), i);
  }
  EXPECT_EQ(pictures.size(), 20U);
}

TEST_F(HeadunitDecoder, CarriesTheTimesOfTheFrameOverToItsPicture) {
  decoder.configure({source->codecConfig()});
  phone::AccessUnit unit;
  source->next(&unit);
  VideoFrame frame = frameOf(unit.data);
  frame.times.received = TimePoint(std::chrono::seconds(42));
  decoder.decode(std::move(frame), [this](Picture picture) { pictures.push_back(std::move(picture)); });
  ASSERT_EQ(pictures.size(), 1U);
  EXPECT_EQ(pictures[0].times.received, TimePoint(std::chrono::seconds(42)));
}

TEST_F(HeadunitDecoder, SaysThatBytesAreNoVideo) {
  EXPECT_NE(decode(std::vector<std::uint8_t>(500, 0x55)), "");
  EXPECT_NE(decode({}), "");
  EXPECT_TRUE(pictures.empty());
}

TEST_F(HeadunitDecoder, SaysThatParametersAreMissing) {
  phone::AccessUnit unit;
  source->next(&unit);
  EXPECT_NE(decode(unit.data), "");
}

TEST_F(HeadunitDecoder, SurvivesDamageOfEveryFrame) {
  decoder.configure({source->codecConfig()});
  phone::AccessUnit unit;
  while (source->next(&unit)) {
    for (std::size_t i = 40; i < unit.data.size(); i += 37) unit.data[i] ^= 0x5a;
    unit.data.resize(unit.data.size() * 2 / 3);
    decode(unit.data);  // what comes out is open; that it comes back at all is what counts
  }
  EXPECT_LE(pictures.size(), 20U);
}

TEST_F(HeadunitDecoder, MakesNoPicturesThatAreFarTooLarge) {
  phone::VideoOptions huge;
  huge.width = 4096;
  huge.height = 2320;
  std::string error;
  const auto encoder = phone::H264Encoder::create(huge, &error);
  ASSERT_TRUE(encoder) << error;
  decoder.configure({encoder->codecConfig()});
  const phone::FramePtr frame = phone::makeYuvFrame(huge.width, huge.height);
  for (int plane = 0; plane < 3; ++plane) {
    const int rows = plane == 0 ? huge.height : huge.height / 2;
    std::memset(frame->data[plane], 0x80, static_cast<std::size_t>(frame->linesize[plane] * rows));
  }
  phone::AccessUnit unit;
  ASSERT_TRUE(encoder->encode(frame.get(), &unit));
  EXPECT_NE(decode(unit.data), "");
  EXPECT_TRUE(pictures.empty());
}

TEST_F(HeadunitDecoder, StartsAnewWithOtherParameters) {
  decoder.configure({source->codecConfig()});
  phone::AccessUnit unit;
  source->next(&unit);
  decode(unit.data);
  phone::VideoOptions larger;
  larger.width = 640;
  larger.height = 480;
  std::string error;
  const auto other = phone::makeTestPicture(larger, &error);
  decoder.configure({other->codecConfig()});
  other->next(&unit);
  EXPECT_EQ(decode(unit.data), "");
  ASSERT_EQ(pictures.size(), 2U);
  EXPECT_EQ(pictures[1].width, 640);
  EXPECT_EQ(counterIn(pictures[0]), 0U) << "the first picture is still whole";
}

TEST_F(HeadunitDecoder, TellsAtTheEndOfDamageInThePictureThatWasHeldBack) {
  const test::media::TemporaryFolder folder;
  test::media::VideoRecipe recipe;
  recipe.bFrames = 2;
  recipe.settings = {{"x264-params", "b-adapt=0"}};
  test::media::writeNumberedVideo(folder / "a.mp4", recipe);
  std::string error;
  const auto file = phone::openVideoFile(folder / "a.mp4", {}, &error);
  ASSERT_TRUE(file) << error;
  std::vector<phone::AccessUnit> units = test::media::drain(file.get());
  const auto last = std::max_element(units.begin(), units.end(), [](const auto& one, const auto& other) {
    return one.timestampUs < other.timestampUs;
  });
  last->data.resize(last->data.size() / 2);
  decoder.configure({file->codecConfig()});
  for (const phone::AccessUnit& unit : units) EXPECT_EQ(decode(unit.data), "");
  const std::size_t before = pictures.size();
  const std::vector<std::string> faults =
      decoder.finish([this](Picture picture) { pictures.push_back(std::move(picture)); });
  ASSERT_GT(pictures.size(), before) << "the stream holds no picture back";
  EXPECT_THAT(faults, testing::ElementsAre("parts of a picture are missing"));
}

TEST_F(HeadunitDecoder, CanBeFinishedAndUsedAgain) {
  decoder.finish([](Picture) { FAIL() << "nothing has come yet"; });
  decoder.configure({source->codecConfig()});
  phone::AccessUnit unit;
  source->next(&unit);
  decode(unit.data);
  EXPECT_THAT(decoder.finish([](Picture) { FAIL() << "nothing was held back"; }), testing::IsEmpty());
  EXPECT_EQ(pictures.size(), 1U);
}

}  // namespace
}  // namespace headunit
