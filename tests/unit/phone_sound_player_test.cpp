#include "phone/SoundPlayer.h"

#include <gmock/gmock.h>

#include "phone_head_unit.h"

namespace test {
namespace {

using phone::Micros;
using phone::SoundPlayer;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// Blocks of two bytes, numbered from 1, each of the length that is asked for.
struct NumberedSound : phone::PcmSource {
  int count = 0;
  int given = 0;
  explicit NumberedSound(int blocks) : count(blocks) {}
  int sampleRate() const override { return 48000; }
  int channels() const override { return 2; }
  bool next(int milliseconds, phone::PcmBlock* block) override {
    if (given == count) return false;
    block->timestampUs = std::int64_t{1000} * milliseconds * given++;
    block->data = {static_cast<std::uint8_t>(given), 0};
    return true;
  }
};

void addSink(ServiceDiscoveryResponse* services, int id, AudioStreamType type, MediaCodecType codec, int rate,
             int channels, int bits = 16) {
  Service* service = services->add_services();
  service->set_id(id);
  service->mutable_media_sink_service()->set_available_type(codec);
  service->mutable_media_sink_service()->set_audio_type(type);
  AudioConfiguration* format = service->mutable_media_sink_service()->add_audio_configs();
  format->set_sampling_rate(static_cast<std::uint32_t>(rate));
  format->set_number_of_bits(static_cast<std::uint32_t>(bits));
  format->set_number_of_channels(static_cast<std::uint32_t>(channels));
}

ServiceDiscoveryResponse carWithSpeakers() {
  ServiceDiscoveryResponse services;
  addSink(&services, 4, AUDIO_STREAM_MEDIA, MEDIA_CODEC_1, 48000, 2);
  addSink(&services, 5, AUDIO_STREAM_GUIDANCE, MEDIA_CODEC_2, 16000, 1);
  addSink(&services, 6, AUDIO_STREAM_TELEPHONY, MEDIA_CODEC_1, 16000, 1);
  return services;
}

const Bytes READY_FOR_EIGHT = bytes("80 03 08 02 10 08 18 00");  // Config: ready, 8 unacknowledged, index 0

struct PhoneSoundPlayer : testing::Test {
  phone::PhoneLink link{linkOptions()};
  HandMadeHeadUnit headUnit{&link};
  phone::Timers timers;
  phone::MediaClock clock;
  int blocks = 3;
  std::vector<std::string> made;
  std::vector<std::string> problems;
  std::string factoryError;
  std::unique_ptr<SoundPlayer> player;

  void play(const ServiceDiscoveryResponse& services, const std::vector<AudioStreamType>& wanted,
            bool paced = true) {
    headUnit.bringsUp();
    player = std::make_unique<SoundPlayer>(&link, &timers, &clock, paced);
    player->onProblem([this](AudioStreamType type, const phone::LinkEnd& end) {
      problems.push_back(std::string(phone::nameOf(type)) + ": " + end.words());
    });
    player->start(services, wanted,
                  [this](AudioStreamType type, int rate, int channels,
                         std::string* error) -> std::unique_ptr<phone::PcmSource> {
                    made.push_back(std::string(phone::nameOf(type)) + " " + std::to_string(rate) + "/" +
                                   std::to_string(channels));
                    *error = factoryError;
                    if (!factoryError.empty()) return nullptr;
                    return std::make_unique<NumberedSound>(blocks);
                  });
  }
  void playMedia(bool paced = true) {
    play(carWithSpeakers(), {AUDIO_STREAM_MEDIA}, paced);
    headUnit.hears();
    headUnit.answersOpen(1);
    headUnit.hears();
    headUnit.sends(1, READY_FOR_EIGHT);
  }
};

TEST_F(PhoneSoundPlayer, OpensEverySinkWhoseStreamIsWanted) {
  play(carWithSpeakers(), {AUDIO_STREAM_MEDIA, AUDIO_STREAM_TELEPHONY, AUDIO_STREAM_SYSTEM_AUDIO});
  const auto heard = headUnit.hears();
  ASSERT_THAT(heard, SizeIs(2));
  EXPECT_EQ(heard[0].channel, 1);
  EXPECT_EQ(heard[0].payload, bytes("00 07 08 00 10 04"));
  EXPECT_EQ(heard[1].channel, 2);
  EXPECT_EQ(heard[1].payload, bytes("00 07 08 00 10 06"));
}

TEST_F(PhoneSoundPlayer, SetsUpTheCodecThatTheSinkOffers) {
  play(carWithSpeakers(), {AUDIO_STREAM_GUIDANCE});
  headUnit.hears();
  headUnit.answersOpen(1);
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(bytes("80 00 08 02")));
}

TEST_F(PhoneSoundPlayer, SendsSoundAsMediaDataWithItsTime) {
  playMedia();
  EXPECT_THAT(headUnit.hearsMessages(),
              ElementsAre(bytes("80 01 08 01 10 00"),                      // Start: session 1, index 0
                          bytes("00 00 00 00 00 00 00 00 00 00 01 00"),    // 0 us
                          bytes("00 00 00 00 00 00 00 00 4E 20 02 00"),    // 20000 us
                          bytes("00 00 00 00 00 00 00 00 9C 40 03 00")));  // 40000 us
  EXPECT_THAT(made, ElementsAre("media 48000/2"));
}

TEST_F(PhoneSoundPlayer, NumbersSessionsByTheirChannels) {
  play(carWithSpeakers(), {AUDIO_STREAM_MEDIA, AUDIO_STREAM_GUIDANCE});
  headUnit.answersOpen(2);
  headUnit.hears();
  headUnit.sends(2, READY_FOR_EIGHT);
  EXPECT_EQ(headUnit.hearsMessages().at(0), bytes("80 01 08 02 10 00"));
  EXPECT_THAT(made, ElementsAre("guidance 16000/1"));
}

TEST_F(PhoneSoundPlayer, SendsATenthOfASecondAhead) {
  blocks = 8;
  playMedia();
  EXPECT_THAT(headUnit.hears(), SizeIs(1 + 6)) << "Start, and what is heard at 0 to 100 ms";
  timers.advance(19'999);
  EXPECT_THAT(headUnit.hears(), IsEmpty());
  timers.advance(20'000);
  EXPECT_THAT(headUnit.hears(), SizeIs(1));
}

TEST_F(PhoneSoundPlayer, WaitsForAcknowledgements) {
  blocks = 20;
  playMedia();
  for (Micros now = 0; now < 200'000; now += 1000) timers.advance(now);
  EXPECT_THAT(headUnit.hears(), SizeIs(1 + 8));
  headUnit.sends(1, bytes("80 04 08 01 10 02"));  // Ack: session 1, two
  EXPECT_THAT(headUnit.hears(), SizeIs(2)) << "they are overdue";
  EXPECT_EQ(player->voices().at(0)->stream->stats().acknowledged, 2U);
}

TEST_F(PhoneSoundPlayer, FollowsThePictureWhereItIsNotPaced) {
  blocks = 10;
  playMedia(false);
  EXPECT_THAT(headUnit.hears(), SizeIs(1 + 6));
  timers.advance(1'000'000);
  EXPECT_THAT(headUnit.hears(), IsEmpty());
  player->onPictureSent(40'000);
  EXPECT_THAT(headUnit.hears(), SizeIs(2));
}

TEST_F(PhoneSoundPlayer, IgnoresThePictureWhereItIsPaced) {
  blocks = 10;
  playMedia();
  headUnit.hears();
  player->onPictureSent(1'000'000);
  EXPECT_THAT(headUnit.hears(), IsEmpty());
}

TEST_F(PhoneSoundPlayer, AStreamThatFailsLeavesTheOthersAlone) {
  play(carWithSpeakers(), {AUDIO_STREAM_MEDIA, AUDIO_STREAM_GUIDANCE});
  headUnit.answersOpen(1, STATUS_INVALID_CHANNEL);
  EXPECT_THAT(problems, ElementsAre(HasSubstr("media: head unit: refused the channel")));
  headUnit.answersOpen(2);
  headUnit.hears();
  headUnit.sends(2, READY_FOR_EIGHT);
  EXPECT_THAT(headUnit.hears(), SizeIs(1 + 3));
  EXPECT_THAT(problems, SizeIs(1));
}

TEST_F(PhoneSoundPlayer, TellsWhySoundCannotBeMade) {
  factoryError = "The file is no sound.";
  playMedia();
  EXPECT_THAT(problems, ElementsAre(HasSubstr("media: phone: The file is no sound.")));
}

TEST_F(PhoneSoundPlayer, RefusesASinkWithoutAPlayableFormat) {
  ServiceDiscoveryResponse services;
  addSink(&services, 4, AUDIO_STREAM_MEDIA, MEDIA_CODEC_1, 48000, 2, 24);
  play(services, {AUDIO_STREAM_MEDIA});
  headUnit.answersOpen(1);
  headUnit.sends(1, READY_FOR_EIGHT);
  EXPECT_THAT(problems, ElementsAre(HasSubstr("allows no format of 16 bits")));
}

TEST_F(PhoneSoundPlayer, StopsEveryStreamThatRuns) {
  blocks = 20;
  playMedia();
  headUnit.hears();
  player->stop();
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(bytes("80 02")));
  ASSERT_TRUE(player->voices().at(0)->end);
  EXPECT_TRUE(player->voices().at(0)->end->clean);
}

struct PhoneAudioChoice : testing::Test {
  MediaSinkService sink;
  void offer(std::uint32_t rate, std::uint32_t channels, std::uint32_t bits = 16) {
    AudioConfiguration* format = sink.add_audio_configs();
    format->set_sampling_rate(rate);
    format->set_number_of_bits(bits);
    format->set_number_of_channels(channels);
  }
};

TEST_F(PhoneAudioChoice, PrefersTheCustomaryFormatOfTheStream) {
  offer(44100, 2);
  offer(16000, 1);
  offer(48000, 2);
  sink.set_audio_type(AUDIO_STREAM_MEDIA);
  EXPECT_EQ(phone::chooseAudio(sink, {0, 1, 2}), 2U);
  sink.set_audio_type(AUDIO_STREAM_SYSTEM_AUDIO);
  EXPECT_EQ(phone::chooseAudio(sink, {0, 1, 2}), 1U);
}

TEST_F(PhoneAudioChoice, TakesTheFirstPlayableOtherwise) {
  offer(48000, 2, 24);
  offer(4000, 1);
  offer(48000, 9);
  offer(44100, 2);
  sink.set_audio_type(AUDIO_STREAM_MEDIA);
  EXPECT_EQ(phone::chooseAudio(sink, {7, 0, 1, 2, 3}), 3U);
}

TEST_F(PhoneAudioChoice, ChoosesNothingThatIsNotAllowed) {
  offer(48000, 2);
  sink.set_audio_type(AUDIO_STREAM_MEDIA);
  EXPECT_EQ(phone::chooseAudio(sink, {}), std::nullopt);
  EXPECT_EQ(phone::chooseAudio(sink, {1}), std::nullopt);
}

}  // namespace
}  // namespace test
