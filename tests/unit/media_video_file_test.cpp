#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

#include "media_files.h"
#include "phone/media/Demuxer.h"
#include "phone/media/NalUnits.h"
#include "phone/media/Png.h"
#include "phone/media/VideoSource.h"

namespace test::media {
namespace {

using phone::AccessUnit;
using phone::VideoOptions;
using phone::VideoSource;
using testing::AllOf;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::EndsWith;
using testing::HasSubstr;
using Bytes = std::vector<std::uint8_t>;

struct VideoFile : testing::Test {
  TemporaryFolder folder;

  std::string numbered(const std::string& name, const VideoRecipe& recipe) {
    writeNumberedVideo(folder / name, recipe);
    return folder / name;
  }

  static std::unique_ptr<VideoSource> open(const std::string& path, const VideoOptions& options = {}) {
    std::string error;
    std::unique_ptr<VideoSource> source = phone::openVideoFile(path, options, &error);
    EXPECT_TRUE(source) << error;
    return source;
  }

  static std::string complaint(const std::string& path) {
    std::string error;
    EXPECT_EQ(phone::openVideoFile(path, {}, &error), nullptr);
    EXPECT_THAT(error, AllOf(HasSubstr("'" + path + "'"), EndsWith(".")));
    return error;
  }
};

/// Passing H.264 through.
struct PhonePassthrough : VideoFile {
  // The NAL units as they stand in the file's packets: of the length-prefixed kind in MP4, Annex B elsewhere.
  static std::vector<Bytes> nalUnitsOf(const AVPacket& packet, bool lengthPrefixed) {
    std::vector<Bytes> units;
    const std::uint8_t* at = packet.data;
    const std::uint8_t* end = at + packet.size;
    while (lengthPrefixed && at + 4 <= end) {
      const int size = at[0] << 24 | at[1] << 16 | at[2] << 8 | at[3];
      units.emplace_back(at + 4, at + 4 + size);
      at += 4 + size;
    }
    if (!lengthPrefixed) {
      for (const phone::NalUnit& unit :
           phone::splitAnnexB(packet.data, static_cast<std::size_t>(packet.size))) {
        units.emplace_back(unit.data, unit.data + unit.size);
      }
    }
    return units;
  }

  static std::vector<Bytes> withoutParameterSets(const Bytes& annexB) {
    std::vector<Bytes> units;
    for (const phone::NalUnit& unit : phone::splitAnnexB(annexB.data(), annexB.size())) {
      if (unit.type() == phone::NAL_SPS || unit.type() == phone::NAL_PPS) continue;
      units.emplace_back(unit.data, unit.data + unit.size);
    }
    return units;
  }

  static void expectSameNalUnits(const std::string& path, bool lengthPrefixed) {
    SCOPED_TRACE(path);
    std::string error;
    const auto demuxer = phone::Demuxer::open(path, AVMEDIA_TYPE_VIDEO, &error);
    ASSERT_TRUE(demuxer) << error;
    const auto source = open(path);
    const phone::PacketPtr packet(av_packet_alloc());
    AccessUnit unit;
    int compared = 0;
    while (demuxer->next(packet.get())) {
      ASSERT_TRUE(source->next(&unit));
      std::vector<Bytes> expected;
      for (const Bytes& nal : nalUnitsOf(*packet, lengthPrefixed)) {
        const int type = nal[0] & 0x1f;
        if (type != phone::NAL_SPS && type != phone::NAL_PPS) expected.push_back(nal);
      }
      EXPECT_THAT(withoutParameterSets(unit.data), ElementsAreArray(expected)) << "access unit " << compared;
      av_packet_unref(packet.get());
      ++compared;
    }
    EXPECT_FALSE(source->next(&unit));
    EXPECT_EQ(compared, 12);
  }
};

TEST_F(PhonePassthrough, KeepsEveryNalUnitOfEveryContainerBitForBit) {
  expectSameNalUnits(numbered("a.mp4", {}), true);
  expectSameNalUnits(numbered("a.mkv", {}), true);
  expectSameNalUnits(numbered("a.ts", {}), false);
  expectSameNalUnits(numbered("a.h264", {}), false);
  expectSameNalUnits(numbered("a.avi", {}), false);
}

TEST_F(PhonePassthrough, AnnexBPacketsAreHandedOnUnchanged) {
  const std::string path = numbered("a.ts", {});
  std::string error;
  const auto demuxer = phone::Demuxer::open(path, AVMEDIA_TYPE_VIDEO, &error);
  const auto source = open(path);
  const phone::PacketPtr packet(av_packet_alloc());
  AccessUnit unit;
  while (demuxer->next(packet.get())) {
    ASSERT_TRUE(source->next(&unit));
    EXPECT_EQ(unit.data, Bytes(packet->data, packet->data + packet->size));
    av_packet_unref(packet.get());
  }
}

TEST_F(PhonePassthrough, KeepsTheFilesOwnSizeAndPictures) {
  VideoOptions options;
  options.width = 800;
  options.height = 480;
  for (const char* name : {"a.mp4", "a.ts"}) {
    const auto source = open(numbered(name, {}), options);
    EXPECT_EQ(source->width(), 320);
    EXPECT_EQ(source->height(), 192);
    Viewer viewer(source->codecConfig());
    std::uint32_t expected = 0;
    for (const AccessUnit& unit : drain(source.get())) EXPECT_EQ(viewer.counterOf(unit), expected++);
    EXPECT_EQ(expected, 12U);
  }
}

TEST_F(PhonePassthrough, CodecConfigHoldsTheParameterSets) {
  for (const char* name : {"a.mp4", "a.ts", "a.h264"}) {
    const Bytes config = open(numbered(name, {}))->codecConfig();
    const std::vector<phone::NalUnit> units = phone::splitAnnexB(config.data(), config.size());
    ASSERT_EQ(units.size(), 2U) << name;
    EXPECT_EQ(units[0].type(), phone::NAL_SPS);
    EXPECT_EQ(units[1].type(), phone::NAL_PPS);
  }
}

TEST_F(PhonePassthrough, TimesAreMicrosecondsFromZeroAndKeyFramesAreMarked) {
  for (const char* name : {"a.mp4", "a.ts", "a.avi"}) {
    SCOPED_TRACE(name);
    const std::vector<AccessUnit> units = drain(open(numbered(name, {})).get());
    ASSERT_EQ(units.size(), 12U);
    for (std::size_t i = 0; i < units.size(); ++i) {
      EXPECT_NEAR(static_cast<double>(units[i].timestampUs), static_cast<double>(i) * 1e6 / 30, 12);
      EXPECT_EQ(units[i].dueUs, units[i].timestampUs);
      EXPECT_EQ(units[i].keyframe, i % 6 == 0);
    }
  }
}

TEST_F(PhonePassthrough, AccessUnitsWithoutTimesAreSpacedByTheFrameRate) {
  const std::vector<AccessUnit> units = drain(open(numbered("a.h264", {})).get());
  ASSERT_EQ(units.size(), 12U);
  for (std::size_t i = 0; i < units.size(); ++i) {
    EXPECT_NEAR(static_cast<double>(units[i].dueUs), static_cast<double>(i) * 1e6 / 30, 12);
    EXPECT_EQ(units[i].timestampUs, units[i].dueUs);
  }
}

TEST_F(PhonePassthrough, ReorderedPicturesAreDueInOrderAndNeverAfterTheyAreShown) {
  VideoRecipe recipe;
  recipe.bFrames = 2;
  recipe.settings = {{"x264-params", "b-adapt=0"}};
  for (const char* name : {"b.mp4", "b.ts", "b.mkv"}) {
    SCOPED_TRACE(name);
    const std::vector<AccessUnit> units = drain(open(numbered(name, recipe)).get());
    ASSERT_EQ(units.size(), 12U);
    EXPECT_EQ(units[0].dueUs, 0);
    std::vector<std::int64_t> shown;
    bool reordered = false;
    for (std::size_t i = 0; i < units.size(); ++i) {
      EXPECT_GE(units[i].dueUs, i > 0 ? units[i - 1].dueUs : 0);
      EXPECT_GE(units[i].timestampUs, units[i].dueUs);
      reordered = reordered || (i > 0 && units[i].timestampUs < units[i - 1].timestampUs);
      shown.push_back(units[i].timestampUs);
    }
    EXPECT_TRUE(reordered) << "the file has no B frames to test with";
    std::sort(shown.begin(), shown.end());
    for (std::size_t i = 1; i < shown.size(); ++i) {
      EXPECT_NEAR(static_cast<double>(shown[i] - shown[i - 1]), 1e6 / 30, 1100)
          << "each picture has its own time";
    }
  }
}

TEST_F(PhonePassthrough, EndsAfterAsManyFramesAsWantedAndStaysEnded) {
  VideoOptions options;
  options.frames = 5;
  const auto source = open(numbered("a.mp4", {}), options);
  EXPECT_EQ(drain(source.get()).size(), 5U);
  AccessUnit unit;
  EXPECT_FALSE(source->next(&unit));
}

TEST_F(PhonePassthrough, LoopsWithTimesThatGoOn) {
  VideoOptions options;
  options.loop = true;
  options.frames = 30;
  for (const char* name : {"a.mp4", "a.ts", "a.h264"}) {
    SCOPED_TRACE(name);
    const auto source = open(numbered(name, {}), options);
    Viewer viewer(source->codecConfig());
    const std::vector<AccessUnit> units = drain(source.get());
    ASSERT_EQ(units.size(), 30U);
    const std::int64_t interval = units[1].dueUs;
    for (std::size_t i = 0; i < units.size(); ++i) {
      EXPECT_EQ(viewer.counterOf(units[i]), i % 12);
      EXPECT_NEAR(static_cast<double>(units[i].dueUs), static_cast<double>(i) * static_cast<double>(interval),
                  40);
    }
  }
}

TEST_F(PhonePassthrough, BeginsAtTheFirstKeyFrame) {
  // Four packets of a broadcast are missing, the key frame among them.
  const std::string whole = numbered("whole.h264", {});
  std::string error;
  const auto demuxer = phone::Demuxer::open(whole, AVMEDIA_TYPE_VIDEO, &error);
  const phone::PacketPtr packet(av_packet_alloc());
  std::string rest;
  for (int i = 0; demuxer->next(packet.get()); ++i) {
    if (i >= 4)
      rest.append(reinterpret_cast<const char*>(packet->data), static_cast<std::size_t>(packet->size));
    av_packet_unref(packet.get());
  }
  writeFile(folder / "cut.h264", rest);
  const auto source = open(folder / "cut.h264");
  Viewer viewer(source->codecConfig());
  const std::vector<AccessUnit> units = drain(source.get());
  ASSERT_EQ(units.size(), 6U);
  EXPECT_TRUE(units[0].keyframe);
  EXPECT_EQ(units[0].dueUs, 0);
  EXPECT_EQ(viewer.counterOf(units[0]), 6U);
}

TEST_F(PhonePassthrough, AFileThatBreaksOffEndsThere) {
  const std::string path = numbered("a.ts", {});
  std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
  const auto source = open(path);
  const std::vector<AccessUnit> units = drain(source.get());
  EXPECT_GT(units.size(), 0U);
  EXPECT_LT(units.size(), 12U);
}

TEST_F(PhonePassthrough, SaysThatThePicturesLieOnTheirSide) {
  VideoRecipe recipe;
  EXPECT_EQ(open(numbered("a.mp4", recipe))->remark(), "");
  recipe.turn = 90;
  EXPECT_THAT(open(numbered("turned.mp4", recipe))->remark(),
              AllOf(HasSubstr("turned.mp4' are to be turned by 90 degrees clockwise"), EndsWith(".")));
}

/// Everything that is not H.264.
struct PhoneTranscoding : VideoFile {
  static VideoOptions sized(int width, int height, int fps) {
    VideoOptions options;
    options.width = width;
    options.height = height;
    options.fps = fps;
    return options;
  }

  static std::vector<std::uint32_t> countersIn(VideoSource* source) {
    Viewer viewer(source->codecConfig());
    std::vector<std::uint32_t> counters;
    for (const AccessUnit& unit : drain(source)) counters.push_back(viewer.counterOf(unit).value_or(99999));
    return counters;
  }

  static const VideoRecipe& mpeg4() {
    static const VideoRecipe recipe = [] {
      VideoRecipe made;
      made.codec = "mpeg4";
      made.width = 400;
      made.height = 240;
      return made;
    }();
    return recipe;
  }
};

TEST_F(PhoneTranscoding, ShowsEveryPictureOnceAtTheSameFrameRate) {
  for (const char* name : {"a.avi", "a.mp4", "a.mkv"}) {
    SCOPED_TRACE(name);
    const auto source = open(numbered(name, mpeg4()), sized(800, 480, 30));
    EXPECT_EQ(source->width(), 800);
    EXPECT_EQ(source->height(), 480);
    EXPECT_THAT(countersIn(source.get()), ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11));
  }
}

TEST_F(PhoneTranscoding, GivesEvenTimesAndAKeyFrameFirst) {
  const std::vector<AccessUnit> units = drain(open(numbered("a.avi", mpeg4()), sized(400, 240, 30)).get());
  ASSERT_EQ(units.size(), 12U);
  for (std::size_t i = 0; i < units.size(); ++i) {
    EXPECT_EQ(units[i].timestampUs, static_cast<std::int64_t>(i) * 1'000'000 / 30);
    EXPECT_EQ(units[i].dueUs, units[i].timestampUs);
    EXPECT_EQ(units[i].keyframe, i == 0);
  }
}

TEST_F(PhoneTranscoding, RepeatsPicturesForAHigherFrameRate) {
  VideoRecipe recipe = mpeg4();
  recipe.fps = 10;
  recipe.frames = 4;
  const auto source = open(numbered("a.avi", recipe), sized(400, 240, 30));
  const std::vector<std::uint32_t> counters = countersIn(source.get());
  EXPECT_EQ(counters.size(), 12U);
  EXPECT_TRUE(std::is_sorted(counters.begin(), counters.end()));
  for (std::uint32_t number = 0; number < 4; ++number) {
    EXPECT_NEAR(static_cast<double>(std::count(counters.begin(), counters.end(), number)), 3, 1) << number;
  }
}

TEST_F(PhoneTranscoding, LeavesPicturesOutForALowerFrameRate) {
  VideoRecipe recipe = mpeg4();
  recipe.frames = 30;
  const auto source = open(numbered("a.avi", recipe), sized(400, 240, 10));
  const std::vector<std::uint32_t> counters = countersIn(source.get());
  ASSERT_EQ(counters.size(), 10U);
  for (std::size_t i = 0; i < counters.size(); ++i) {
    EXPECT_NEAR(static_cast<double>(counters[i]), 3.0 * static_cast<double>(i), 1);
  }
}

TEST_F(PhoneTranscoding, AVideoShorterThanAFrameIsShownOnce) {
  VideoRecipe recipe = mpeg4();
  recipe.frames = 1;
  EXPECT_THAT(countersIn(open(numbered("a.avi", recipe), sized(400, 240, 5)).get()), ElementsAre(0));
}

TEST_F(PhoneTranscoding, LoopsWithCountersAndTimesThatGoOn) {
  VideoOptions options = sized(400, 240, 30);
  options.loop = true;
  options.frames = 30;
  const auto source = open(numbered("a.mkv", mpeg4()), options);
  Viewer viewer(source->codecConfig());
  const std::vector<AccessUnit> units = drain(source.get());
  ASSERT_EQ(units.size(), 30U);
  for (std::size_t i = 0; i < units.size(); ++i) {
    EXPECT_EQ(viewer.counterOf(units[i]), i % 12);
    EXPECT_EQ(units[i].timestampUs, static_cast<std::int64_t>(i) * 1'000'000 / 30);
  }
}

TEST_F(PhoneTranscoding, EndsAfterAsManyFramesAsWantedAndStaysEnded) {
  VideoOptions options = sized(400, 240, 30);
  options.frames = 5;
  const auto source = open(numbered("a.avi", mpeg4()), options);
  EXPECT_EQ(drain(source.get()).size(), 5U);
  AccessUnit unit;
  EXPECT_FALSE(source->next(&unit));
}

TEST_F(PhoneTranscoding, KeepsProportionsBetweenBlackBars) {
  VideoRecipe square = mpeg4();
  square.width = square.height = 240;
  square.frames = 1;
  writeVideo(folder / "square.avi", square, [](int, AVFrame* frame) {
    std::fill_n(frame->data[0], frame->linesize[0] * frame->height, std::uint8_t{200});
    for (int plane : {1, 2})
      std::fill_n(frame->data[plane], frame->linesize[plane] * frame->height / 2, std::uint8_t{128});
  });
  const auto source = open(folder / "square.avi", sized(800, 480, 30));
  Viewer viewer(source->codecConfig());
  const std::vector<AccessUnit> units = drain(source.get());
  const AVFrame* frame = viewer.show(units.at(0));
  ASSERT_NE(frame, nullptr);
  const std::uint8_t* middle = frame->data[0] + 240 * frame->linesize[0];
  EXPECT_NEAR(middle[0], 16, 3);
  EXPECT_NEAR(middle[150], 16, 3) << "the bar is 160 wide";
  EXPECT_NEAR(middle[170], 200, 3);
  EXPECT_NEAR(middle[400], 200, 3);
  EXPECT_NEAR(middle[630], 200, 3);
  EXPECT_NEAR(middle[650], 16, 3);
  EXPECT_NEAR(frame->data[0][400], 200, 3) << "no bar above";
}

/// How bright the left, the upper, the right and the lower part are that a source shows first.
std::vector<int> brightnessAround(VideoSource* source) {
  Viewer viewer(source->codecConfig());
  const std::vector<AccessUnit> units = drain(source);
  const AVFrame* frame = viewer.show(units.at(0));
  require(frame != nullptr, "no picture");
  const auto at = [frame](int x, int y) { return int{frame->data[0][y * frame->linesize[0] + x]}; };
  const int x = frame->width / 2;
  const int y = frame->height / 2;
  return {at(x - 80, y), at(x, y - 80), at(x + 80, y), at(x, y + 80)};
}

TEST_F(PhoneTranscoding, TurnsPicturesByQuarters) {
  VideoRecipe recipe = mpeg4();
  recipe.width = recipe.height = 240;
  recipe.frames = 1;
  const auto bright = [](int value) {
    return testing::AllOf(testing::Gt(value - 5), testing::Lt(value + 5));
  };
  // Four values from the left clockwise; each quarter of a turn hands them on.
  std::vector<int> values = {40, 90, 140, 190};
  for (const int turn : {0, 90, 180, 270}) {
    SCOPED_TRACE(turn);
    recipe.turn = turn;
    writeVideo(folder / "a.mp4", recipe, [](int, AVFrame* frame) {
      for (int y = 0; y < frame->height; ++y) {
        for (int x = 0; x < frame->width; ++x) {
          const bool left = x < y && x < frame->height - y;
          const bool upper = x >= y && x < frame->height - y;
          const bool right = x >= y && x >= frame->height - y;
          frame->data[0][y * frame->linesize[0] + x] = left ? 40 : upper ? 90 : right ? 140 : 190;
        }
      }
      for (int plane : {1, 2})
        std::fill_n(frame->data[plane], frame->linesize[plane] * frame->height / 2, std::uint8_t{128});
    });
    const auto source = open(folder / "a.mp4", sized(480, 240, 30));
    EXPECT_EQ(source->remark(), "");
    EXPECT_THAT(brightnessAround(source.get()),
                ElementsAre(bright(values[0]), bright(values[1]), bright(values[2]), bright(values[3])));
    std::rotate(values.begin(), values.end() - 1, values.end());
  }
}

TEST_F(PhoneTranscoding, FitsATurnedPictureByItsTurnedShape) {
  VideoRecipe recipe = mpeg4();
  recipe.frames = 1;
  recipe.turn = 90;
  const auto source = open(numbered("a.mp4", recipe), sized(800, 480, 30));
  Viewer viewer(source->codecConfig());
  const std::vector<AccessUnit> units = drain(source.get());
  const AVFrame* frame = viewer.show(units.at(0));
  ASSERT_NE(frame, nullptr);
  // 400x240 lies; it stands 288 wide and 480 high, between bars of 256.
  const std::uint8_t* middle = frame->data[0] + 240 * frame->linesize[0];
  EXPECT_NEAR(middle[246], 16, 3);
  EXPECT_GT(*std::max_element(middle + 260, middle + 540), 30);
  EXPECT_NEAR(middle[554], 16, 3);
}

TEST_F(PhoneTranscoding, SaysThatNothingButQuartersOfATurnIsDone) {
  VideoRecipe recipe = mpeg4();
  recipe.turn = 135;
  EXPECT_THAT(open(numbered("a.mp4", recipe), sized(400, 240, 30))->remark(),
              HasSubstr("are to be turned by 135 degrees clockwise, and are shown unturned"));
}

TEST_F(PhoneTranscoding, BrightnessOfFullRangePicturesIsKept) {
  VideoRecipe recipe = mpeg4();
  recipe.codec = "mjpeg";
  recipe.format = AV_PIX_FMT_YUVJ420P;
  recipe.frames = 1;
  writeVideo(folder / "a.avi", recipe, [](int, AVFrame* frame) {
    std::fill_n(frame->data[0], frame->linesize[0] * frame->height, std::uint8_t{255});
    for (int plane : {1, 2})
      std::fill_n(frame->data[plane], frame->linesize[plane] * frame->height / 2, std::uint8_t{128});
  });
  const auto source = open(folder / "a.avi", sized(400, 240, 30));
  Viewer viewer(source->codecConfig());
  const std::vector<AccessUnit> units = drain(source.get());
  const AVFrame* frame = viewer.show(units.at(0));
  ASSERT_NE(frame, nullptr);
  EXPECT_NEAR(frame->data[0][120 * frame->linesize[0] + 200], 235, 2) << "white is 255 there and 235 here";
}

TEST_F(PhoneTranscoding, RefusesASizeThatCannotBeEncoded) {
  std::string error;
  EXPECT_EQ(phone::openVideoFile(numbered("a.avi", mpeg4()), sized(801, 480, 30), &error), nullptr);
  EXPECT_THAT(error, HasSubstr("801x480 cannot be encoded"));
}

TEST_F(PhoneTranscoding, AColonInAFileNameIsNoProtocol) {
  numbered("clip:2.avi", mpeg4());
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  const auto source = open("clip:2.avi", sized(400, 240, 30));
  std::filesystem::current_path(before);
  EXPECT_EQ(drain(source.get()).size(), 12U);
}

/// Files that are no video.
struct PhoneNoVideo : VideoFile {};

TEST_F(PhoneNoVideo, AMissingFile) {
  EXPECT_THAT(complaint(folder / "none.mp4"), HasSubstr("o such file or directory"));
}

TEST_F(PhoneNoVideo, AFolder) { EXPECT_THAT(complaint(folder.path()), HasSubstr("is a folder")); }

TEST_F(PhoneNoVideo, ADevice) { EXPECT_THAT(complaint("/dev/zero"), HasSubstr("no ordinary file")); }

TEST_F(PhoneNoVideo, AnEmptyFile) {
  writeFile(folder / "empty.mp4", "");
  complaint(folder / "empty.mp4");
}

TEST_F(PhoneNoVideo, ATextWhateverItIsCalled) {
  std::string text;
  for (int i = 0; i < 400; ++i) text += "This is line " + std::to_string(i) + " of a text.\n";
  for (const char* name : {"a.txt", "a.mp4", "a.nfo", "a.h264", "a.cpp", "plain", "a:b.txt"}) {
    writeFile(folder / name, text);
    complaint(folder / name);
  }
}

TEST_F(PhoneNoVideo, Noise) {
  std::string noise;
  std::uint32_t state = 7;
  for (int i = 0; i < 50'000; ++i) noise += static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
  for (const char* name : {"a.mp4", "a.avi", "a.ts", "a.h264", "a.bin"}) {
    writeFile(folder / name, noise);
    complaint(folder / name);
  }
}

TEST_F(PhoneNoVideo, AVideoOfWhichOnlyTheBeginningIsLeft) {
  const std::string path = numbered("a.mp4", {});
  std::filesystem::resize_file(path, 200);
  complaint(path);
}

TEST_F(PhoneNoVideo, ASongWithACover) {
  SoundRecipe song;
  song.codec = "flac";
  song.cover = phone::encodePng(Bytes(256 * 256 * 3, 77).data(), 256, 256);
  writeSound(folder / "a.flac", song, std::vector<std::int16_t>(9600));
  EXPECT_THAT(complaint(folder / "a.flac"), HasSubstr("holds no video"));
}

TEST_F(PhoneNoVideo, OnlySound) {
  writeSound(folder / "a.wav", {}, std::vector<std::int16_t>(9600));
  EXPECT_THAT(complaint(folder / "a.wav"), HasSubstr("holds no video"));
}

}  // namespace
}  // namespace test::media
