#include "Controller.h"

#include "EndpointTest.h"

// The control channel once the link is up. Its bring-up is in LinkStart_test.cpp.

namespace test {
namespace {

using testing::Each;

struct ControllerTest : EndpointTest {
  MockControllerCallbacks& host = link.host();
  Controller& controller = link.controller();

  /// What the phone gets in answer to a message of these bytes.
  std::vector<Bytes> answerTo(const char* message) {
    EXPECT_EQ(link.sends(0, bytes(message)), STATUS_SUCCESS);
    return link.sent(0);
  }
};

TEST_F(ControllerTest, APingIsToldToTheHostAndAnsweredWithItsOwnTimestamp) {
  EXPECT_CALL(host, pingRequest(300, true)).WillOnce([&] { EXPECT_THAT(link.sent(0), IsEmpty()); });
  EXPECT_THAT(answerTo("00 0B"                  // MESSAGE_PING_REQUEST
                       "08 AC 02"               // timestamp 300
                       "10 01"),                // bug_report
              ElementsAre(bytes("00 0C"         // MESSAGE_PING_RESPONSE
                                "08 AC 02")));  // timestamp 300
}

TEST_F(ControllerTest, APingWithoutABugReportAsksForNone) {
  EXPECT_CALL(host, pingRequest(-1, false));
  EXPECT_THAT(answerTo("00 0B 08 FF FF FF FF FF FF FF FF FF 01"),
              ElementsAre(bytes("00 0C 08 FF FF FF FF FF FF FF FF FF 01")));
}

TEST_F(ControllerTest, TheAnswerToAPingIsFlaggedForEncryption) {
  link.sends(0, bytes("00 0B 08 AC 02"));
  EXPECT_THAT(link.sentFrames(), ElementsAre(bytes("00"     // channel 0
                                                   "0B"     // FRAME_ATOMIC, encrypted, no control frame
                                                   "00 05"  // length
                                                   "00 0C"  // MESSAGE_PING_RESPONSE
                                                   "08 AC 02")));  // timestamp 300
}

TEST_F(ControllerTest, APingResponseIsToldToTheHost) {
  EXPECT_CALL(host, pingResponse(300));
  EXPECT_THAT(answerTo("00 0C 08 AC 02"), IsEmpty());
}

TEST_F(ControllerTest, ANavigationFocusRequestIsToldToTheHost) {
  EXPECT_CALL(host, navigationFocusRequest(NAV_FOCUS_2));
  EXPECT_THAT(answerTo("00 0D 08 02"), IsEmpty());
}

TEST_F(ControllerTest, ANavigationFocusRequestWithoutOrWithAnInvalidTypeReadsAsTheDefault) {
  EXPECT_CALL(host, navigationFocusRequest(NAV_FOCUS_1)).Times(2);
  EXPECT_THAT(answerTo("00 0D"), IsEmpty());
  EXPECT_THAT(answerTo("00 0D 08 09"), IsEmpty());
}

TEST_F(ControllerTest, AByeByeRequestIsToldToTheHostAndNotAnswered) {
  EXPECT_CALL(host, byeByeRequest(BYE_BYE_REASON_1));
  EXPECT_THAT(answerTo("00 0F 08 01"), IsEmpty());
}

TEST_F(ControllerTest, AByeByeResponseIsToldToTheHostAndNothingStops) {
  EXPECT_CALL(host, byeByeResponse());
  EXPECT_CALL(host, pingResponse(1));
  EXPECT_THAT(answerTo("00 10"), IsEmpty());
  EXPECT_TRUE(link.channels().isRunning());
  EXPECT_THAT(answerTo("00 0C 08 01"), IsEmpty());
}

TEST_F(ControllerTest, AVoiceSessionIsToldToTheHost) {
  EXPECT_CALL(host, voiceSessionNotification(VOICE_SESSION_2));
  EXPECT_CALL(host, voiceSessionNotification(VOICE_SESSION_1)).Times(2);
  answerTo("00 11 08 02");
  answerTo("00 11");
  answerTo("00 11 08 03");
}

TEST_F(ControllerTest, AnAudioFocusRequestIsLoggedByNameAndToldToTheHost) {
  InSequence order;
  EXPECT_CALL(host, audioFocusRequest(AUDIO_FOCUS_GAIN)).WillOnce([&] {
    EXPECT_EQ(log.critical().size(), 1U);
  });
  EXPECT_CALL(host, audioFocusRequest(AUDIO_FOCUS_GAIN_TRANSIENT));
  EXPECT_CALL(host, audioFocusRequest(AUDIO_FOCUS_GAIN_TRANSIENT_MAY_DUCK));
  EXPECT_CALL(host, audioFocusRequest(AUDIO_FOCUS_RELEASE));
  for (const char* message : {"00 12 08 01", "00 12 08 02", "00 12 08 03", "00 12 08 04"}) {
    EXPECT_THAT(answerTo(message), IsEmpty());
  }
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] NOTIFY : AUDIO_FOCUS_GAIN",
                                     "critical [LHU] NOTIFY : AUDIO_FOCUS_GAIN_TRANSIENT",
                                     "critical [LHU] NOTIFY : AUDIO_FOCUS_GAIN_TRANSIENT_MAY_DUCK",
                                     "critical [LHU] NOTIFY : AUDIO_FOCUS_RELEASE"));
}

TEST_F(ControllerTest, AnAudioFocusRequestWithAnUnknownNumberStillReachesTheHost) {
  EXPECT_CALL(host, audioFocusRequest(static_cast<AudioFocusRequestType>(9)));
  EXPECT_THAT(answerTo("00 12 08 09"), IsEmpty());
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] NOTIFY : NOT_VALID"));
}

TEST_F(ControllerTest, AnUnknownAudioFocusNumberIsFoundAmongOtherFields) {
  EXPECT_CALL(host, audioFocusRequest(static_cast<AudioFocusRequestType>(9)));
  EXPECT_THAT(answerTo("00 12"
                       "1A 02 08 07"  // field 3, whose bytes look like a request
                       "08 09"        // request
                       "20 05"),      // field 4
              IsEmpty());
}

TEST_F(ControllerTest, AnAudioFocusRequestWithoutARequestIsRefused) {
  EXPECT_CALL(host, audioFocusRequest).Times(0);
  for (const char* message : {"00 12", "00 12 10 01", "00 12 08", "00 12 0A 01 01", "00 12 08 09 FF"}) {
    EXPECT_THAT(answerTo(message), ElementsAre(unexpectedMessage())) << message;
  }
  EXPECT_THAT(log.debug(), Each(parseFailureIn("Controller")));
  EXPECT_EQ(log.debug().size(), 5U);
}

TEST_F(ControllerTest, AnUnparsableMessageIsLoggedAndAnsweredAsUnexpected) {
  EXPECT_CALL(host, pingRequest).Times(0);
  EXPECT_CALL(host, byeByeRequest).Times(0);
  const char* const damaged[] = {
      "00 05 0A 05 00",  // a length beyond the end
      "00 0B",           // timestamp is required
      "00 0B 10 01",     //
      "00 0C",           // timestamp is required
      "00 0D FF",        // half a tag
      "00 0F",           // reason is required
      "00 0F 08 00",     // 0 is no reason
      "00 0F 08 02",     // nor is 2
      "00 10 08",        // half a field
      "00 11 08",        //
  };
  for (const char* message : damaged)
    EXPECT_THAT(answerTo(message), ElementsAre(unexpectedMessage())) << message;
  EXPECT_THAT(log.debug(), Each(parseFailureIn("Controller")));
  EXPECT_EQ(log.debug().size(), std::size(damaged));
  EXPECT_THAT(log.critical(), Each("[LHU] Sending unexpected message on channel 0"));
  EXPECT_EQ(log.critical().size(), std::size(damaged));
}

TEST_F(ControllerTest, EveryOtherTypeIsUnexpectedThoseThatThisSideSendsIncluded) {
  for (const char* message :
       {"00 00", "00 01", "00 04 08 00", "00 06", "00 07", "00 08", "00 09", "00 0A", "00 0E 08 01",
        "00 13 08 01", "00 14", "00 FF", "01 0B 08 01", "80 00", "FF FF"}) {
    EXPECT_THAT(answerTo(message), ElementsAre(unexpectedMessage())) << message;
  }
  EXPECT_THAT(log.debug(), IsEmpty());
}

TEST_F(ControllerTest, UnknownFieldsAreSkipped) {
  EXPECT_CALL(host, pingResponse(1));
  EXPECT_THAT(answerTo("00 0C 08 01 F8 01 05"), IsEmpty());
}

TEST_F(ControllerTest, SendsAPing) {
  controller.sendPingRequest(300, true);
  controller.sendPingRequest(-1, false);
  EXPECT_THAT(link.sent(0), ElementsAre(bytes("00 0B 08 AC 02 10 01"),
                                        bytes("00 0B 08 FF FF FF FF FF FF FF FF FF 01 10 00")));
}

TEST_F(ControllerTest, SendsTheAudioFocusWithBothFields) {
  controller.setAudioFocus(AUDIO_FOCUS_STATE_7, false);
  controller.setAudioFocus(AUDIO_FOCUS_STATE_1, true);
  EXPECT_THAT(link.sent(0), ElementsAre(bytes("00 13 08 07 10 00"), bytes("00 13 08 01 10 01")));
}

TEST_F(ControllerTest, SendsTheNavigationFocus) {
  controller.setNavigationFocus(NAV_FOCUS_2);
  EXPECT_THAT(link.sent(0), ElementsAre(bytes("00 0E 08 02")));
}

TEST_F(ControllerTest, SendsByeByeBothWays) {
  controller.sendByeByeRequest(BYE_BYE_REASON_1);
  controller.sendByeByeResponse();
  EXPECT_THAT(link.sent(0), ElementsAre(bytes("00 0F 08 01"), bytes("00 10")));
}

TEST_F(ControllerTest, WhatItSendsIsFlaggedForEncryption) {
  controller.sendByeByeResponse();
  EXPECT_THAT(link.sentFrames(), ElementsAre(bytes("00 0B 00 02 00 10")));
}

TEST_F(ControllerTest, ACallbackMayAnswerAtOnce) {
  EXPECT_CALL(host, byeByeRequest).WillOnce([&] { controller.sendByeByeResponse(); });
  EXPECT_CALL(host, pingRequest).WillOnce([&] { controller.sendPingRequest(7, false); });
  EXPECT_THAT(answerTo("00 0F 08 01"), ElementsAre(bytes("00 10")));
  EXPECT_THAT(answerTo("00 0B 08 01"), ElementsAre(bytes("00 0B 08 07 10 00"), bytes("00 0C 08 01")))
      << "the host's words come before the library's own answer";
}

TEST_F(ControllerTest, OnAClosedChannelEverythingIsDropped) {
  link.closes(0);
  controller.sendPingRequest(1, false);
  controller.setAudioFocus(AUDIO_FOCUS_STATE_1, false);
  controller.setNavigationFocus(NAV_FOCUS_1);
  controller.sendByeByeRequest(BYE_BYE_REASON_1);
  controller.sendByeByeResponse();
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

using ControllerDeathTest = ControllerTest;

TEST_F(ControllerDeathTest, ANumberOutsideItsEnumerationStopsTheProcess) {
  EXPECT_DEATH(controller.setAudioFocus(static_cast<AudioFocusStateType>(0), false),
               "::AudioFocusStateType_IsValid\\(value\\)");
  EXPECT_DEATH(controller.setAudioFocus(static_cast<AudioFocusStateType>(8), false),
               "::AudioFocusStateType_IsValid\\(value\\)");
  EXPECT_DEATH(controller.setNavigationFocus(static_cast<NavFocusType>(3)),
               "::NavFocusType_IsValid\\(value\\)");
  EXPECT_DEATH(controller.sendByeByeRequest(static_cast<ByeByeReason>(0)),
               "::ByeByeReason_IsValid\\(value\\)");
}

}  // namespace
}  // namespace test
