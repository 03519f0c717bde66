#include "EndpointTest.h"
#include "FailingCalls.h"
#include "SecureLink.h"

// From the version request to the AuthResponse.

namespace test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

const char VERSION_LINE[] = "[LHU] VTP Version : VTP_1.0_001_160829";
const char FAILURE_LINE[] = "[LHU] Shutting down connection due to authentication failure.";

struct VersionTest : EndpointTest {};

TEST_F(VersionTest, TheHeadUnitAsksFirstInTheClear) {
  EXPECT_EQ(link.receiver().start(), STATUS_SUCCESS);
  EXPECT_THAT(link.sentFrames(), ElementsAre(bytes("00"         // channel 0
                                                   "03"         // FRAME_ATOMIC, plain
                                                   "00 06"      // length
                                                   "00 01"      // MESSAGE_VERSION_REQUEST
                                                   "00 01"      // major 1
                                                   "00 00")));  // minor 0
  EXPECT_THAT(log.all(),
              ElementsAre("critical [LHU] sendVersionRequest() :: Starting link, car major=1 minor=0"));
}

TEST_F(VersionTest, TheRequestIsQueuedBeforeItIsLogged) {
  int queued = 0;
  const EventAtPost post([&] {
    ++queued;
    EXPECT_THAT(log.all(), IsEmpty());
  });
  link.receiver().start();
  EXPECT_EQ(queued, 1);
}

TEST_F(VersionTest, OnAChannelThatThePhoneHasClosedNothingIsSentThoughItsNumberIsTaken) {
  link.closes(0);
  EXPECT_EQ(link.channels().registerChannel(0, 0), STATUS_SUCCESS);
  EXPECT_EQ(link.receiver().start(), STATUS_SUCCESS);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(VersionTest, WithoutAChannelNothingIsSentButTheLineIsLogged) {
  VantryReceiver receiver;
  EXPECT_EQ(receiver.start(), STATUS_SUCCESS);
  EXPECT_THAT(log.all(),
              ElementsAre("critical [LHU] sendVersionRequest() :: Starting link, car major=1 minor=0"));
}

TEST_F(VersionTest, ARefusalIsLoggedAndLeavesTheLinkIdle) {
  EXPECT_CALL(link.host(), versionResponse).Times(0);
  EXPECT_CALL(link.host(), unrecoverableError).Times(0);
  link.feeds(frame(0, ATOMIC,
                   bytes("00 02"   // MESSAGE_VERSION_RESPONSE
                         "00 02"   // major 2
                         "01 03"   // minor 259
                         "01")));  // verdict: refused
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] handleVersionResponse() :: "
                                     "Phone reported version major=2 minor=259"));
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(VersionTest, AnyVerdictButZeroRefuses) {
  EXPECT_CALL(link.host(), versionResponse).Times(0);
  for (const char* verdict : {"01", "02", "80", "FF"}) {
    link.feeds(frame(0, ATOMIC, bytes("00 02 00 01 00 00") + bytes(verdict)));
  }
}

TEST_F(VersionTest, AfterARefusalDiscoveryIsUnexpected) {
  EXPECT_CALL(link.host(), serviceDiscoveryRequest).Times(0);
  link.feeds(frame(0, ATOMIC, bytes("00 02 00 01 00 00 01")));
  link.feeds(frame(0, ATOMIC, bytes("00 05")));
  EXPECT_THAT(link.sent(0), ElementsAre(unexpectedMessage()));
}

TEST_F(VersionTest, TheLatestVerdictCounts) {
  const Bytes accepted = frame(0, ATOMIC, bytes("00 02 00 01 00 00 00"));
  const Bytes refused = frame(0, ATOMIC, bytes("00 02 00 01 00 00 01"));
  const Bytes discovery = frame(0, ATOMIC, bytes("00 05"));
  testing::MockFunction<void()> acceptedAgain;
  InSequence order;
  EXPECT_CALL(acceptedAgain, Call);
  EXPECT_CALL(link.host(), serviceDiscoveryRequest);

  link.feeds(accepted);
  link.feeds(refused);
  link.feeds(discovery);
  EXPECT_THAT(link.sent(0), ElementsAre(unexpectedMessage()));

  acceptedAgain.Call();
  link.feeds(accepted);
  link.feeds(discovery);
}

TEST_F(VersionTest, BeforeAVersionDiscoveryIsUnexpected) {
  EXPECT_CALL(link.host(), serviceDiscoveryRequest).Times(0);
  link.feeds(frame(0, ATOMIC, bytes("00 05")));
  EXPECT_THAT(link.sent(0), ElementsAre(unexpectedMessage()));
}

TEST_F(VersionTest, AResponseThatIsTooShortIsRefusedAndTheLinkLives) {
  EXPECT_CALL(link.host(), versionResponse).Times(0);
  const Bytes whole = bytes("00 02 00 01 00 00 00");
  for (std::size_t size = 2; size < whole.size(); ++size) {
    link.feeds(frame(0, ATOMIC, part(whole, 0, size)));
    EXPECT_THAT(link.sent(0), ElementsAre(unexpectedMessage())) << size;
  }
  EXPECT_EQ(log.debug().size(), 5U);
  EXPECT_THAT(log.debug(), testing::Each(parseFailureIn("LinkStart")));
  EXPECT_TRUE(link.channels().isRunning());
}

struct HandshakeTest : testing::Test {
  LogCapture log;
  SecureLink link;
  MockControllerCallbacks& host = link.host();
};

TEST_F(HandshakeTest, AnAcceptedVersionIsToldToTheHostBeforeTheHandshakeBegins) {
  EXPECT_CALL(host, versionResponse(0xFFFF, 259)).WillOnce([&] {
    EXPECT_THAT(link.sentFrames(), IsEmpty());
    EXPECT_THAT(log.all(), ElementsAre("critical [LHU] handleVersionResponse() :: "
                                       "Phone reported version major=65535 minor=259"));
  });
  link.feeds(frame(0, ATOMIC, bytes("00 02 FF FF 01 03 00 EE EE")));  // bytes behind the verdict are ignored
  const std::vector<Bytes> wire = link.sentFrames();
  ASSERT_EQ(wire.size(), 1U);
  EXPECT_EQ(parseFrame(wire[0]).flags, ATOMIC) << "plain";
  EXPECT_EQ(part(parseFrame(wire[0]).payload, 0, 4), bytes("00 03"     // MESSAGE_SSL_HANDSHAKE
                                                           "16 03"));  // a handshake record of TLS
}

TEST_F(HandshakeTest, ItsStepsAreLoggedBeforeTheFirstFlightIsQueued) {
  std::vector<std::string> lines;
  const EventAtPost queued([&] { lines = log.all(); });
  link.acceptsVersion();
  EXPECT_THAT(lines, ElementsAre(StartsWith("critical [LHU] handleVersionResponse()"),
                                 MatchesRegex("critical \\[LHU\\] ssl state=[^,]+, ret: -1, err: 2")));
}

TEST_F(HandshakeTest, ItsSecondFlightLeavesInTheClearToo) {
  link.acceptsVersion();
  link.sendsHandshake(link.nextFlight());
  const std::vector<Bytes> wire = link.sentFrames();
  ASSERT_EQ(wire.size(), 1U);
  const WireFrame flight = parseFrame(wire[0]);
  EXPECT_EQ(flight.channel, 0);
  EXPECT_EQ(flight.flags, ATOMIC) << "plain";
  EXPECT_EQ(part(flight.payload, 0, 4), bytes("00 03"     // MESSAGE_SSL_HANDSHAKE
                                              "16 03"));  // a handshake record of TLS
}

TEST_F(HandshakeTest, EndsWithAnAuthResponseInTheClear) {
  InSequence order;
  EXPECT_CALL(host, versionResponse(1, 0));
  EXPECT_CALL(host, authenticationCompleted(STATUS_SUCCESS)).WillOnce([&] {
    EXPECT_THAT(link.sentFrames(), IsEmpty()) << "the host hears of it before the phone";
    EXPECT_EQ(log.critical().back(), VERSION_LINE);
  });
  link.acceptsVersion();
  link.sendsHandshake(link.nextFlight());
  link.sendsHandshake(link.nextFlight());
  EXPECT_TRUE(link.phone().established());
  EXPECT_THAT(link.sentFrames(), ElementsAre(bytes("00"         // channel 0
                                                   "03"         // FRAME_ATOMIC, plain
                                                   "00 04"      // length
                                                   "00 04"      // MESSAGE_AUTH_RESPONSE
                                                   "08 00")));  // STATUS_SUCCESS
}

TEST_F(HandshakeTest, LogsEachStep) {
  link.bringUp();
  EXPECT_THAT(log.critical(),
              ElementsAre("[LHU] handleVersionResponse() :: Phone reported version major=1 minor=0",
                          MatchesRegex("\\[LHU\\] ssl state=[^,]+, ret: -1, err: 2"),
                          MatchesRegex("\\[LHU\\] ssl state=[^,]+, ret: -1, err: 2"),
                          MatchesRegex("\\[LHU\\] ssl state=[^,]+, ret: 1, err: 0"),
                          MatchesRegex("\\[LHU\\] SSL version=TLSv1.2 Cipher name=ECDHE-ECDSA-AES[A-Z0-9-]+"),
                          "[LHU] Verify, ret: 1, err_code: 0, returned: ok", VERSION_LINE));
  EXPECT_THAT(log.debug(), IsEmpty());
}

TEST_F(HandshakeTest, AfterwardsFlaggedFramesAreReallyEncrypted) {
  link.bringUp();
  link.controller().sendPingRequest(300, false);
  const std::vector<Bytes> wire = link.sentFrames();
  ASSERT_EQ(wire.size(), 1U);
  const WireFrame piece = parseFrame(wire[0]);
  EXPECT_EQ(piece.flags, ATOMIC | ENCRYPTED);
  EXPECT_EQ(part(piece.payload, 0, 3), bytes("17 03 03")) << "an application data record of TLS 1.2";
  EXPECT_EQ(link.decrypted(piece.payload), bytes("00 0B 08 AC 02 10 00"));
}

TEST_F(HandshakeTest, ASecondVersionResponseBeginsTheHandshakeAgain) {
  EXPECT_CALL(host, versionResponse(1, 0)).Times(2);
  link.acceptsVersion();
  log.clear();
  link.acceptsVersion();
  EXPECT_THAT(log.critical(), ElementsAre(StartsWith("[LHU] handleVersionResponse()"),
                                          MatchesRegex("\\[LHU\\] ssl state=.*, ret: -1, err: 2")));
  EXPECT_EQ(link.sentFrames().size(), 1U) << "OpenSSL has nothing to add to what it has said";
}

TEST_F(HandshakeTest, ASecondVersionResponseAfterSuccessFindsItDoneAndSendsNothing) {
  EXPECT_CALL(host, versionResponse(1, 0)).Times(2);
  EXPECT_CALL(host, authenticationCompleted(STATUS_SUCCESS)).Times(1);
  EXPECT_CALL(host, unrecoverableError()).Times(0);
  link.bringUp();
  log.clear();
  link.acceptsVersion();
  EXPECT_THAT(log.all(), ElementsAre(StartsWith("critical [LHU] handleVersionResponse()"),
                                     MatchesRegex("critical \\[LHU\\] ssl state=[^,]+, ret: 1, err: 0"),
                                     StartsWith("critical [LHU] SSL version=TLSv1.2 ")));
  EXPECT_THAT(link.sentFrames(), IsEmpty());

  EXPECT_CALL(host, byeByeResponse());
  EXPECT_EQ(link.sendsEncrypted(0, bytes("00 10")), STATUS_SUCCESS) << "the link goes on";
}

TEST_F(HandshakeTest, IsNotHeldBackByTheVersion) {
  link.sendsHandshake({});
  EXPECT_THAT(log.critical(), testing::Contains(MatchesRegex("\\[LHU\\] ssl state=.*, ret: -1, err: 2")));
  EXPECT_THAT(link.sent(0), ElementsAre(testing::ResultOf([](const Bytes& it) { return part(it, 0, 4); },
                                                          bytes("00 03 16 03"))));
}

TEST_F(HandshakeTest, AnotherMessageAfterSuccessSendsTheAuthResponseAgain) {
  EXPECT_CALL(host, authenticationCompleted(STATUS_SUCCESS)).Times(2);
  EXPECT_CALL(host, unrecoverableError()).Times(0);
  link.bringUp();
  link.sendsHandshake({});
  EXPECT_THAT(link.sentFrames(), ElementsAre(bytes("00 03 00 04 00 04 08 00")));
}

TEST_F(HandshakeTest, DiscoveryIsServedBeforeTheHandshakeHasEnded) {
  EXPECT_CALL(host, serviceDiscoveryRequest);
  link.acceptsVersion();
  link.sentFrames();
  link.feeds(frame(0, ATOMIC, bytes("00 05")));
  EXPECT_THAT(link.sent(0),
              ElementsAre(testing::ResultOf([](const Bytes& it) { return part(it, 0, 2); }, bytes("00 06"))));
}

/// What happens where the handshake fails, whatever the reason.
void expectFailure(const LogCapture& log, PlainLink& link, const std::function<void()>& cause) {
  InSequence order;
  EXPECT_CALL(link.host(), authenticationCompleted(STATUS_AUTHENTICATION_FAILURE)).WillOnce([&] {
    EXPECT_EQ(log.critical().back(), VERSION_LINE);
    EXPECT_THAT(link.sentFrames(), IsEmpty());
  });
  EXPECT_CALL(link.host(), unrecoverableError()).WillOnce([&] {
    EXPECT_EQ(log.critical().back(), FAILURE_LINE);
    EXPECT_THAT(link.sentFrames(), ElementsAre(bytes("00 03 00 0D 00 04"
                                                     "08 FD FF FF FF FF FF FF FF FF 01")));  // -3
  });
  cause();
}

TEST_F(HandshakeTest, BytesThatAreNoTlsEndIt) {
  link.acceptsVersion();
  link.sentFrames();
  log.clear();
  expectFailure(log, link, [&] { link.sendsHandshake(filled(50, 0x55)); });
  EXPECT_THAT(log.critical(), ElementsAre(MatchesRegex("\\[LHU\\] ssl state=.*, ret: -1, err: 1"),
                                          VERSION_LINE, FAILURE_LINE));
}

TEST_F(HandshakeTest, AResultOfZeroEndsIt) {
  link.acceptsVersion();
  const Bytes flight = link.nextFlight();
  const FailingCall failing("SSL_do_handshake");
  expectFailure(log, link, [&] { link.sendsHandshake(flight); });
}

TEST_F(HandshakeTest, AResultOfZeroAtItsBeginningSendsNothing) {
  EXPECT_CALL(host, authenticationCompleted).Times(0);
  const FailingCall failing("SSL_do_handshake");
  link.acceptsVersion();
  EXPECT_EQ(failing.calls(), 1);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(VersionTest, WithoutCredentialsTheHandshakeFails) {
  link.feeds(frame(0, ATOMIC, bytes("00 02 00 01 00 00 00")));
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  expectFailure(log, link, [&] { link.feeds(frame(0, ATOMIC, bytes("00 03 16 03 03"))); });
}

TEST_F(HandshakeTest, WhatTheHostSendsWhenItHearsOfSuccessIsEncryptedAlreadyAndTheAuthResponsePlain) {
  std::vector<Bytes> first;
  EXPECT_CALL(host, authenticationCompleted(STATUS_SUCCESS)).WillOnce([&] {
    link.controller().sendPingRequest(300, false);
    first = link.sentFrames();  // as a writer would that is quick
  });
  link.acceptsVersion();
  link.sendsHandshake(link.nextFlight());
  link.sendsHandshake(link.nextFlight());
  ASSERT_EQ(first.size(), 1U);
  EXPECT_EQ(parseFrame(first[0]).flags, ATOMIC | ENCRYPTED);
  EXPECT_EQ(link.decrypted(parseFrame(first[0]).payload), bytes("00 0B 08 AC 02 10 00"));
  EXPECT_THAT(link.sentFrames(), ElementsAre(bytes("00 03 00 04 00 04 08 00")));
}

TEST_F(HandshakeTest, AFlightInTwoMessagesEndsIt) {
  link.acceptsVersion();
  const Bytes flight = link.nextFlight();
  expectFailure(log, link, [&] { link.sendsHandshake(part(flight, 0, flight.size() / 2)); });
}

TEST_F(HandshakeTest, AfterAFailureFramesStayPlain) {
  link.acceptsVersion();
  link.sendsHandshake(filled(50, 0x55));
  link.sentFrames();
  link.controller().sendByeByeResponse();
  EXPECT_THAT(link.sentFrames(), ElementsAre(bytes("00 0B 00 02 00 10")));
}

TEST(UnverifiedPeerTest, AStrangersCertificateEndsTheLinkThoughTheHandshakeSucceeded) {
  LogCapture log;
  SecureLink link(credentials().strangerPhone);
  link.acceptsVersion();
  link.sendsHandshake(link.nextFlight());
  const Bytes last = link.nextFlight();
  expectFailure(log, link, [&] { link.sendsHandshake(last); });
  EXPECT_THAT(log.critical(), testing::Contains("[LHU] Verify, ret: 0, err_code: 20, "
                                                "returned: unable to get local issuer certificate"));
  EXPECT_EQ(log.critical().back(), FAILURE_LINE);
  link.controller().sendByeByeResponse();
  EXPECT_THAT(link.sentFrames(), ElementsAre(bytes("00 0B 00 02 00 10"))) << "frames stay plain";
}

}  // namespace
}  // namespace test
