#include <gmock/gmock.h>

#include "phone/PhoneSession.h"
#include "phone_head_unit.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr int SCREEN = 1;
constexpr int SPEAKER = 2;
constexpr int SENSORS = 3;
constexpr int INPUT = 4;
constexpr int MICROPHONE = 5;

struct TwoLivePictures : phone::TestPictureSource {
  int given = 0;
  std::uint32_t sequence = 0;
  std::uint32_t shown = 0;
  std::string breaks;
  std::vector<std::uint8_t> codecConfig() override { return {}; }
  std::string problem() const override { return breaks; }
  bool next(phone::AccessUnit* unit) override {
    if (given == 2) return false;
    unit->data = bytes("00 00 00 01 65");
    unit->timestampUs = unit->dueUs = nextDueUs();
    shown = sequence;
    ++given;
    return true;
  }
  int width() const override { return 800; }
  int height() const override { return 480; }
  std::int64_t nextDueUs() const override { return given * 40'000; }
  std::uint32_t shownTouchSequence() const override { return shown; }
  std::uint32_t setTouches(std::vector<phone::TouchMark>) override { return ++sequence; }
};

struct EndlessSilence : phone::PcmSource {
  std::int64_t blocks = 0;
  int sampleRate() const override { return 48000; }
  int channels() const override { return 2; }
  bool next(int milliseconds, phone::PcmBlock* block) override {
    block->timestampUs = 1000 * milliseconds * blocks++;
    block->data = bytes("00 00 00 00");
    return true;
  }
};

ServiceDiscoveryResponse wholeCar() {
  ServiceDiscoveryResponse services;
  const auto add = [&services](int id) {
    Service* service = services.add_services();
    service->set_id(id);
    return service;
  };
  add(1)->mutable_sensor_source_service()->add_sensors()->set_sensor_type(SENSOR_SPEED);
  add(2)->mutable_media_sink_service()->add_video_configs()->set_codec_resolution(VIDEO_800x480);
  MediaSinkService* speaker = add(3)->mutable_media_sink_service();
  AudioConfiguration* format = speaker->add_audio_configs();
  speaker->set_audio_type(AUDIO_STREAM_MEDIA);
  add(4)->mutable_input_source_service()->add_keycodes_supported(3);
  AudioConfiguration* captured = add(5)->mutable_media_source_service()->mutable_audio_config();
  for (AudioConfiguration* each : {format, captured}) {
    each->set_sampling_rate(48000);
    each->set_number_of_bits(16);
    each->set_number_of_channels(2);
  }
  return services;
}

struct PhoneSessionServices : testing::Test {
  phone::PhoneLink link{linkOptions()};
  HandMadeHeadUnit headUnit{&link};
  phone::Timers timers;
  phone::SessionOptions options;
  std::unique_ptr<phone::PhoneSession> session;
  std::string pictureBreaks;

  PhoneSessionServices() {
    options.sounds = {AUDIO_STREAM_MEDIA};
    options.makeSound = [](AudioStreamType, int, int, std::string*) {
      return std::make_unique<EndlessSilence>();
    };
    options.car.recordMicrophone = [](int, int, std::string*) {
      return [](const std::uint8_t*, std::size_t) { return true; };
    };
  }
  void bringUp(const ServiceDiscoveryResponse& services = wholeCar()) {
    session = std::make_unique<phone::PhoneSession>(&link, &timers, options,
                                                    [this](phone::PictureSize, std::string*) {
                                                      auto pictures = std::make_unique<TwoLivePictures>();
                                                      pictures->breaks = pictureBreaks;
                                                      return pictures;
                                                    });
    session->start();
    headUnit.asksVersion();
    headUnit.shakesHands();
    headUnit.agrees();
    headUnit.hears();
    headUnit.sends(0, MESSAGE_SERVICE_DISCOVERY_RESPONSE, services);
  }
  void configures(int channel) {
    headUnit.answersOpen(channel);
    headUnit.sends(channel, bytes("80 03 08 02 10 32 18 00"));  // ready, 50 unacknowledged, index 0
  }
  std::vector<int> channelsHeard() {
    std::vector<int> channels;
    for (const WireFrame& frame : headUnit.hears()) channels.push_back(frame.channel);
    return channels;
  }
};

TEST_F(PhoneSessionServices, OpensAllThatDiscoveryLists) {
  bringUp();
  EXPECT_THAT(headUnit.hearsMessages(),
              ElementsAre(bytes("00 07 08 00 10 02"), bytes("00 07 08 00 10 03"), bytes("00 07 08 00 10 01"),
                          bytes("00 07 08 00 10 04"), bytes("00 07 08 00 10 05")));
}

TEST_F(PhoneSessionServices, LeavesAMicrophoneAloneThatNobodyWantsToHear) {
  options.car.recordMicrophone = nullptr;
  options.sounds = {};
  bringUp();
  EXPECT_THAT(channelsHeard(), ElementsAre(1, 2, 3));
  EXPECT_EQ(session->car().microphone(), nullptr);
}

TEST_F(PhoneSessionServices, TellsWhereThereIsNoMicrophoneToHear) {
  ServiceDiscoveryResponse services = wholeCar();
  services.mutable_services()->RemoveLast();
  bringUp(services);
  EXPECT_THAT(session->troubles(), ElementsAre(HasSubstr("microphone: head unit: offers no microphone")));
}

TEST_F(PhoneSessionServices, MeasuresATouchUntilItsPictureIsSent) {
  bringUp();
  configures(SCREEN);
  headUnit.answersOpen(INPUT);
  headUnit.hears();
  timers.advance(10'000);
  headUnit.sends(INPUT, bytes("80 01 08 07 1A 0C 0A 06 08 64 10 32 18 01 10 00 18 00"));
  EXPECT_EQ(session->car().touches().stats().received, 1U);
  EXPECT_THAT(session->car().touches().stats().latencies, IsEmpty());
  timers.advance(40'000);
  EXPECT_THAT(session->car().touches().stats().latencies, ElementsAre(30'000));
}

TEST_F(PhoneSessionServices, EndsSoundAndMicrophoneWithThePicture) {
  bringUp();
  configures(SCREEN);
  configures(SPEAKER);
  headUnit.answersOpen(SENSORS);
  headUnit.answersOpen(MICROPHONE);
  headUnit.sends(MICROPHONE, bytes("80 06 08 00 10 01"));
  timers.advance(40'000);
  timers.advance(80'000);
  headUnit.hears();
  headUnit.sends(SCREEN, bytes("80 04 08 01 10 02"));
  std::vector<Bytes> heard = headUnit.hearsMessages();
  ASSERT_THAT(heard, SizeIs(4));
  EXPECT_THAT(heard, ElementsAre(bytes("80 02"), bytes("80 02"), bytes("80 05 08 00"), bytes("00 0F 08 01")))
      << "picture, sound, microphone, good-bye";
  headUnit.sends(0, bytes("00 10"));
  EXPECT_TRUE(session->outcome().clean);
  EXPECT_THAT(session->troubles(), IsEmpty());
}

TEST_F(PhoneSessionServices, APictureThatBreaksOffIsATroubleAndNoCleanEnd) {
  pictureBreaks = "the file breaks off";
  bringUp();
  configures(SCREEN);
  timers.advance(40'000);
  timers.advance(80'000);
  headUnit.sends(SCREEN, bytes("80 04 08 01 10 02"));
  EXPECT_THAT(session->troubles(), ElementsAre(HasSubstr("picture: phone: the file breaks off")));
  headUnit.sends(0, bytes("00 10"));
  EXPECT_FALSE(session->outcome().clean);
  EXPECT_THAT(session->outcome().words(), HasSubstr("the file breaks off"));
}

TEST_F(PhoneSessionServices, UnpacedSoundKeepsToThePicture) {
  options.stream.paced = false;
  bringUp();
  configures(SPEAKER);
  EXPECT_EQ(session->sounds().voices().at(0)->stream->stats().units, 6U) << "100 ms ahead of time 0";
  configures(SCREEN);
  EXPECT_EQ(session->sounds().voices().at(0)->stream->stats().units, 8U) << "the picture has come to 40 ms";
}

TEST_F(PhoneSessionServices, ATroubleBesideThePictureDoesNotEndTheLink) {
  bringUp();
  std::vector<std::string> told;
  session->onTrouble([&told](const std::string& what) { told.push_back(what); });
  headUnit.answersOpen(SPEAKER, STATUS_INVALID_CHANNEL);
  headUnit.answersOpen(MICROPHONE, STATUS_INVALID_CHANNEL);
  EXPECT_THAT(told, ElementsAre(HasSubstr("media sound: "), HasSubstr("microphone: ")));
  EXPECT_EQ(session->troubles(), told);
  EXPECT_FALSE(link.end());
}

}  // namespace
}  // namespace test
