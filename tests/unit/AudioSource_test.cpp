#include "AudioSource.h"

#include <map>

#include "ManyThreads.h"
#include "ServiceTest.h"

namespace test {
namespace {

struct MicrophoneHost : IAudioSourceCallbacks {
  MOCK_METHOD(void, ackReceived, (int, unsigned int), (override));
  MOCK_METHOD(int, microphoneRequest, (bool, bool, bool, int), (override));
};

struct AudioSourceTest : ServiceTest {
  shared_ptr<IAudioSourceCallbacks> held;
  MicrophoneHost& host = mock<MicrophoneHost>(&held);
  AudioSource source{SERVICE, link.router(), held};

  AudioSourceTest() { open(&source); }

  static shared_ptr<IoBuffer> block(const Bytes& audio) {
    shared_ptr<IoBuffer> buffer(new IoBuffer(static_cast<unsigned int>(audio.size())));
    std::copy(audio.begin(), audio.end(), buffer->content());
    return buffer;
  }

  void requests(const char* hex) { sends(message(MESSAGE_MICROPHONE_REQUEST, bytes(hex))); }
};

TEST_F(AudioSourceTest, TellsDiscoveryItsCodecAndItsOneFormat) {
  source.setCodecType(4);
  source.setConfig(16000, 16, 1);
  EXPECT_EQ(advertised(), bytes("0A 0F"     // services
                                "08 07"     // id 7
                                "2A 0B"     // media_source_service
                                "08 04"     // available_type 4
                                "12 07"     // audio_config
                                "08 80 7D"  // sampling_rate 16000
                                "10 10"     // number_of_bits 16
                                "18 01"));  // number_of_channels 1
}

TEST_F(AudioSourceTest, IsDiscoveredWithZeroesBeforeAConfig) {
  EXPECT_EQ(advertised(), bytes("0A 0E 08 07 2A 0A 08 01 12 06 08 00 10 00 18 00"));
}

TEST_F(AudioSourceTest, StoresAConfigUncheckedAndSendsNothing) {
  source.setConfig(-1, 0, 300);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  EXPECT_EQ(advertised(), bytes("0A 13 08 07 2A 0F 08 01 12 0B"
                                "08 FF FF FF FF 0F"  // sampling_rate, unsigned on the wire
                                "10 00"
                                "18 AC 02"));
}

TEST_F(AudioSourceTest, EndsTheProcessAtDiscoveryWithACodecThatDoesNotExist) {
  for (const int type : {0, 5, -1}) {
    source.setCodecType(type);
    EXPECT_DEATH(advertised(), "::MediaCodecType_IsValid\\(value\\)") << type;
  }
}

TEST_F(AudioSourceTest, SendsAudioBehindATypeAndABigEndianTimestamp) {
  source.send(0x0102030405060708, block(bytes("AA BB CC")));
  EXPECT_THAT(sent(), ElementsAre(bytes("00 00"                    // MESSAGE_MEDIA_DATA
                                        "01 02 03 04 05 06 07 08"  // timestamp
                                        "AA BB CC")));
}

TEST_F(AudioSourceTest, SendsAnEmptyBufferAsThePrefixAlone) {
  source.send(0xFFFFFFFFFFFFFFFF, shared_ptr<IoBuffer>(new IoBuffer()));
  EXPECT_THAT(sent(), ElementsAre(bytes("00 00 FF FF FF FF FF FF FF FF")));
}

TEST_F(AudioSourceTest, SendsTheContentOfABufferThatWasNarrowed) {
  const shared_ptr<IoBuffer> buffer = block(bytes("11 22 33 44 55"));
  buffer->start = 1;
  buffer->end = 4;
  source.send(0, buffer);
  EXPECT_THAT(sent(), ElementsAre(bytes("00 00 00 00 00 00 00 00 00 00 22 33 44")));
}

TEST_F(AudioSourceTest, SendsABlockLongerThanAFrameWhole) {
  const Bytes audio = pattern(40000);
  source.send(1, block(audio));
  EXPECT_THAT(sent(), ElementsAre(mediaData(1, audio)));
}

TEST_F(AudioSourceTest, LeavesTheHostsBufferAsItWasAndFreeToReuse) {
  const shared_ptr<IoBuffer> buffer = block(bytes("11 22"));
  source.send(0, buffer);
  buffer->content()[0] = 0x99;
  EXPECT_EQ(Bytes(buffer->content(), buffer->size()), bytes("99 22"));
  EXPECT_THAT(sent(), ElementsAre(bytes("00 00 00 00 00 00 00 00 00 00 11 22")));
}

TEST_F(AudioSourceTest, SendsWhileTheMicrophoneWasNeverOpenedOrIsClosedAgain) {
  source.send(1, block(bytes("AA")));
  requests("08 00");
  source.send(2, block(bytes("BB")));
  EXPECT_EQ(sent().size(), 3U);  // both, and the answer between them
}

TEST_F(AudioSourceTest, DropsAudioSilentlyOnAClosedChannel) {
  close();
  source.send(1, block(bytes("AA")));
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(AudioSourceTest, AsksTheHostToOpenWithAllThatThePhoneWants) {
  EXPECT_CALL(host, microphoneRequest(true, true, false, 5)).WillOnce(Return(300));
  requests(
      "08 01"                                           // open
      "10 01"                                           // anc_enabled
      "18 00"                                           // ec_enabled
      "20 05");                                         // max_unacked
  EXPECT_THAT(sent(), ElementsAre(bytes("80 06"         // MESSAGE_MICROPHONE_RESPONSE
                                        "08 00"         // status: success
                                        "10 AC 02")));  // session_id 300
}

TEST_F(AudioSourceTest, TakesAMicrophoneRequestByItsBytes) {
  EXPECT_CALL(host, microphoneRequest(true, false, false, 0)).WillOnce(Return(7));
  sends(
      bytes("80 05"                                  // MESSAGE_MICROPHONE_REQUEST
            "08 01"));                               // open
  EXPECT_THAT(sent(), ElementsAre(bytes("80 06"      // MESSAGE_MICROPHONE_RESPONSE
                                        "08 00"      // status: success
                                        "10 07")));  // session_id 7
}

TEST_F(AudioSourceTest, TellsEchoCancellingFromNoiseCancelling) {
  EXPECT_CALL(host, microphoneRequest(true, false, true, -1)).WillOnce(Return(1));
  requests("08 01 18 01 20 FF FF FF FF FF FF FF FF FF 01");  // max_unacked is signed
}

TEST_F(AudioSourceTest, ReadsAbsentWishesAsFalseAndZero) {
  EXPECT_CALL(host, microphoneRequest(true, false, false, 0)).WillOnce(Return(1));
  requests("08 01");
}

TEST_F(AudioSourceTest, PassesNothingOfAClosingRequestOn) {
  EXPECT_CALL(host, microphoneRequest(false, false, false, 0)).WillOnce(Return(3));
  requests("08 00 10 01 18 01 20 05");
  EXPECT_THAT(sent(), ElementsAre(bytes("80 06 08 00 10 03")));  // answered like an opening one
}

TEST_F(AudioSourceTest, SendsASessionOfZero) {
  EXPECT_CALL(host, microphoneRequest).WillOnce(Return(0));
  EXPECT_EQ(routed(message(MESSAGE_MICROPHONE_REQUEST, bytes("08 01"))), STATUS_SUCCESS);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 06 08 00 10 00")));
}

TEST_F(AudioSourceTest, RefusesWithTheHostsStatusAndNoSession) {
  EXPECT_CALL(host, microphoneRequest).WillOnce(Return(-1));
  EXPECT_EQ(routed(message(MESSAGE_MICROPHONE_REQUEST, bytes("08 01"))), STATUS_INVALID_STATE);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 06"
                                        "08 FF FF FF FF FF FF FF FF FF 01")));  // status -1
}

TEST_F(AudioSourceTest, RefusesAClosingRequestToo) {
  EXPECT_CALL(host, microphoneRequest).WillOnce(Return(-2147483647 - 1));
  EXPECT_EQ(routed(message(MESSAGE_MICROPHONE_REQUEST, bytes("08 00"))), STATUS_INVALID_STATE);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 06 08 80 80 80 80 F8 FF FF FF FF 01")));
}

TEST_F(AudioSourceTest, AnswersARefusalByTheResponseAlone) {
  EXPECT_CALL(host, microphoneRequest).WillOnce(Return(-1));
  requests("08 01");
  EXPECT_EQ(sent().size(), 1U);
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(AudioSourceTest, LetsTheHostAnswerByItself) {
  source.microphoneResponse(STATUS_SUCCESS, -1);
  source.microphoneResponse(1, 7);  // any other status, and the session stays behind
  EXPECT_THAT(sent(),
              ElementsAre(bytes("80 06 08 00 10 FF FF FF FF FF FF FF FF FF 01"), bytes("80 06 08 01")));
}

TEST_F(AudioSourceTest, DropsAResponseOnAClosedChannel) {
  close();
  source.microphoneResponse(STATUS_SUCCESS, 1);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(AudioSourceTest, PassesAcknowledgementsOnOfWhateverSession) {
  EXPECT_CALL(host, ackReceived(-1, 4294967295));
  EXPECT_EQ(routed(bytes("80 04"                             // MESSAGE_ACK
                         "08 FF FF FF FF FF FF FF FF FF 01"  // session_id -1
                         "10 FF FF FF FF 0F")),              // ack
            STATUS_SUCCESS);
}

TEST_F(AudioSourceTest, ReadsAnAbsentCountOfAnAcknowledgementAsZero) {
  EXPECT_CALL(host, ackReceived(2, 0));
  sends(message(MESSAGE_ACK, bytes("08 02")));
}

TEST_F(AudioSourceTest, RefusesRecordsThatLackARequiredField) {
  EXPECT_CALL(host, ackReceived).Times(0);
  EXPECT_CALL(host, microphoneRequest).Times(0);
  for (const int type : {MESSAGE_ACK, MESSAGE_MICROPHONE_REQUEST}) {
    expectUnparsable(message(type, bytes("10 01")), "AudioSource");
  }
}

TEST_F(AudioSourceTest, AnswersTheMessagesOfASinkAsUnexpectedWithoutALineOfItsOwn) {
  expectUnknownTypes({MESSAGE_SETUP, MESSAGE_START, MESSAGE_STOP, MESSAGE_MEDIA_DATA, MESSAGE_CODEC_CONFIG,
                      MESSAGE_CONFIG, MESSAGE_MICROPHONE_RESPONSE});
}

TEST_F(AudioSourceTest, AsksTheHostForNothingWhenTheChannelCloses) {
  EXPECT_CALL(host, microphoneRequest).Times(0);
  close();
  EXPECT_FALSE(source.isChannelOpen());
}

TEST_F(AudioSourceTest, SendsTheBlocksOfManyThreadsWholeAndEachThreadsInOrder) {
  constexpr unsigned int THREADS = 4;
  constexpr unsigned int BLOCKS = 500;
  onManyThreads(
      THREADS,
      [this](unsigned int thread) {
        for (unsigned int i = 0; i < BLOCKS; ++i) {
          const std::uint64_t timestamp = static_cast<std::uint64_t>(thread) << 32 | i;
          source.send(timestamp, block(filled(i % 50, static_cast<std::uint8_t>(thread))));
        }
      },
      [this] { sends(message(MESSAGE_ACK, bytes("08 01 10 01"))); });

  std::map<unsigned int, unsigned int> next;
  for (const Bytes& each : sent()) {
    const unsigned int thread = each[5];
    const unsigned int i = next[thread]++;
    EXPECT_EQ(each, mediaData(static_cast<std::uint64_t>(thread) << 32 | i,
                              filled(i % 50, static_cast<std::uint8_t>(thread))));
  }
  for (unsigned int thread = 0; thread < THREADS; ++thread) EXPECT_EQ(next[thread], BLOCKS);
}

TEST_F(AudioSourceTest, SurvivesSendsWhileTheChannelClosesAndOpens) {
  const Bytes openRequest = message(MESSAGE_CHANNEL_OPEN_REQUEST, bytes("08 00 10 07"));
  onManyThreads(
      3,
      [this](unsigned int) {
        for (unsigned int i = 0; i < 1000; ++i) source.send(i, block(bytes("AA BB")));
      },
      [&] {
        close();
        link.feeds(frame(CHANNEL, ATOMIC | CONTROL | ENCRYPTED, openRequest));
      });

  for (const Bytes& each : sent()) {
    EXPECT_TRUE(each == bytes("00 08 08 00") || part(each, 10) == bytes("AA BB"));  // the channel's, or audio
  }
  source.send(1, block(bytes("CC")));
  EXPECT_THAT(sent(), ElementsAre(mediaData(1, bytes("CC"))));
}

}  // namespace
}  // namespace test
