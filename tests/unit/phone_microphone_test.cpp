#include "phone/Microphone.h"

#include <gmock/gmock.h>

#include "phone_head_unit.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr int channel = 3;

struct PhoneMicrophone : testing::Test {
  phone::PhoneLink link{linkOptions()};
  HandMadeHeadUnit headUnit{&link};
  Service service;
  std::string format;
  Bytes recorded;
  bool diskFull = false;
  std::string sinkError;
  std::vector<std::string> problems;
  std::unique_ptr<phone::Microphone> microphone;

  PhoneMicrophone() {
    headUnit.bringsUp();
    service.set_id(9);
    AudioConfiguration* audio = service.mutable_media_source_service()->mutable_audio_config();
    audio->set_sampling_rate(16000);
    audio->set_number_of_bits(16);
    audio->set_number_of_channels(1);
    microphone = std::make_unique<phone::Microphone>(
        &link, 8,
        [this](int rate, int channels, std::string* error) { return makeSink(rate, channels, error); },
        [this](const phone::LinkEnd& end) { problems.push_back(end.words()); });
  }
  phone::PcmSink makeSink(int rate, int channels, std::string* error) {
    format = std::to_string(rate) + "/" + std::to_string(channels);
    *error = sinkError;
    if (!sinkError.empty()) return nullptr;
    return [this](const std::uint8_t* samples, std::size_t length) {
      if (!diskFull) recorded.insert(recorded.end(), samples, samples + length);
      return !diskFull;
    };
  }
  void asks() {
    microphone->open(channel, service);
    headUnit.hears();
    headUnit.answersOpen(channel);
  }
  void opens() {
    asks();
    headUnit.sends(channel, bytes("80 06 08 00 10 07"));  // MicrophoneResponse: status 0, session 7
    headUnit.hears();
  }
};

TEST_F(PhoneMicrophone, OpensItsChannelAndThenItself) {
  microphone->open(channel, service);
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(bytes("00 07 08 00 10 09")));
  headUnit.answersOpen(channel);
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(bytes("80 05 08 01 20 08")));  // open, 8 unacknowledged
  EXPECT_FALSE(microphone->isOpen());
  headUnit.sends(channel, bytes("80 06 08 00 10 07"));
  EXPECT_TRUE(microphone->isOpen());
  EXPECT_EQ(format, "16000/1");
}

TEST_F(PhoneMicrophone, RecordsAndAcknowledgesEveryMessage) {
  opens();
  headUnit.sends(channel, mediaData(1, bytes("01 02 03 04")));
  headUnit.sends(channel, mediaData(2, bytes("05 06")));
  EXPECT_EQ(recorded, bytes("01 02 03 04 05 06"));
  // Ack: session 7, one message
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(bytes("80 04 08 07 10 01"), bytes("80 04 08 07 10 01")));
  EXPECT_EQ(microphone->stats().messages, 2U);
  EXPECT_EQ(microphone->stats().bytes, 6U);
}

TEST_F(PhoneMicrophone, AMessageOfNoSoundIsAcknowledgedToo) {
  opens();
  headUnit.sends(channel, mediaData(1, {}));
  EXPECT_THAT(headUnit.hears(), SizeIs(1));
  EXPECT_EQ(microphone->stats().messages, 1U);
  EXPECT_EQ(microphone->stats().damaged, 0U);
}

TEST_F(PhoneMicrophone, RefusesDamagedSoundButGoesOn) {
  opens();
  headUnit.sends(channel, bytes("00 00 00 00 00 00 00 00 01"));  // a timestamp of 7 bytes
  headUnit.sends(channel, mediaData(2, bytes("05 06 07")));      // a sample and a half
  EXPECT_EQ(microphone->stats().damaged, 2U);
  EXPECT_THAT(headUnit.hears(), SizeIs(2)) << "they are acknowledged all the same";
  headUnit.sends(channel, mediaData(3, bytes("08 09")));
  EXPECT_EQ(recorded, bytes("08 09"));
}

TEST_F(PhoneMicrophone, RecordsNothingThatComesBeforeTheResponse) {
  asks();
  headUnit.hears();
  headUnit.sends(channel, mediaData(1, bytes("01 02")));
  EXPECT_THAT(recorded, IsEmpty());
  EXPECT_THAT(headUnit.hears(), IsEmpty());
}

TEST_F(PhoneMicrophone, TellsWhenTheHeadUnitDoesNotOpenIt) {
  asks();
  headUnit.sends(channel, bytes("80 06 08 F9 FF FF FF FF FF FF FF FF 01"));  // MicrophoneResponse: status -7
  EXPECT_THAT(problems, ElementsAre(HasSubstr("does not open its microphone (status -7)")));
  headUnit.sends(channel, mediaData(1, bytes("01 02")));
  EXPECT_THAT(recorded, IsEmpty());
}

TEST_F(PhoneMicrophone, TellsWhenTheResponseDoesNotParse) {
  asks();
  headUnit.sends(channel, bytes("80 06 10 07"));  // no status
  EXPECT_THAT(problems, ElementsAre(HasSubstr("MicrophoneResponse does not parse")));
}

TEST_F(PhoneMicrophone, TellsWhenTheChannelIsRefused) {
  microphone->open(channel, service);
  headUnit.answersOpen(channel, STATUS_INVALID_CHANNEL);
  EXPECT_THAT(problems, ElementsAre(HasSubstr("refused the microphone's channel")));
}

TEST_F(PhoneMicrophone, TellsWhenItsFormatCannotBeRecorded) {
  service.mutable_media_source_service()->mutable_audio_config()->set_number_of_bits(24);
  opens();
  EXPECT_THAT(problems, ElementsAre(HasSubstr("a format that cannot be recorded")));
  EXPECT_FALSE(microphone->isOpen());
}

TEST_F(PhoneMicrophone, TellsWhenThereIsNoPlaceForTheSound) {
  sinkError = "The folder is missing.";
  opens();
  EXPECT_THAT(problems, ElementsAre(HasSubstr("phone: The folder is missing.")));
}

TEST_F(PhoneMicrophone, ClosesTheMicrophoneWhenTheDiskIsFull) {
  opens();
  diskFull = true;
  headUnit.sends(channel, mediaData(1, bytes("01 02")));
  EXPECT_THAT(problems, ElementsAre(HasSubstr("cannot write")));
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(bytes("80 04 08 07 10 01"), bytes("80 05 08 00")));
}

TEST_F(PhoneMicrophone, ClosesAndStillTakesWhatWasOnItsWay) {
  opens();
  microphone->close();
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(bytes("80 05 08 00")));
  headUnit.sends(channel, mediaData(1, bytes("01 02")));
  EXPECT_EQ(recorded, bytes("01 02"));
  microphone->close();
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(bytes("80 04 08 07 10 01"))) << "it is closed once";
}

TEST_F(PhoneMicrophone, ClosingOneThatNeverOpenedSaysNothing) {
  microphone->close();
  EXPECT_THAT(headUnit.hears(), IsEmpty());
}

TEST_F(PhoneMicrophone, TheEndOfTheLinkIsNoProblemOfItsOwn) {
  opens();
  link.streamEnded();
  EXPECT_THAT(problems, IsEmpty());
}

}  // namespace
}  // namespace test
