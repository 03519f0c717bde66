#include <gmock/gmock.h>

#include <cmath>
#include <numeric>

#include "media_files.h"
#include "phone/media/PcmSource.h"
#include "phone/media/Wav.h"

namespace test::media {
namespace {

using phone::makeTone;
using phone::PcmBlock;
using phone::PcmSource;
using phone::Tone;
using phone::WavAudio;
using phone::WavWriter;
using testing::HasSubstr;
using Bytes = std::vector<std::uint8_t>;
using Samples = std::vector<std::int16_t>;

constexpr Tone TONES[] = {Tone::Media, Tone::Guidance, Tone::System, Tone::Telephony};

Samples samplesOf(const Bytes& pcm) {
  Samples samples;
  for (std::size_t i = 0; i + 1 < pcm.size(); i += 2) {
    samples.push_back(static_cast<std::int16_t>(pcm[i] | pcm[i + 1] << 8));
  }
  return samples;
}

Bytes bytesOf(PcmSource* source, int blockMs, std::size_t most = 10'000'000) {
  Bytes bytes;
  PcmBlock block;
  while (bytes.size() < most && source->next(blockMs, &block)) {
    bytes.insert(bytes.end(), block.data.begin(), block.data.end());
  }
  return bytes;
}

Samples channelOf(const Samples& interleaved, std::size_t channel, std::size_t channels) {
  Samples samples;
  for (std::size_t i = channel; i < interleaved.size(); i += channels) samples.push_back(interleaved[i]);
  return samples;
}

// How strongly one pitch is heard, by Goertzel's method.
double strength(const Samples& samples, double pitch, double sampleRate) {
  const double factor = 2 * std::cos(2 * M_PI * pitch / sampleRate);
  double before = 0;
  double last = 0;
  for (const std::int16_t sample : samples) {
    const double now = sample + factor * last - before;
    before = last;
    last = now;
  }
  const double power = last * last + before * before - factor * last * before;
  return std::sqrt(std::max(power, 0.0)) / static_cast<double>(samples.size());
}

Samples sweep(std::size_t count) {
  Samples samples(count);
  for (std::size_t i = 0; i < count; ++i) samples[i] = static_cast<std::int16_t>(i * 37 % 20011);
  return samples;
}

std::unique_ptr<PcmSource> openSound(const std::string& path, int rate, int channels, bool loop = false) {
  std::string error;
  std::unique_ptr<PcmSource> source = phone::openAudioFile(path, rate, channels, loop, &error);
  EXPECT_TRUE(source) << error;
  return source;
}

TEST(PhoneTone, GivesTheSameSamplesEachTimeHoweverItIsCut) {
  for (const Tone tone : TONES) {
    const Bytes whole = bytesOf(makeTone(tone, 16000, 1, 2000).get(), 2000);
    EXPECT_EQ(whole.size(), 2U * 16000U * 2U);
    EXPECT_EQ(bytesOf(makeTone(tone, 16000, 1, 2000).get(), 20), whole);
    EXPECT_EQ(bytesOf(makeTone(tone, 16000, 1, 2000).get(), 7), whole);
  }
}

TEST(PhoneTone, BlocksHaveTheirLengthAndTime) {
  const auto tone = makeTone(Tone::Media, 48000, 2);
  PcmBlock block;
  for (int i = 0; i < 10; ++i) {
    ASSERT_TRUE(tone->next(10, &block));
    EXPECT_EQ(block.data.size(), 480U * 4U);
    EXPECT_EQ(block.timestampUs, i * 10'000);
  }
}

TEST(PhoneTone, BlocksOfPartSamplesAddUpExactly) {
  const auto tone = makeTone(Tone::System, 44100, 1);
  PcmBlock block;
  std::size_t sum = 0;
  for (int i = 0; i < 1000; ++i) {
    ASSERT_TRUE(tone->next(1, &block));
    EXPECT_GE(block.data.size(), 44U * 2U);
    EXPECT_LE(block.data.size(), 45U * 2U);
    sum += block.data.size() / 2;
  }
  EXPECT_EQ(sum, 44100U);
}

TEST(PhoneTone, EndsAfterItsLengthAndStaysEnded) {
  const auto tone = makeTone(Tone::Guidance, 16000, 1, 25);
  PcmBlock block;
  ASSERT_TRUE(tone->next(20, &block));
  EXPECT_EQ(block.data.size(), 640U);
  ASSERT_TRUE(tone->next(20, &block));
  EXPECT_EQ(block.data.size(), 160U) << "the rest";
  EXPECT_FALSE(tone->next(20, &block));
  EXPECT_FALSE(tone->next(20, &block));
}

TEST(PhoneTone, EachIsKnownByItsPitches) {
  for (const Tone played : TONES) {
    const Samples samples = samplesOf(bytesOf(makeTone(played, 16000, 1, 4000).get(), 100));
    double weakestOwn = 1e9;
    for (const double pitch : phone::tonePitches(played))
      weakestOwn = std::min(weakestOwn, strength(samples, pitch, 16000));
    for (const Tone other : TONES) {
      if (other == played) continue;
      for (const double pitch : phone::tonePitches(other)) {
        EXPECT_GT(weakestOwn, 4 * strength(samples, pitch, 16000)) << pitch << " Hz is no pitch of this tone";
      }
    }
  }
}

TEST(PhoneTone, IsNeitherSilentNorCut) {
  for (const Tone tone : TONES) {
    const Samples samples = samplesOf(bytesOf(makeTone(tone, 48000, 2, 3000).get(), 50));
    const auto [low, high] = std::minmax_element(samples.begin(), samples.end());
    EXPECT_GT(*high, 8000);
    EXPECT_LT(*high, 25000);
    EXPECT_LT(*low, -8000);
    EXPECT_GT(*low, -25000);
  }
}

TEST(PhoneTone, LeftAndRightDiffer) {
  const Samples samples = samplesOf(bytesOf(makeTone(Tone::Media, 48000, 2, 300).get(), 50));
  const auto loudness = [](const Samples& channel) {
    return std::accumulate(channel.begin(), channel.end(), 0.0,
                           [](double sum, int s) { return sum + std::abs(s); });
  };
  EXPECT_GT(loudness(channelOf(samples, 0, 2)), 1.5 * loudness(channelOf(samples, 1, 2)));
}

TEST(PhoneWav, WhatIsWrittenIsReadBack) {
  const TemporaryFolder folder;
  std::string error;
  const auto writer = WavWriter::create(folder / "a.wav", 16000, 2, &error);
  ASSERT_TRUE(writer) << error;
  ASSERT_TRUE(writer->write("\x01\x02\x03\x84", 4));
  ASSERT_TRUE(writer->write("\xff\xff\x00\x80", 4));
  EXPECT_EQ(writer->bytesWritten(), 8);
  const std::optional<WavAudio> audio = phone::readWav(folder / "a.wav", &error);
  ASSERT_TRUE(audio) << error;
  EXPECT_EQ(audio->sampleRate, 16000);
  EXPECT_EQ(audio->channels, 2);
  EXPECT_THAT(audio->samples, testing::ElementsAre(0x0201, static_cast<std::int16_t>(0x8403), -1, -32768));
}

TEST(PhoneWav, TheFileIsLaidOutByteForByte) {
  const TemporaryFolder folder;
  std::string error;
  ASSERT_TRUE(WavWriter::create(folder / "a.wav", 48000, 2, &error)->write("abcd", 4));
  std::ifstream stream(folder / "a.wav", std::ios::binary);
  const std::string file{std::istreambuf_iterator<char>(stream), {}};
  const std::string expected{
      "RIFF\x28\0\0\0WAVE"        // 40 bytes follow
      "fmt \x10\0\0\0"            // 16 bytes of format:
      "\x01\0\x02\0"              // PCM, 2 channels
      "\x80\xbb\0\0\0\xee\x02\0"  // 48,000 samples and 192,000 bytes a second
      "\x04\0\x10\0"              // 4 bytes for both channels, 16 bits each
      "data\x04\0\0\0abcd",
      48};
  EXPECT_EQ(file, expected);
}

TEST(PhoneWav, IsWholeAfterEveryWriteWhileStillOpen) {
  const TemporaryFolder folder;
  std::string error;
  const auto writer = WavWriter::create(folder / "a.wav", 8000, 1, &error);
  for (std::size_t count = 0; count < 5; ++count) {
    const std::optional<WavAudio> audio = phone::readWav(folder / "a.wav", &error);
    ASSERT_TRUE(audio) << error;
    EXPECT_EQ(audio->samples.size(), count);
    EXPECT_EQ(std::filesystem::file_size(folder / "a.wav"), 44 + 2 * count);
    ASSERT_TRUE(writer->write("ab", 2));
  }
}

TEST(PhoneWav, AFileCutShortGivesTheWholeFramesThatAreThere) {
  const TemporaryFolder folder;
  std::string error;
  ASSERT_TRUE(WavWriter::create(folder / "a.wav", 8000, 2, &error)->write("abcdefgh", 8));
  std::filesystem::resize_file(folder / "a.wav", 44 + 7);
  const std::optional<WavAudio> audio = phone::readWav(folder / "a.wav", &error);
  ASSERT_TRUE(audio) << error;
  EXPECT_EQ(audio->samples.size(), 2U);
}

TEST(PhoneWav, WhatIsNoWaveFileIsRefusedInWords) {
  const TemporaryFolder folder;
  std::string error;
  EXPECT_FALSE(phone::readWav(folder / "none.wav", &error));
  EXPECT_THAT(error, HasSubstr("cannot be read: No such file"));
  EXPECT_FALSE(phone::readWav(folder.path(), &error));
  EXPECT_THAT(error, HasSubstr("cannot be read: Is a directory"));
  const std::string head("RIFF\xff\xff\xff\xffWAVE", 12);
  for (const std::string& text : {std::string(), std::string("RIFF"), std::string("a text of some length"),
                                  head, head + "fmt ", head + std::string("fmt \xff\xff\xff\xff", 8),
                                  head + std::string("fmt \x10\0\0\0\x03\0\x02\0", 12)}) {
    writeFile(folder / "a.wav", text);
    EXPECT_FALSE(phone::readWav(folder / "a.wav", &error));
    EXPECT_THAT(error, HasSubstr("is no WAVE file of 16-bit samples"));
  }
  writeFile(folder / "a.wav",
            head + std::string("fmt \x10\0\0\0\x01\0\0\0\x40\x1f\0\0\0\0\0\0\0\0\x10\0", 24));
  EXPECT_FALSE(phone::readWav(folder / "a.wav", &error));
  EXPECT_THAT(error, HasSubstr("is damaged"));
}

TEST(PhoneWav, APlaceThatCannotBeWrittenIsToldInWords) {
  std::string error;
  EXPECT_EQ(WavWriter::create("/nowhere/a.wav", 8000, 1, &error), nullptr);
  EXPECT_THAT(error, HasSubstr("'/nowhere/a.wav' cannot be written: No such file or directory."));
}

TEST(PhoneWav, AFullDiskIsNoticed) {
  std::string error;
  EXPECT_EQ(WavWriter::create("/dev/full", 8000, 1, &error), nullptr);
  EXPECT_THAT(error, HasSubstr("No space left"));
}

TEST(PhoneAudioFile, OfTheWantedFormatIsGivenSampleForSample) {
  const TemporaryFolder folder;
  const Samples samples = sweep(2 * 4800);
  for (const auto& [name, codec] : {std::pair{"a.wav", "pcm_s16le"}, {"a.flac", "flac"}}) {
    SoundRecipe recipe;
    recipe.codec = codec;
    writeSound(folder / name, recipe, samples);
    EXPECT_EQ(samplesOf(bytesOf(openSound(folder / name, 48000, 2).get(), 7)), samples) << name;
  }
}

TEST(PhoneAudioFile, BlocksHaveTheirLengthAndTimeAndTheLastIsShorter) {
  const TemporaryFolder folder;
  writeSound(folder / "a.wav", {}, sweep(2 * 1200));
  const auto source = openSound(folder / "a.wav", 48000, 2);
  PcmBlock block;
  ASSERT_TRUE(source->next(20, &block));
  EXPECT_EQ(block.data.size(), 960U * 4U);
  EXPECT_EQ(block.timestampUs, 0);
  ASSERT_TRUE(source->next(20, &block));
  EXPECT_EQ(block.data.size(), 240U * 4U);
  EXPECT_EQ(block.timestampUs, 20'000);
  EXPECT_FALSE(source->next(20, &block));
  EXPECT_FALSE(source->next(20, &block));
}

TEST(PhoneAudioFile, IsResampledAndMixedToWhatIsWanted) {
  const TemporaryFolder folder;
  const Bytes tone = bytesOf(makeTone(Tone::Telephony, 44100, 2, 1000).get(), 100);
  SoundRecipe recipe;
  recipe.sampleRate = 44100;
  writeSound(folder / "a.wav", recipe, samplesOf(tone));
  const auto source = openSound(folder / "a.wav", 16000, 1);
  EXPECT_EQ(source->sampleRate(), 16000);
  EXPECT_EQ(source->channels(), 1);
  const Samples samples = samplesOf(bytesOf(source.get(), 20));
  EXPECT_NEAR(static_cast<double>(samples.size()), 16000, 40);
  EXPECT_GT(strength(samples, 466.16, 16000), 10 * strength(samples, 880, 16000));
  EXPECT_GT(strength(samples, 554.37, 16000), 10 * strength(samples, 698.46, 16000));
}

TEST(PhoneAudioFile, LoopsWithoutAGap) {
  const TemporaryFolder folder;
  const Samples samples = sweep(2 * 1000);
  writeSound(folder / "a.wav", {}, samples);
  const auto source = openSound(folder / "a.wav", 48000, 2, true);
  Samples thrice = samplesOf(bytesOf(source.get(), 10, 3 * samples.size() * 2));
  thrice.resize(3 * samples.size());
  Samples expected;
  for (int i = 0; i < 3; ++i) expected.insert(expected.end(), samples.begin(), samples.end());
  EXPECT_EQ(thrice, expected);
}

TEST(PhoneAudioFile, LoopsAlsoWhereItIsResampled) {
  const TemporaryFolder folder;
  SoundRecipe recipe;
  recipe.sampleRate = 44100;
  writeSound(folder / "a.wav", recipe, samplesOf(bytesOf(makeTone(Tone::Media, 44100, 2, 400).get(), 100)));
  const Samples once = samplesOf(bytesOf(openSound(folder / "a.wav", 16000, 1).get(), 20));
  const std::size_t length = once.size();
  Samples samples = samplesOf(bytesOf(openSound(folder / "a.wav", 16000, 1, true).get(), 20, 3 * 2 * length));
  ASSERT_GE(samples.size(), 3 * length);
  for (std::size_t pass = 0; pass < 3; ++pass) {
    const auto begin = samples.begin() + static_cast<std::ptrdiff_t>(pass * length);
    EXPECT_EQ(Samples(begin, begin + static_cast<std::ptrdiff_t>(length)), once) << "pass " << pass;
  }
}

TEST(PhoneAudioFile, TooShortToGiveASingleSampleEndsAlsoWhenLooping) {
  const TemporaryFolder folder;
  std::string error;
  const Bytes samples(3000 * 4);
  const auto writer = WavWriter::create(folder / "a.wav", 6'404'992, 2, &error);
  ASSERT_TRUE(writer->write(samples.data(), samples.size()));
  for (const bool loop : {false, true}) {
    EXPECT_EQ(phone::openAudioFile(folder / "a.wav", 16000, 1, loop, &error), nullptr);
    EXPECT_THAT(error, HasSubstr("cannot be converted to 16000 Hz."));
  }
}

TEST(PhoneAudioFile, WhatHasNoSoundIsRefusedInWords) {
  const TemporaryFolder folder;
  std::string error;
  writeFile(folder / "a.mp3", std::string(3000, 'x'));
  EXPECT_EQ(phone::openAudioFile(folder / "a.mp3", 48000, 2, false, &error), nullptr);
  EXPECT_THAT(error, HasSubstr("a.mp3'"));
  VideoRecipe silent;
  silent.frames = 2;
  writeNumberedVideo(folder / "a.mp4", silent);
  EXPECT_EQ(phone::openAudioFile(folder / "a.mp4", 48000, 2, false, &error), nullptr);
  EXPECT_THAT(error, HasSubstr("holds no sound."));
  EXPECT_EQ(phone::openAudioFile(folder / "none.mp3", 48000, 2, false, &error), nullptr);
  EXPECT_THAT(error, HasSubstr("o such file"));
  EXPECT_EQ(phone::openAudioFile(folder / "a.mp4", 48000, 0, false, &error), nullptr);
  EXPECT_THAT(error, HasSubstr("48000 Hz with 0 channels is not supported"));
}

}  // namespace
}  // namespace test::media
