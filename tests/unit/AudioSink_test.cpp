#include "AudioSink.h"

#include "ServiceTest.h"

namespace test {
namespace {

struct AudioHost : IAudioSinkCallbacks {
  MOCK_METHOD(void, dataAvailable,
              (int, unsigned long long, shared_ptr<IoBuffer> const&, void*, unsigned int), (override));
  MOCK_METHOD(void, codecConfig, (void*, unsigned int), (override));
  MOCK_METHOD(int, setup, (int), (override));
  MOCK_METHOD(void, playbackStart, (int), (override));
  MOCK_METHOD(void, playbackStop, (int), (override));
};

struct AudioSinkTest : ServiceTest {
  shared_ptr<IAudioSinkCallbacks> held;
  AudioHost& host = mock<AudioHost>(&held);
  AudioSink sink{SERVICE, link.router(), held};

  AudioSinkTest() { open(&sink); }
};

TEST_F(AudioSinkTest, NumbersItsFormatsFromZeroInTheOrderAdded) {
  EXPECT_EQ(sink.addSupportedConfiguration(48000, 16, 2), 0);
  EXPECT_EQ(sink.addSupportedConfiguration(16000, 16, 1), 1);
  EXPECT_EQ(sink.getNumberOfConfigurations(), 2U);
}

TEST_F(AudioSinkTest, TellsDiscoveryItsCodecItsStreamAndItsFormatsInTheirOrder) {
  sink.setCodecType(2);
  sink.setStreamType(AUDIO_STREAM_TELEPHONY);
  sink.addSupportedConfiguration(48000, 16, 2);
  sink.addSupportedConfiguration(16000, 8, 1);
  EXPECT_EQ(advertised(), bytes("0A 1B"        // services
                                "08 07"        // id 7
                                "1A 17"        // media_sink_service
                                "08 02"        // available_type 2
                                "10 04"        // audio_type: telephony
                                "1A 08"        // audio_configs
                                "08 80 F7 02"  // sampling_rate 48000
                                "10 10"        // number_of_bits 16
                                "18 02"        // number_of_channels 2
                                "1A 07"        // audio_configs
                                "08 80 7D"     // sampling_rate 16000
                                "10 08"        // number_of_bits 8
                                "18 01"));     // number_of_channels 1
}

TEST_F(AudioSinkTest, KeepsNumbersOfZeroInAFormat) {
  sink.addSupportedConfiguration(0, 0, 0);
  EXPECT_EQ(advertised(), bytes("0A 10 08 07 1A 0C"
                                "08 01"                       // available_type: as constructed
                                "10 03"                       // audio_type: media, as constructed
                                "1A 06 08 00 10 00 18 00"));  // all three present
}

TEST_F(AudioSinkTest, IsDiscoveredWithoutAnyFormat) {
  EXPECT_EQ(advertised(), bytes("0A 08 08 07 1A 04 08 01 10 03"));
}

TEST_F(AudioSinkTest, IsDiscoveredWithAllFormatsHoweverManyAreAllowed) {
  sink.addSupportedConfiguration(1, 2, 3);
  sink.addSupportedConfiguration(4, 5, 6);
  unsigned int allowed = 1;
  ASSERT_TRUE(sink.resetAllowedConfigurations(&allowed, 1));
  EXPECT_EQ(advertised(), bytes("0A 18 08 07 1A 14 08 01 10 03"
                                "1A 06 08 01 10 02 18 03"
                                "1A 06 08 04 10 05 18 06"));
}

TEST_F(AudioSinkTest, EndsTheProcessAtDiscoveryWithAStreamTypeThatDoesNotExist) {
  for (const int type : {0, 5, -1}) {
    sink.setStreamType(static_cast<AudioStreamType>(type));
    EXPECT_DEATH(advertised(), "::AudioStreamType_IsValid\\(value\\)") << type;
  }
}

TEST_F(AudioSinkTest, EndsTheProcessAtDiscoveryWithACodecThatDoesNotExist) {
  for (const int type : {0, 5, -1}) {
    sink.setCodecType(type);
    EXPECT_DEATH(advertised(), "::MediaCodecType_IsValid\\(value\\)") << type;
  }
}

TEST_F(AudioSinkTest, AnswersAnAcceptedSetupWithConfigOnlyAfterTheHostWasAsked) {
  sink.setMaxUnacked(300);
  sink.addSupportedConfiguration(48000, 16, 2);
  sink.addSupportedConfiguration(16000, 16, 1);
  EXPECT_CALL(host, setup(4)).WillOnce([&](int) {
    EXPECT_THAT(sent(), IsEmpty());
    return 0;
  });
  sends(message(MESSAGE_SETUP, bytes("08 04")));
  EXPECT_THAT(sent(), ElementsAre(bytes("80 03"     // MESSAGE_CONFIG
                                        "08 02"     // status: ready
                                        "10 AC 02"  // max_unacked 300
                                        "18 00"     // configuration_indices
                                        "18 01")));
}

TEST_F(AudioSinkTest, PassesOnEveryCodecForTheHostToJudge) {
  sink.setCodecType(1);
  for (int type = 1; type <= 4; ++type) {
    EXPECT_CALL(host, setup(type));
    EXPECT_EQ(routed(message(MESSAGE_SETUP, bytes("08") + filled(1, static_cast<std::uint8_t>(type)))), 0);
  }
}

TEST_F(AudioSinkTest, LeavesARefusedSetupUnansweredWhateverTheHostReturned) {
  for (const int refusal : {-1, 1, -8, 2147483647}) {
    EXPECT_CALL(host, setup(1)).WillRepeatedly(Return(refusal));
    EXPECT_EQ(routed(message(MESSAGE_SETUP, bytes("08 01"))), STATUS_INVALID_CONFIGURATION);
    sends(message(MESSAGE_SETUP, bytes("08 01")));
    EXPECT_THAT(sent(), IsEmpty()) << refusal;
  }
}

TEST_F(AudioSinkTest, NamesItsStreamInTheLogAtEachStartBeforeTheHostHears) {
  EXPECT_CALL(host, playbackStart(7)).Times(2).WillRepeatedly([&](int) {
    EXPECT_EQ(log.all().back(), "critical [LHU] AudioSink : playbackStart : AUDIO_STREAM_MEDIA");
  });
  sends(message(MESSAGE_START, bytes("08 07 10 00")));
  sends(message(MESSAGE_START, bytes("08 07 10 00")));
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] AudioSink : playbackStart : AUDIO_STREAM_MEDIA",
                                     "critical [LHU] AudioSink : playbackStart : AUDIO_STREAM_MEDIA"));
}

TEST_F(AudioSinkTest, NamesItsStreamInTheLogAtEachStopBeforeTheHostHears) {
  sink.setStreamType(AUDIO_STREAM_GUIDANCE);
  sends(message(MESSAGE_START, bytes("08 09 10 00")));
  log.clear();
  EXPECT_CALL(host, playbackStop(9)).Times(2).WillRepeatedly([&](int) {
    EXPECT_EQ(log.all().back(), "critical [LHU] AudioSink : playbackStop : AUDIO_STREAM_GUIDANCE");
  });
  sends(message(MESSAGE_STOP));
  sends(message(MESSAGE_STOP));
  EXPECT_EQ(log.all().size(), 2U);
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(AudioSinkTest, StartsWithAConfigurationIndexOutOfRangeLikeWithAnyOther) {
  EXPECT_CALL(host, playbackStart(1));
  EXPECT_EQ(routed(message(MESSAGE_START, bytes("08 01 10 E7 07"))), STATUS_SUCCESS);  // index 999 of none
}

TEST_F(AudioSinkTest, HandsOverMediaBytesInsideTheReceivedBufferWithSessionAndTimestamp) {
  sends(message(MESSAGE_START, bytes("08 05 10 00")));
  shared_ptr<IoBuffer> kept;
  EXPECT_CALL(host, dataAvailable(5, 258, _, _, 3))
      .WillOnce([&](int, unsigned long long, auto& buffer, void* data, unsigned int length) {
        EXPECT_EQ(data, buffer->content() + 10);
        EXPECT_EQ(Bytes(data, length), bytes("AA BB CC"));
        kept = buffer;
      });
  sends(
      bytes("00 00"                    // MESSAGE_MEDIA_DATA
            "00 00 00 00 00 00 01 02"  // timestamp 258, most significant byte first
            "AA BB CC"));
  EXPECT_EQ(Bytes(kept->content(), kept->size()), bytes("00 00 00 00 00 00 00 00 01 02 AA BB CC"));
}

TEST_F(AudioSinkTest, HandsOverAMediaMessageWithoutMediaBytes) {
  EXPECT_CALL(host, dataAvailable(0, 0xFFFFFFFFFFFFFFFF, _, _, 0));
  sends(mediaData(0xFFFFFFFFFFFFFFFF, {}));
}

TEST_F(AudioSinkTest, RefusesAMediaMessageShorterThanItsTimestamp) {
  EXPECT_CALL(host, dataAvailable).Times(0);
  expectUnparsable(bytes("00 00 00 00 00 00 00 00 01"), "MediaSinkBase");
}

TEST_F(AudioSinkTest, HandsOverCodecConfiguration) {
  EXPECT_CALL(host, codecConfig(_, 2)).WillOnce([](void* data, unsigned int length) {
    EXPECT_EQ(Bytes(data, length), bytes("12 10"));
  });
  sends(bytes("00 01 12 10"));
}

TEST_F(AudioSinkTest, AnswersAVideoFocusRequestAsUnexpectedWithoutALineOfItsOwn) {
  expectRefused(message(MESSAGE_VIDEO_FOCUS_REQUEST_NOTIFICATION, bytes("10 01")), IsEmpty());
}

TEST_F(AudioSinkTest, LogsAMessageThatItDoesNotKnow) {
  EXPECT_EQ(routed(message(MESSAGE_ACK, bytes("08 01"))), STATUS_UNEXPECTED_MESSAGE);
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] Failed to dispatch message of type 32772 size=4"));
}

TEST_F(AudioSinkTest, RefusesASetupOfACodecThatDoesNotExist) {
  EXPECT_CALL(host, setup).Times(0);
  expectUnparsable(message(MESSAGE_SETUP, bytes("08 05")), "MediaSinkBase");
}

TEST_F(AudioSinkTest, AcknowledgesFramesAndReturnsFalse) {
  EXPECT_FALSE(sink.ackFrames(7, 300));
  EXPECT_THAT(sent(), ElementsAre(bytes("80 04"         // MESSAGE_ACK
                                        "08 07"         // session_id 7
                                        "10 AC 02")));  // ack 300
}

TEST_F(AudioSinkTest, ReturnsFalseForAnAcknowledgementThatAClosedChannelDrops) {
  close();
  EXPECT_FALSE(sink.ackFrames(7, 1));
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(AudioSinkTest, ReturnsTrueForAnAcknowledgementThatCouldNotBeQueued) {
  link.channels().unregisterChannel(CHANNEL);
  EXPECT_TRUE(sink.ackFrames(7, 1));
}

TEST_F(AudioSinkTest, TellsTheHostNothingOfAChannelThatCloses) {
  sends(message(MESSAGE_START, bytes("08 05 10 00")));
  EXPECT_CALL(host, playbackStop).Times(0);
  close();
  EXPECT_FALSE(sink.isChannelOpen());
}

}  // namespace
}  // namespace test
