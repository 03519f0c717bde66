#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <protos.pb.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "headunit/MicrophoneFeed.h"
#include "headunit/Wav.h"
#include "headunit/media/SdlSound.h"

namespace headunit {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr milliseconds PERIOD(20);

/// A recording of blocks that each hold one number throughout, sent by hand.
struct HeadunitMicrophone : testing::Test {
  std::vector<int> sentBlocks;  // the first sample of each
  RecordedMicrophone microphone{blocks(5)};
  MicrophoneFeed feed{&microphone, [this](unsigned long long, ::shared_ptr<IoBuffer> const& buffer) {
                        EXPECT_EQ(buffer->size(), 2 * MICROPHONE_BLOCK);
                        sentBlocks.push_back(buffer->data[0] | buffer->data[1] << 8);
                      }};
  TimePoint now = TimePoint(std::chrono::seconds(1000));

  static std::vector<std::int16_t> blocks(int count) {
    std::vector<std::int16_t> samples;
    for (int i = 1; i <= count; ++i) {
      samples.insert(samples.end(), MICROPHONE_BLOCK, static_cast<std::int16_t>(0x100 * i + i));
    }
    return samples;
  }
  void passPeriods(int count) {
    for (int i = 0; i < count; ++i, now += PERIOD) microphone.act(now);
  }
};

TEST_F(HeadunitMicrophone, SaysNothingUnlessItIsOpen) {
  passPeriods(3);
  EXPECT_THAT(sentBlocks, IsEmpty());
}

TEST_F(HeadunitMicrophone, HasHeardABlockBeforeItSendsOne) {
  EXPECT_EQ(feed.request(true, 10), 1);
  passPeriods(1);
  EXPECT_THAT(sentBlocks, IsEmpty());
  passPeriods(1);
  EXPECT_THAT(sentBlocks, ElementsAre(0x101));
}

TEST_F(HeadunitMicrophone, SaysItAllOnce) {
  feed.request(true, 10);
  passPeriods(20);
  EXPECT_THAT(sentBlocks, ElementsAre(0x101, 0x202, 0x303, 0x404, 0x505));
}

TEST_F(HeadunitMicrophone, KeepsToTheLimitAndLosesNothing) {
  feed.request(true, 2);
  passPeriods(6);
  EXPECT_THAT(sentBlocks, ElementsAre(0x101, 0x202));
  EXPECT_EQ(feed.totals().heldBack, 3U);
  feed.acknowledged(1, 1);
  passPeriods(2);
  EXPECT_THAT(sentBlocks, ElementsAre(0x101, 0x202, 0x303));
  EXPECT_EQ(feed.totals().mostUnacked, 2);
}

TEST_F(HeadunitMicrophone, TakesALimitOfNothingForOne) {
  feed.request(true, 0);
  passPeriods(6);
  EXPECT_THAT(sentBlocks, ElementsAre(0x101));
}

TEST_F(HeadunitMicrophone, IgnoresAcknowledgementsOfAnotherSessionAndThoseTooMany) {
  feed.request(true, 1);
  passPeriods(2);
  feed.acknowledged(7, 1);
  passPeriods(2);
  EXPECT_THAT(sentBlocks, ElementsAre(0x101));
  feed.acknowledged(1, 50);
  passPeriods(3);
  EXPECT_THAT(sentBlocks, ElementsAre(0x101, 0x202)) << "the limit is still one";
}

TEST_F(HeadunitMicrophone, BeginsAnewWithEachSession) {
  feed.request(true, 1);
  passPeriods(3);
  EXPECT_EQ(feed.request(false, 0), 1);
  passPeriods(3);
  EXPECT_EQ(feed.request(true, 1), 2);
  passPeriods(2);
  EXPECT_THAT(sentBlocks, ElementsAre(0x101, 0x101));
}

TEST_F(HeadunitMicrophone, IsNotInAHurryAfterAStandstill) {
  feed.request(true, 10);
  passPeriods(2);
  now += std::chrono::hours(1);
  EXPECT_EQ(microphone.act(now), now + PERIOD);
  EXPECT_THAT(sentBlocks, ElementsAre(0x101, 0x202));
}

TEST(HeadunitMicrophoneFeed, RefusesWithoutAMicrophone) {
  MicrophoneFeed feed(nullptr, [](unsigned long long, ::shared_ptr<IoBuffer> const&) { FAIL(); });
  EXPECT_EQ(feed.request(true, 4), STATUS_INVALID_STATE);
  EXPECT_GE(feed.request(false, 0), 0);
}

struct HeadunitMicrophoneFile : testing::Test {
  ~HeadunitMicrophoneFile() override { std::filesystem::remove_all(folder); }

  /// A sound file of this rate, in which so many mono samples stand.
  void make(unsigned int rate, std::size_t samples) {
    const std::vector<std::int16_t> sound(samples, 1000);
    const auto writer = WavWriter::create(path, rate, 1, &error);
    if (!sound.empty()) writer->write(sound.data(), sound.size(), &error);
  }
  std::string problem() {
    error.clear();
    EXPECT_FALSE(readForMicrophone(path, &error));
    return error;
  }

  const std::string folder = [] {
    std::string pattern = (std::filesystem::temp_directory_path() / "headunit.XXXXXX").string();
    return std::string(mkdtemp(pattern.data()));
  }();
  const std::string path = folder + "/say.wav";
  std::string error;
};

TEST_F(HeadunitMicrophoneFile, IsBroughtToTheMicrophonesRate) {
  const std::vector<std::int16_t> second(48000 * 2, 1000);
  WavWriter::create(path, 48000, 2, &error)->write(second.data(), second.size(), &error);
  const auto samples = readForMicrophone(path, &error);
  ASSERT_TRUE(samples) << error;
  EXPECT_NEAR(static_cast<double>(samples->size()), 16000, 16);
  EXPECT_NEAR((*samples)[8000], 1000, 2);

  const std::vector<std::int16_t> exact = {1, -2, 300};
  WavWriter::create(path, MICROPHONE_RATE, 1, &error)->write(exact.data(), exact.size(), &error);
  EXPECT_EQ(readForMicrophone(path, &error), exact) << "what has the right format stays what it is";
}

TEST_F(HeadunitMicrophoneFile, IsToldIfItIsNoneOfSound) {
  EXPECT_EQ(problem(), path + ": No such file or directory");
  std::ofstream(path) << "";
  EXPECT_EQ(problem(), path + ": it is empty");
  std::ofstream(path) << "no sound at all";
  EXPECT_THAT(problem(), HasSubstr(path + ": it cannot be read as a WAVE file ("));
  make(48000, 0);
  EXPECT_EQ(problem(), path + ": it holds no sound");
}

TEST_F(HeadunitMicrophoneFile, HasARateOfSound) {
  for (const unsigned int rate : {1U, 999U, 768'001U, 2'000'000'000U}) {
    make(rate, 100);
    EXPECT_EQ(problem(), path + ": its rate is none of sound") << rate;
  }
}

TEST_F(HeadunitMicrophoneFile, IsNoLongerThanAnHour) {
  make(1000, 3601 * 1000);
  EXPECT_EQ(problem(), path + ": it is longer than an hour");
}

TEST_F(HeadunitMicrophoneFile, IsNotTakenIntoMemoryIfItIsHuge) {
  make(48000, 100);
  std::filesystem::resize_file(path, std::uintmax_t{1} << 32);
  EXPECT_EQ(problem(), path + ": it has more than 128 MiB");
}

}  // namespace
}  // namespace headunit
