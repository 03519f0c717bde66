#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "headunit/FileDescriptor.h"
#include "headunit/Mixer.h"
#include "headunit/SoundOutput.h"
#include "headunit_full_disk.h"
#include "headunit_log.h"

namespace headunit {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::size_t MAX_UNACKED = 4;

/// A block of little-endian samples.
AudioBlock blockOf(const std::vector<std::int16_t>& samples, int session = 1) {
  AudioBlock block;
  block.buffer = ::shared_ptr<IoBuffer>(new IoBuffer(static_cast<unsigned int>(2 * samples.size())));
  for (std::size_t i = 0; i < samples.size(); ++i) {
    block.buffer->data[2 * i] = static_cast<unsigned char>(samples[i] & 0xff);
    block.buffer->data[2 * i + 1] = static_cast<unsigned char>(samples[i] >> 8 & 0xff);
  }
  block.data = block.buffer->data;
  block.length = block.buffer->capacity;
  block.session = session;
  block.received = Clock::now();
  return block;
}

/// `frames` frames with the same sample everywhere.
AudioBlock steady(std::int16_t sample, std::size_t frames, std::size_t channels = 2) {
  return blockOf(std::vector<std::int16_t>(frames * channels, sample));
}

/// One stream, played by hand.
struct HeadunitAudioStream : testing::Test {
  std::vector<int> acknowledged;
  AudioStream stereo{"media", AudioFormat::stereo48k, MAX_UNACKED, acknowledge()};
  AudioStream mono{"guidance", AudioFormat::mono16k, MAX_UNACKED, acknowledge()};

  AudioStream::Acknowledge acknowledge() {
    return
        [this](int session, unsigned int count) { acknowledged.insert(acknowledged.end(), count, session); };
  }
  static std::vector<std::int32_t> play(AudioStream* stream, std::size_t frames, bool* heard = nullptr) {
    std::vector<std::int32_t> mix(frames * MIX_CHANNELS, 0);
    const bool sounds = stream->addTo(mix.data(), frames);
    if (heard != nullptr) *heard = sounds;
    return mix;
  }
  /// A stream that has begun to play: more than 60 ms have gathered.
  static void fill(AudioStream* stream, std::int16_t sample) {
    stream->start();
    stream->receive(steady(sample, 3600));
  }
};

TEST_F(HeadunitAudioStream, IsSilentAtFirst) {
  bool heard = true;
  EXPECT_THAT(play(&stereo, 10, &heard), Each(0));
  EXPECT_FALSE(heard);
}

TEST_F(HeadunitAudioStream, WaitsUntilALittleHasGathered) {
  stereo.start();
  stereo.receive(steady(100, 960));  // 20 ms
  bool heard = false;
  EXPECT_THAT(play(&stereo, 10, &heard), Each(0));
  EXPECT_TRUE(heard) << "it is about to begin";
  stereo.receive(steady(100, 1920));
  EXPECT_THAT(play(&stereo, 10), Each(100));
}

TEST_F(HeadunitAudioStream, BeginsAtTheLatestWhenThePhoneMaySendNoMore) {
  stereo.start();
  for (std::size_t i = 0; i < MAX_UNACKED; ++i) stereo.receive(steady(7, 10));
  EXPECT_THAT(play(&stereo, 40), Each(7));
}

TEST_F(HeadunitAudioStream, PlaysASoundThatIsShorterThanThat) {
  stereo.start();
  stereo.receive(steady(7, 10));
  stereo.stop();
  EXPECT_THAT(play(&stereo, 10), Each(7));
  EXPECT_EQ(stereo.totals().underruns, 0U);
}

TEST_F(HeadunitAudioStream, AcknowledgesEachBlockWhenItHasBeenPlayed) {
  stereo.start();
  stereo.receive(blockOf(std::vector<std::int16_t>(6000, 1), 4));
  stereo.receive(blockOf(std::vector<std::int16_t>(6000, 1), 5));
  play(&stereo, 2999);
  EXPECT_THAT(acknowledged, IsEmpty());
  play(&stereo, 1);
  EXPECT_THAT(acknowledged, ElementsAre(4));
  play(&stereo, 3000);
  EXPECT_THAT(acknowledged, ElementsAre(4, 5));
}

TEST_F(HeadunitAudioStream, IsSilentAtAGapAndCountsIt) {
  fill(&stereo, 9);
  const std::vector<std::int32_t> mix = play(&stereo, 3610);
  EXPECT_EQ(mix[3599 * 2], 9);
  EXPECT_EQ(mix[3600 * 2], 0);
  EXPECT_EQ(stereo.totals().underruns, 1U);
  play(&stereo, 100);
  EXPECT_EQ(stereo.totals().underruns, 1U) << "it is still the same gap";
}

TEST_F(HeadunitAudioStream, WaitsForMoreAfterAGap) {
  fill(&stereo, 9);
  play(&stereo, 3610);
  stereo.receive(steady(9, 3000));
  EXPECT_THAT(play(&stereo, 10), Each(0)) << "60 ms were too little";
  stereo.receive(steady(9, 1500));
  EXPECT_THAT(play(&stereo, 10), Each(9));
}

TEST_F(HeadunitAudioStream, TheEndIsNoGap) {
  fill(&stereo, 9);
  stereo.stop();
  bool heard = true;
  play(&stereo, 4000, &heard);
  EXPECT_FALSE(heard);
  EXPECT_EQ(stereo.totals().underruns, 0U);
}

TEST_F(HeadunitAudioStream, PlaysOnAfterTheLinkHasGoneAndAcknowledgesNothing) {
  fill(&stereo, 9);
  stereo.detach();
  EXPECT_TRUE(stereo.isDetached());
  EXPECT_THAT(play(&stereo, 3600), Each(9));
  EXPECT_THAT(acknowledged, IsEmpty());
}

TEST_F(HeadunitAudioStream, AcknowledgesAtOnceWhatIsBeyondAllLimits) {
  stereo.start();
  for (std::size_t i = 0; i < 4 * MAX_UNACKED; ++i) stereo.receive(steady(1, 1));
  EXPECT_THAT(acknowledged, IsEmpty());
  stereo.receive(steady(1, 1));
  EXPECT_THAT(acknowledged, ElementsAre(1));
  EXPECT_EQ(stereo.totals().refused, 1U);
}

TEST_F(HeadunitAudioStream, PlaysNoHalfFramesAndNothingOfEmptyBlocks) {
  stereo.start();
  stereo.receive(blockOf({}));
  stereo.receive(blockOf({1, 2, 3}));
  stereo.receive(blockOf({}));
  stereo.stop();
  EXPECT_THAT(play(&stereo, 2), ElementsAre(1, 2, 0, 0));
  EXPECT_THAT(acknowledged, ElementsAre(1, 1, 1));
}

TEST_F(HeadunitAudioStream, BringsMonoToBothSidesAtThreeTimesTheRate) {
  mono.start();
  mono.receive(steady(1000, 1200, 1));
  play(&mono, 60);  // what the filter holds of the silence before
  EXPECT_THAT(play(&mono, 300), Each(1000));
  play(&mono, 3600 - 360 - 1);
  EXPECT_THAT(acknowledged, ElementsAre(1)) << "the last sample has been fetched";
}

TEST(HeadunitUpsampler, KeepsAConstantExactly) {
  for (const std::int16_t level : {std::int16_t{1}, std::int16_t{-32768}, std::int16_t{32767}}) {
    Upsampler upsampler;
    for (int i = 0; i < 16; ++i) upsampler.push(level);
    for (int phase = 0; phase < 3; ++phase) EXPECT_EQ(upsampler.at(phase), level);
  }
}

TEST(HeadunitUpsampler, KeepsATone) {
  constexpr double PI = 3.14159265358979323846;
  Upsampler upsampler;
  double worst = 0;
  for (int i = 0; i < 400; ++i) {
    upsampler.push(static_cast<std::int16_t>(std::lround(20'000 * std::sin(2 * PI * 1000 * i / 16'000))));
    for (int phase = 0; phase < 3 && i > 16; ++phase) {
      const double ideal = 20'000 * std::sin(2 * PI * 1000 * (i - 8 + phase / 3.0) / 16'000);
      worst = std::max(worst, std::abs(upsampler.at(phase) - ideal));
    }
  }
  EXPECT_LT(worst, 20) << "60 dB below the tone";
}

TEST(HeadunitMixer, AddsStreamsAndCutsOffWhatIsTooLoud) {
  Mixer mixer;
  const AudioStream::Acknowledge nobody = [](int, unsigned int) {};
  const auto one = std::make_shared<AudioStream>("one", AudioFormat::stereo48k, 1, nobody);
  const auto two = std::make_shared<AudioStream>("two", AudioFormat::stereo48k, 1, nobody);
  mixer.add(one);
  mixer.add(two);
  one->receive(blockOf({100, -20'000, 30'000, 5}));
  two->receive(blockOf({11, -20'000, 30'000, -5}));
  std::vector<std::int16_t> out(4, 99);
  EXPECT_TRUE(mixer.mix(out.data(), 2));
  EXPECT_THAT(out, ElementsAre(111, -32768, 32767, 0));
  EXPECT_FALSE(mixer.isQuiet());
}

TEST_F(HeadunitAudioStream, RefusesMoreThanSomeSecondsHoweverFewTheBlocks) {
  AudioBlock endless = steady(1, 10);
  endless.length = 0xFFFF'FFFC;  // as announced; there is no such thing in the buffer
  stereo.start();
  stereo.receive(std::move(endless));
  EXPECT_THAT(acknowledged, ElementsAre(1));
  EXPECT_EQ(stereo.totals().refused, 1U);
  stereo.receive(steady(1, 4 * MIX_RATE));
  stereo.receive(steady(1, 2 * MIX_RATE));
  EXPECT_EQ(stereo.totals().refused, 2U) << "five seconds are the most, together";
  stereo.receive(steady(1, MIX_RATE));
  EXPECT_EQ(stereo.totals().refused, 2U);
}

TEST_F(HeadunitAudioStream, PlaysNoMoreThanASecondOnceItsLinkIsOver) {
  fill(&stereo, 7);
  play(&stereo, 100);
  stereo.receive(steady(7, MIX_RATE));
  stereo.receive(steady(7, MIX_RATE));
  stereo.detach();
  EXPECT_THAT(play(&stereo, MIX_RATE), Each(7));
  EXPECT_THAT(play(&stereo, 10), Each(0));
}

TEST_F(HeadunitAudioStream, ShortensABlockThatIsBeingPlayed) {
  stereo.start();
  stereo.receive(steady(7, 3 * MIX_RATE));
  play(&stereo, 100);
  stereo.detach();
  EXPECT_THAT(play(&stereo, MIX_RATE), Each(7));
  EXPECT_THAT(play(&stereo, 10), Each(0));
}

TEST(HeadunitMixer, IsSilentWithoutStreams) {
  Mixer mixer;
  std::vector<std::int16_t> out(4, 99);
  EXPECT_FALSE(mixer.mix(out.data(), 2));
  EXPECT_THAT(out, Each(0));
  EXPECT_TRUE(mixer.isQuiet());
}

TEST(HeadunitMixer, LetsAStreamGoOnceItsLinkAndItsSoundAreOver) {
  Mixer mixer;
  const auto stream =
      std::make_shared<AudioStream>("one", AudioFormat::stereo48k, 1, [](int, unsigned int) {});
  mixer.add(stream);
  stream->receive(blockOf({1, 1}));
  stream->detach();
  std::vector<std::int16_t> out(2);
  mixer.mix(out.data(), 1);
  EXPECT_THAT(out, ElementsAre(1, 1));
  mixer.mix(out.data(), 1);
  mixer.mix(out.data(), 1);
  EXPECT_EQ(stream.use_count(), 1);
}

/// A folder for sound files.
struct HeadunitSoundFile : testing::Test {
  std::string folder;
  HeadunitSoundFile() {
    std::string pattern = (std::filesystem::temp_directory_path() / "headunit.XXXXXX").string();
    folder = mkdtemp(pattern.data());
  }
  ~HeadunitSoundFile() override { std::filesystem::remove_all(folder); }

  std::string path() const { return folder + "/sound.wav"; }
  std::string content() const {
    std::ostringstream text;
    text << std::ifstream(path(), std::ios::binary).rdbuf();
    return text.str();
  }
};

TEST_F(HeadunitSoundFile, HasAHeaderThatTellsItsLength) {
  std::string error;
  {
    const auto writer = WavWriter::create(path(), 48000, 2, &error);
    ASSERT_TRUE(writer) << error;
    const std::int16_t samples[] = {1, -2, 0x1234, -32768};
    EXPECT_TRUE(writer->write(samples, 4, &error)) << error;
  }
  const std::string wanted(
      "RIFF\x2c\0\0\0WAVE"
      "fmt \x10\0\0\0\x01\0\x02\0\x80\xbb\0\0\0\xee\x02\0\x04\0\x10\0"
      "data\x08\0\0\0"
      "\x01\0\xfe\xff\x34\x12\0\x80",
      52);
  EXPECT_EQ(content(), wanted);
}

TEST_F(HeadunitSoundFile, IsNamedIfItCannotBeWritten) {
  std::string error;
  EXPECT_FALSE(WavWriter::create(folder + "/none/sound.wav", 48000, 2, &error));
  EXPECT_THAT(error, HasSubstr("sound.wav: No such file"));
}

TEST_F(HeadunitSoundFile, IsNoPipe) {
  std::string error;
  ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);
  EXPECT_FALSE(WavWriter::create(path(), 48000, 2, &error)) << "nobody is there to read it";
  EXPECT_EQ(error, "cannot write " + path() + ": a WAVE file cannot be a pipe");
  const FileDescriptor reader(open(path().c_str(), O_RDONLY | O_NONBLOCK));
  error.clear();
  EXPECT_FALSE(WavWriter::create(path(), 48000, 2, &error));
  EXPECT_EQ(error, "cannot write " + path() + ": a WAVE file cannot be a pipe");
}

TEST_F(HeadunitSoundFile, TakesTheMixAtThePaceOfTheClock) {
  std::string error;
  Mixer mixer;
  const auto stream =
      std::make_shared<AudioStream>("one", AudioFormat::stereo48k, 1, [](int, unsigned int) {});
  mixer.add(stream);
  {
    ClockedSound sound(&mixer, WavWriter::create(path(), MIX_RATE, MIX_CHANNELS, &error));
    const TimePoint start = TimePoint(std::chrono::seconds(1000));
    EXPECT_EQ(sound.act(start), start + milliseconds(10));
    stream->receive(steady(5, 960));
    EXPECT_EQ(sound.act(start + milliseconds(25)), start + milliseconds(30));
  }
  EXPECT_EQ(content().size(), 44U + 960 * 4) << "20 ms, and nothing of the silence before";
  EXPECT_EQ(content().substr(44, 4), std::string("\x05\0\x05\0", 4));
}

TEST_F(HeadunitSoundFile, IsNamedIfNotEvenItsHeaderFindsRoom) {
  std::string error;
  const FullDisk full(10);
  EXPECT_FALSE(WavWriter::create(path(), 48000, 2, &error));
  EXPECT_EQ(error, "cannot write " + path() + ": File too large");
}

TEST_F(HeadunitSoundFile, TellsItsNameAndTheReasonIfTheDiskIsFullAndKeepsWhatItHas) {
  const LoggedLines log;
  std::string error;
  Mixer mixer;
  const auto stream =
      std::make_shared<AudioStream>("one", AudioFormat::stereo48k, 1, [](int, unsigned int) {});
  mixer.add(stream);
  {
    ClockedSound sound(&mixer, WavWriter::create(path(), MIX_RATE, MIX_CHANNELS, &error));
    stream->receive(steady(5, 4800));
    const FullDisk full(5000);
    const TimePoint start = TimePoint(std::chrono::seconds(1000));
    for (int time = 0; time < 100; time += 10) sound.act(start + milliseconds(time));
    EXPECT_FALSE(sound.finish());
  }
  EXPECT_THAT(log.all(), ElementsAre(HasSubstr("cannot write " + path() + ": File too large; ")));
  EXPECT_EQ(content().substr(40, 4), std::string("\0\x0f\0\0", 4)) << "two periods are whole";
}

TEST_F(HeadunitSoundFile, IsWholeIfTheDiskTakesAllOfIt) {
  const LoggedLines log;
  std::string error;
  for (const bool isFull : {false, true}) {
    Mixer mixer;
    const auto stream =
        std::make_shared<AudioStream>("one", AudioFormat::stereo48k, 1, [](int, unsigned int) {});
    mixer.add(stream);
    ClockedOutput output(&mixer, WavWriter::create(path(), MIX_RATE, MIX_CHANNELS, &error));
    const FullDisk disk(isFull ? 100 : 1'000'000);
    stream->receive(steady(5, 960));
    stream->stop();
    output.finish(milliseconds(20'000));
    EXPECT_EQ(output.isWhole(), !isFull);
  }
  EXPECT_THAT(log.all(), SizeIs(1));
}

TEST_F(HeadunitSoundFile, DoesNotMakeUpForALongStandstill) {
  Mixer mixer;
  ClockedSound sound(&mixer, nullptr);
  const TimePoint start = TimePoint(std::chrono::seconds(1000));
  sound.act(start);
  const TimePoint later = start + std::chrono::hours(1);
  EXPECT_EQ(sound.act(later), later + milliseconds(10));
}

}  // namespace
}  // namespace headunit
