#include "phone/PhoneLink.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "phone_head_unit.h"

namespace test {
namespace {

using phone::ChannelState;
using phone::LinkState;
using phone::Message;
using phone::PhoneLink;
using phone::Side;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

struct Listener : phone::LinkObserver, phone::ChannelHandler {
  std::vector<LinkState> states;
  std::vector<Bytes> messages;
  std::vector<std::string> events;

  void onState(LinkState state) override { states.push_back(state); }
  void onMessage(const Message& message) override { messages.push_back(message.bytes); }
  void onViolation(const std::string& what) override { events.push_back("violation: " + what); }
  void onEnd(const phone::LinkEnd& end) override { events.push_back("end: " + end.words()); }
};

struct Handler : phone::ChannelHandler {
  std::vector<std::string> events;
  std::vector<Bytes> messages;
  void onOpened() override { events.push_back("opened"); }
  void onRefused(MessageStatus status) override { events.push_back("refused " + std::to_string(status)); }
  void onMessage(const Message& message) override { messages.push_back(message.bytes); }
  void onClosed() override { events.push_back("closed"); }
};

/// A link that is built on first use, so that a test can set its options before.
struct PhoneLinkTest : testing::Test {
  phone::LinkOptions options = linkOptions();
  Listener listener;
  Handler handler;
  std::unique_ptr<PhoneLink> link_;
  std::unique_ptr<HandMadeHeadUnit> headUnit_;

  PhoneLink& link() {
    if (!link_) {
      link_ = std::make_unique<PhoneLink>(options);
      link_->observe(&listener);
    }
    return *link_;
  }
  HandMadeHeadUnit& headUnit(const Identity& identity = credentials().headUnit) {
    if (!headUnit_) headUnit_ = std::make_unique<HandMadeHeadUnit>(&link(), identity);
    return *headUnit_;
  }
  void bringUp() {
    headUnit().bringsUp();
    ASSERT_EQ(link().state(), LinkState::up);
  }
  void open(int channel) {
    link().openChannel(static_cast<std::uint8_t>(channel), 3, &handler);
    headUnit().answersOpen(channel);
    headUnit().hears();
  }
  void expectFailure(Side side, const std::string& words) {
    ASSERT_TRUE(link().end());
    EXPECT_FALSE(link().end()->clean);
    EXPECT_EQ(link().end()->side, side);
    EXPECT_THAT(link().end()->what, HasSubstr(words));
    EXPECT_NE(link().end()->advice, "");
    EXPECT_EQ(link().state(), LinkState::ended);
  }
};

// ---- Bring-up ----

TEST_F(PhoneLinkTest, SaysNothingUntilTheHeadUnitSpeaks) {
  EXPECT_FALSE(link().hasOutput());
  EXPECT_EQ(link().state(), LinkState::awaitingVersion);
}

TEST_F(PhoneLinkTest, AnswersTheVersionRequestInTheClear) {
  link().feed(bytes("00 03 00 06 00 01 00 01 00 00"));
  EXPECT_EQ(Bytes(link().takeOutput()), bytes("00 03"        // channel 0, atomic, plain
                                              "00 07"        // length
                                              "00 02"        // MESSAGE_VERSION_RESPONSE
                                              "00 01 00 00"  // 1.0
                                              "00"));        // accepted
  EXPECT_EQ(link().state(), LinkState::handshaking);
  EXPECT_EQ(link().headUnitMajor(), 1);
  EXPECT_EQ(link().headUnitMinor(), 0);
}

TEST_F(PhoneLinkTest, TellsTheVersionAndTheVerdictThatItWasGiven) {
  options.major = 0x0203;
  options.minor = 0x0405;
  options.verdict = 9;
  headUnit().asksVersion();
  EXPECT_THAT(headUnit().hearsMessages(), ElementsAre(bytes("00 02 02 03 04 05 09")));
  EXPECT_EQ(link().state(), LinkState::refused);
}

TEST_F(PhoneLinkTest, GoesThroughTheStatesOfABringUp) {
  headUnit().bringsUp();
  EXPECT_THAT(listener.states, ElementsAre(LinkState::handshaking, LinkState::awaitingAuth,
                                           LinkState::discovering, LinkState::up));
  EXPECT_EQ(link().authStatus(), 0);
  EXPECT_THAT(listener.events, IsEmpty());
}

TEST_F(PhoneLinkTest, ComesUpWhateverTheCutsOfTheStream) {
  for (const std::size_t cut : {std::size_t{1}, std::size_t{3}, std::size_t{7}, std::size_t{1000}}) {
    link_.reset();
    headUnit_.reset();
    headUnit().cut = cut;
    headUnit().bringsUp();
    EXPECT_EQ(link().state(), LinkState::up) << "cut " << cut;
  }
}

TEST_F(PhoneLinkTest, SendsEachHandshakeFlightAsOnePlainMessage) {
  headUnit().asksVersion();
  headUnit().hears();
  headUnit().sends(0, message(MESSAGE_SSL_HANDSHAKE, headUnit().tls().handshake()), 0);
  auto heard = headUnit().hears();
  ASSERT_THAT(heard, SizeIs(1));
  EXPECT_EQ(heard[0].flags, ATOMIC);
  EXPECT_EQ(part(heard[0].payload, 0, 3), bytes("00 03 16"));
  const Bytes reply = headUnit().tls().handshake(part(heard[0].payload, 2));
  headUnit().sends(0, message(MESSAGE_SSL_HANDSHAKE, reply), 0);
  EXPECT_EQ(link().state(), LinkState::awaitingAuth);
  heard = headUnit().hears();
  ASSERT_THAT(heard, SizeIs(1));
  EXPECT_EQ(heard[0].flags, ATOMIC);
  EXPECT_EQ(part(heard[0].payload, 0, 2), bytes("00 03"));
}

TEST_F(PhoneLinkTest, DiscoversAsSoonAsTheHeadUnitAgreesAndEncrypted) {
  options.identity.set_label_text("p");
  headUnit().asksVersion();
  headUnit().shakesHands();
  headUnit().hears();
  EXPECT_FALSE(link().hasOutput());
  headUnit().agrees();
  const auto heard = headUnit().hears();
  ASSERT_THAT(heard, SizeIs(1));
  EXPECT_EQ(heard[0].channel, 0);
  EXPECT_EQ(heard[0].flags, ATOMIC | ENCRYPTED);
  EXPECT_EQ(heard[0].payload, bytes("00 05"        // MESSAGE_SERVICE_DISCOVERY_REQUEST
                                    "22 01 70"));  // label_text "p"
}

TEST_F(PhoneLinkTest, KnowsTheServices) {
  ServiceDiscoveryResponse services;
  services.set_make("car");
  services.add_services()->set_id(7);
  headUnit().bringsUp(services);
  ASSERT_NE(link().services(), nullptr);
  EXPECT_EQ(link().services()->make(), "car");
  EXPECT_EQ(link().services()->services(0).id(), 7);
}

TEST_F(PhoneLinkTest, LeavesToATestWhatItIsToldToLeave) {
  options.answersVersion = options.answersHandshake = options.discovers = false;
  headUnit().asksVersion();
  EXPECT_FALSE(link().hasOutput());
  link().sendVersionResponse(1, 0, 0);
  EXPECT_EQ(link().state(), LinkState::handshaking);
  headUnit().hears();
  headUnit().sends(0, message(MESSAGE_SSL_HANDSHAKE, bytes("16")), 0);
  EXPECT_FALSE(link().hasOutput());
  link().sendHandshake(bytes("AA BB"));
  EXPECT_THAT(headUnit().hearsMessages(), ElementsAre(bytes("00 03 AA BB")));
  headUnit().agrees();
  EXPECT_FALSE(link().hasOutput());
}

TEST_F(PhoneLinkTest, AFlaggedFrameMayBePlainUntilTheHeadUnitHasAgreed) {
  headUnit().asksVersion();
  headUnit().shakesHands();
  link().feed(frame(0, ATOMIC | ENCRYPTED, bytes("00 0E 08 01")));
  EXPECT_FALSE(link().end());
  EXPECT_THAT(link().received(0, MESSAGE_NAV_FOCUS_NOTIFICATION), SizeIs(1));
}

// ---- Failures of the bring-up ----

TEST_F(PhoneLinkTest, AStrangersCertificateEndsTheLinkWithAnAlert) {
  headUnit(credentials().strangerHeadUnit).asksVersion();
  headUnit().shakesHands();
  expectFailure(Side::headUnit, "TLS handshake failed (its certificate does not hold: unable to get");
}

TEST_F(PhoneLinkTest, AnAlertStillLeavesAfterTheEnd) {
  headUnit().asksVersion();
  headUnit().hears();
  headUnit().sends(0, message(MESSAGE_SSL_HANDSHAKE, bytes("16 03 03 00 04 FF FF FF FF")), 0);
  expectFailure(Side::headUnit, "TLS handshake failed");
  const auto heard = headUnit().hears();
  ASSERT_THAT(heard, SizeIs(1));
  EXPECT_EQ(part(heard[0].payload, 0, 3), bytes("00 03 15"));
}

TEST_F(PhoneLinkTest, ARefusalByTheHeadUnitEndsTheLink) {
  headUnit().asksVersion();
  headUnit().shakesHands();
  headUnit().agrees(-3);
  EXPECT_EQ(link().authStatus(), -3);
  expectFailure(Side::headUnit, "refused this phone's certificate (status -3)");
}

TEST_F(PhoneLinkTest, AListOfServicesThatDoesNotParseEndsTheLink) {
  headUnit().asksVersion();
  headUnit().shakesHands();
  headUnit().agrees();
  headUnit().sends(0, bytes("00 06 0A 00"));  // a service without its id
  expectFailure(Side::headUnit, "list of services does not parse");
}

TEST_F(PhoneLinkTest, WithoutCredentialsItGoesAsFarAsTheHandshake) {
  options.credentials = {};
  headUnit().asksVersion();
  EXPECT_EQ(link().state(), LinkState::handshaking);
  headUnit().sends(0, message(MESSAGE_SSL_HANDSHAKE, bytes("16")), 0);
  expectFailure(Side::phone, "no credentials");
}

TEST_F(PhoneLinkTest, UnusableCredentialsAreRefusedAtOnce) {
  options.credentials.key = credentials().otherKey;
  EXPECT_THROW(link(), std::invalid_argument);
}

// ---- Channels ----

TEST_F(PhoneLinkTest, AsksForAChannelInAControlFrameOnThatChannel) {
  bringUp();
  link().openChannel(5, 3, &handler, -1);
  const auto heard = headUnit().hears();
  ASSERT_THAT(heard, SizeIs(1));
  EXPECT_EQ(heard[0].channel, 5);
  EXPECT_EQ(heard[0].flags, ATOMIC | CONTROL | ENCRYPTED);
  EXPECT_EQ(heard[0].payload, bytes("00 07"     // MESSAGE_CHANNEL_OPEN_REQUEST
                                    "08 01"     // priority -1
                                    "10 03"));  // service 3
  EXPECT_EQ(link().channelState(5), ChannelState::opening);
}

TEST_F(PhoneLinkTest, TellsTheHandlerOfTheAnswer) {
  bringUp();
  open(5);
  EXPECT_EQ(link().channelState(5), ChannelState::open);
  EXPECT_THAT(handler.events, ElementsAre("opened"));

  Handler other;
  link().openChannel(6, 4, &other);
  headUnit().answersOpen(6, STATUS_CHANNEL_REFUSED);
  EXPECT_EQ(link().channelState(6), ChannelState::refused);
  EXPECT_THAT(other.events, ElementsAre("refused -254"));
}

TEST_F(PhoneLinkTest, ASecondRequestOnAnOpenChannelLeavesItOpen) {
  bringUp();
  open(5);
  link().openChannel(5, 4);
  headUnit().answersOpen(5, STATUS_INVALID_CHANNEL);
  EXPECT_EQ(link().channelState(5), ChannelState::open);
  headUnit().sends(5, bytes("80 03 08 02"));
  EXPECT_THAT(handler.messages, ElementsAre(bytes("80 03 08 02")));
}

TEST_F(PhoneLinkTest, GivesAHandlerItsChannelsMessagesWholeAndInOrder) {
  bringUp();
  open(5);
  const Bytes large = message(0x8003, pattern(50000));
  headUnit().cut = 999;
  headUnit().sends(5, large);
  headUnit().sends(6, bytes("80 00"));
  headUnit().sends(5, bytes("80 04"));
  EXPECT_THAT(handler.messages, ElementsAre(large, bytes("80 04")));
  ASSERT_THAT(link().received(5), SizeIs(3));
  EXPECT_TRUE(link().received(5)[0].control);
  EXPECT_EQ(link().received(5)[1].frames, 4u);
  EXPECT_TRUE(link().received(5)[1].encrypted);
  EXPECT_LT(link().received(6)[0].order, link().received(5)[2].order);
}

TEST_F(PhoneLinkTest, ClosesAChannelWithAControlFrame) {
  bringUp();
  open(5);
  link().closeChannel(5);
  const auto heard = headUnit().hears();
  ASSERT_THAT(heard, SizeIs(1));
  EXPECT_EQ(heard[0].flags, ATOMIC | CONTROL | ENCRYPTED);
  EXPECT_EQ(heard[0].payload, bytes("00 09"));
  EXPECT_EQ(link().channelState(5), ChannelState::closed);
  headUnit().sends(5, bytes("80 04"));
  EXPECT_THAT(handler.messages, IsEmpty());
  EXPECT_THAT(listener.events, IsEmpty()) << "what was on its way breaks no rule";
}

TEST_F(PhoneLinkTest, TellsTheHandlerThatTheHeadUnitClosed) {
  bringUp();
  open(5);
  headUnit().sends(5, bytes("00 09"), CONTROL | ENCRYPTED);
  EXPECT_THAT(handler.events, ElementsAre("opened", "closed"));
  EXPECT_EQ(link().channelState(5), ChannelState::closed);
}

TEST_F(PhoneLinkTest, AReopenedChannelStartsClean) {
  bringUp();
  open(5);
  link().feed(firstFrame(5, FIRST | ENCRYPTED, 9, headUnit().tls().encrypt(bytes("80 04 01"))));
  link().closeChannel(5);
  open(5);
  headUnit().sends(5, bytes("80 04"));
  EXPECT_THAT(handler.messages, ElementsAre(bytes("80 04")));
}

TEST_F(PhoneLinkTest, CountsOnlyFreshChannelsAsUnused) {
  bringUp();
  EXPECT_EQ(link().unusedChannel(), 1);
  open(1);
  link().closeChannel(1);
  EXPECT_EQ(link().unusedChannel(), 2);
}

TEST_F(PhoneLinkTest, TheEndClosesEveryHandler) {
  bringUp();
  open(5);
  link().streamEnded();
  EXPECT_THAT(handler.events, ElementsAre("opened", "closed"));
}

// ---- Keep-alive, focus, farewell ----

TEST_F(PhoneLinkTest, AnswersAPingWithItsTimestamp) {
  bringUp();
  headUnit().sends(0, bytes("00 0B 08 96 01"));  // PingRequest, timestamp 150
  EXPECT_THAT(headUnit().hearsMessages(), ElementsAre(bytes("00 0C 08 96 01")));
}

TEST_F(PhoneLinkTest, SendsPingsAndFocusAndVoice) {
  bringUp();
  link().sendPing(1);
  link().sendPing(2, true);
  link().requestAudioFocus(AUDIO_FOCUS_RELEASE);
  link().requestNavFocus(NAV_FOCUS_2);
  link().sendVoiceSession(VOICE_SESSION_1);
  EXPECT_THAT(headUnit().hearsMessages(),
              ElementsAre(bytes("00 0B 08 01"), bytes("00 0B 08 02 10 01"), bytes("00 12 08 04"),
                          bytes("00 0D 08 02"), bytes("00 11 08 01")));
}

TEST_F(PhoneLinkTest, AnswersGoodByeAndEndsCleanly) {
  bringUp();
  headUnit().sends(0, bytes("00 0F 08 01"));
  EXPECT_THAT(headUnit().hearsMessages(), ElementsAre(bytes("00 10")));
  ASSERT_TRUE(link().end());
  EXPECT_TRUE(link().end()->clean);
  EXPECT_EQ(link().end()->side, Side::headUnit);
}

TEST_F(PhoneLinkTest, SaysGoodByeAndEndsCleanlyWhenAnswered) {
  bringUp();
  link().sayByeBye();
  EXPECT_THAT(headUnit().hearsMessages(), ElementsAre(bytes("00 0F 08 01")));
  EXPECT_EQ(link().state(), LinkState::leaving);
  headUnit().sends(0, bytes("00 10"));
  ASSERT_TRUE(link().end());
  EXPECT_TRUE(link().end()->clean);
  EXPECT_EQ(link().end()->side, Side::phone);
}

TEST_F(PhoneLinkTest, AConnectionThatClosesAfterGoodByeIsACleanEnd) {
  bringUp();
  link().sayByeBye();
  link().streamEnded();
  EXPECT_TRUE(link().end()->clean);
}

TEST_F(PhoneLinkTest, AGoodByeResponseThatNobodyAskedForEndsNothing) {
  bringUp();
  headUnit().sends(0, bytes("00 10"));
  EXPECT_FALSE(link().end());
}

TEST_F(PhoneLinkTest, TheEndOfTheStreamTellsWhereItCame) {
  headUnit().asksVersion();
  link().streamEnded();
  expectFailure(Side::headUnit, "closed the connection, with the link in the TLS handshake");
}

TEST_F(PhoneLinkTest, TheEndOfTheStreamInsideAFrameIsTold) {
  bringUp();
  link().feed(bytes("00 03 00 05 00"));
  link().streamEnded("Connection reset by peer");
  expectFailure(Side::headUnit, "went away (Connection reset by peer) in the middle of a frame");
}

TEST_F(PhoneLinkTest, HasOneEnd) {
  bringUp();
  link().streamEnded();
  link().fail(Side::phone, "something else", "nothing");
  expectFailure(Side::headUnit, "closed the connection");
  headUnit().sends(0, bytes("00 0B 08 01"));
  EXPECT_FALSE(link().hasOutput()) << "an ended link answers nothing";
}

// ---- Rules that a head unit breaks ----

TEST_F(PhoneLinkTest, AFramingErrorReportEndsTheLink) {
  bringUp();
  headUnit().sends(0, bytes("FF FF"), 0);
  expectFailure(Side::headUnit, "reports a framing error");
}

TEST_F(PhoneLinkTest, AStrayFragmentEndsTheLink) {
  bringUp();
  link().feed(frame(0, LAST, bytes("00 0B")));
  expectFailure(Side::headUnit, "out of sequence on channel 0");
}

TEST_F(PhoneLinkTest, FragmentsBeyondTheirTotalEndTheLink) {
  bringUp();
  link().feed(firstFrame(0, FIRST, 3, bytes("00 0B")) + frame(0, LAST, bytes("08 01")));
  expectFailure(Side::headUnit, "add up to more");
}

TEST_F(PhoneLinkTest, AFrameThatCannotBeDecipheredEndsTheLink) {
  bringUp();
  link().feed(frame(0, ATOMIC | ENCRYPTED, bytes("17 03 03 00 02 AA BB")));
  expectFailure(Side::headUnit, "cannot be deciphered");
}

TEST_F(PhoneLinkTest, LesserBreachesAreToldAndLivedWith) {
  bringUp();
  open(5);
  link().feed(frame(0, ATOMIC | 0x10, bytes("00 0C 08 01")));
  link().feed(frame(5, ATOMIC, bytes("80 04 08 00")));
  headUnit().sends(7, bytes("80 04"));
  headUnit().sends(0, bytes("00"));
  headUnit().sends(0, bytes("00 0A"));
  headUnit().sends(0, bytes("00 0B"));
  headUnit().sends(5, bytes("00 07"), CONTROL | ENCRYPTED);
  link().feed(frame(0, FIRST | CONTROL, {}) + bytes("00 00 00 00"));
  EXPECT_FALSE(link().end());
  EXPECT_THAT(link().violations(),
              ElementsAre(HasSubstr("flag bits"), HasSubstr("channel 5 is not encrypted"),
                          HasSubstr("channel 7, which nobody opened"), HasSubstr("too short for its type"),
                          HasSubstr("type 10"), HasSubstr("PingRequest does not parse"),
                          HasSubstr("control frame carries a message of type 7"),
                          HasSubstr("only a piece of a message")));
  EXPECT_EQ(listener.events.size(), link().violations().size());
}

TEST_F(PhoneLinkTest, AMessageShorterThanAnnouncedIsTakenWithAViolation) {
  bringUp();
  link().feed(firstFrame(0, FIRST, 100, bytes("00 0B")) + frame(0, LAST, bytes("08 01")));
  EXPECT_THAT(link().violations(), ElementsAre(HasSubstr("add up to less")));
  EXPECT_THAT(link().received(0, MESSAGE_PING_REQUEST), SizeIs(1));
}

TEST_F(PhoneLinkTest, EncryptionWhereNoneBelongsIsAViolation) {
  headUnit().asksVersion();
  headUnit().shakesHands();
  headUnit().sends(0, bytes("00 04 08 00"));
  EXPECT_THAT(link().violations(), ElementsAre("an AuthResponse is encrypted"));
}

TEST_F(PhoneLinkTest, ObserversSeeWhatTheLinkAnsweredItself) {
  bringUp();
  listener.messages.clear();
  headUnit().sends(0, bytes("00 0B 08 01"));
  EXPECT_THAT(listener.messages, ElementsAre(bytes("00 0B 08 01")));
}

// ---- By hand ----

TEST_F(PhoneLinkTest, SendsWhateverATestWants) {
  bringUp();
  phone::Frame odd;
  odd.channel = 9;
  odd.flags = 0xF0 | ENCRYPTED;
  odd.payload = bytes("01 02");
  link().sendFrame(odd);
  auto heard = headUnit().hears();
  ASSERT_THAT(heard, SizeIs(1));
  EXPECT_EQ(heard[0].flags, 0xF8);
  EXPECT_EQ(heard[0].payload, bytes("01 02")) << "enciphered on the way";

  link().sendFrameAsIs(odd);
  EXPECT_EQ(Bytes(link().takeOutput()), bytes("09 F8 00 02 01 02"));
  link().sendBytes(bytes("AB"));
  EXPECT_EQ(Bytes(link().takeOutput()), bytes("AB"));
}

TEST_F(PhoneLinkTest, GivesATestTheRecordsOfItsOwnPayloads) {
  bringUp();
  phone::Frame made;
  made.flags = ATOMIC | ENCRYPTED;
  made.payload = link().encrypt(bytes("00 0B"));
  const phone::Bytes second = link().encrypt(bytes("08 01"));
  made.payload.insert(made.payload.end(), second.begin(), second.end());
  link().sendFrameAsIs(made);
  EXPECT_THAT(headUnit().hearsMessages(), ElementsAre(bytes("00 0B 08 01")));
}

TEST_F(PhoneLinkTest, CutsAsATestWants) {
  bringUp();
  link().sendMessage(3, bytes("01 02 03 04 05"), ENCRYPTED, 2);
  const auto heard = headUnit().hears();
  ASSERT_THAT(heard, SizeIs(3));
  EXPECT_EQ(heard[0].flags, FIRST | ENCRYPTED);
  EXPECT_EQ(heard[0].totalLength, 5u);
  EXPECT_EQ(heard[2].payload, bytes("05"));
}

TEST_F(PhoneLinkTest, AnInterleavingLinkKeepsItsRecordsInTheOrderOfTheWire) {
  options.interleaves = true;
  bringUp();
  const Bytes large = message(0, pattern(40000));
  link().sendMessage(3, large);
  link().send(9, 0x8000, bytes("01"));
  const auto heard = headUnit().hears();
  ASSERT_THAT(heard, SizeIs(4));
  EXPECT_EQ(heard[0].channel, 3);
  EXPECT_EQ(heard[1].channel, 9);
  EXPECT_EQ(heard[1].payload, bytes("80 00 01"));
  EXPECT_EQ(heard[0].payload + heard[2].payload + heard[3].payload, large);
}

TEST_F(PhoneLinkTest, KeepsNoRecordWhenToldSo) {
  options.records = false;
  bringUp();
  EXPECT_THAT(link().received(0), IsEmpty());
  EXPECT_THAT(link().receivedFrames(), IsEmpty());
}

TEST_F(PhoneLinkTest, RecordsWhatFramesLookedLike) {
  bringUp();
  headUnit().sends(5, pattern(16129));
  const auto& seen = link().receivedFrames();
  const auto& first = seen[seen.size() - 2];
  EXPECT_EQ(first.channel, 5);
  EXPECT_EQ(first.flags, FIRST | ENCRYPTED);
  EXPECT_EQ(first.plainLength, 16128u);
  EXPECT_GT(first.wireLength, first.plainLength);
  EXPECT_EQ(first.totalLength, 16129u);
  EXPECT_EQ(seen.back().plainLength, 1u);
}

}  // namespace
}  // namespace test
