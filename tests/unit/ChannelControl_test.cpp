#include "EndpointTest.h"
#include "FailingCalls.h"
#include "RecordingEndpoint.h"

// Channels open and close, by the phone and by the head unit.

namespace test {
namespace {

struct ChannelControlTest : EndpointTest {
  RecordingEndpoint service{3, link.router()};
  RecordingEndpoint other{4, link.router()};

  ChannelControlTest() {
    link.registers(&service);
    link.registers(&other);
  }
  int feedsControl(int channel, const char* message) {
    return link.feeds(frame(channel, ATOMIC | CONTROL | ENCRYPTED, bytes(message)));
  }
};

TEST_F(ChannelControlTest, AnOpenRequestIsAnsweredOnItsChannelInAControlFrame) {
  EXPECT_EQ(link.feeds(bytes("07"        // channel
                             "0F"        // FRAME_ATOMIC, control, encrypted
                             "00 06"     // length
                             "00 07"     // MESSAGE_CHANNEL_OPEN_REQUEST
                             "08 01"     // priority -1, zig-zag
                             "10 03")),  // service_id 3
            STATUS_SUCCESS);
  EXPECT_THAT(link.sentFrames(), ElementsAre(bytes("07"         // channel
                                                   "0F"         // FRAME_ATOMIC, control, encrypted
                                                   "00 04"      // length
                                                   "00 08"      // MESSAGE_CHANNEL_OPEN_RESPONSE
                                                   "08 00")));  // STATUS_SUCCESS
  EXPECT_TRUE(service.isChannelOpen());
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(ChannelControlTest, APlainOpenRequestIsTakenToo) {
  EXPECT_EQ(link.feeds(bytes("07 07 00 06 00 07 08 00 10 03")), STATUS_SUCCESS);
  EXPECT_TRUE(service.isChannelOpen());
}

/// Sends from inside the notification of its channel.
struct EagerEndpoint : RecordingEndpoint {
  using RecordingEndpoint::RecordingEndpoint;
  void onChannelOpened(unsigned char channel) override {
    RecordingEndpoint::onChannelOpened(channel);
    sendRecord(0x8001, ByeByeResponse());
  }
};

TEST_F(ChannelControlTest, TheServiceLearnsOfItsChannelAfterTheResponseHasBeenQueued) {
  EagerEndpoint eager(5, link.router());
  link.registers(&eager);
  feedsControl(9, "00 07 08 00 10 05");
  EXPECT_THAT(link.sent(9), ElementsAre(bytes("00 08 08 00"), bytes("80 01")));
}

TEST_F(ChannelControlTest, OfTheRequestedServiceIdTheLowEightBitsCount) {
  EXPECT_EQ(feedsControl(7, "00 07 08 00 10 83 02"), STATUS_SUCCESS);  // 256 + 3
  EXPECT_TRUE(service.isChannelOpen());
}

TEST_F(ChannelControlTest, OfTheRequestedPriorityTheLowEightBitsCountAsSigned) {
  const auto storedFor = [this](int priority) {
    EXPECT_EQ(link.opens(7, 3, priority), STATUS_SUCCESS);
    const shared_ptr<Frame> piece(new Frame());
    piece->channelId = 7;
    piece->flags = ATOMIC | ENCRYPTED;
    shared_ptr<Channel> channel;
    bool acceptable = false;
    bool complete = false;
    link.channels().checkFragment(piece, &channel, &acceptable, &complete);
    link.closes(7);
    return channel->priority;
  };
  EXPECT_EQ(storedFor(127), 254);
  EXPECT_EQ(storedFor(383), 254);   // 256 + 127
  EXPECT_EQ(storedFor(-129), 254);  // -256 + 127
  EXPECT_EQ(storedFor(128), 255);   // 256 - 128
  EXPECT_EQ(storedFor(-256), 127);
}

TEST_F(ChannelControlTest, AnUnknownServiceIsRefusedAndTheRefusalNeverLeaves) {
  EXPECT_EQ(feedsControl(7, "00 07 08 00 10 4D"), STATUS_NO_SUCH_SERVICE);     // 77
  EXPECT_EQ(feedsControl(7, "00 07 08 00 10 FF 01"), STATUS_NO_SUCH_SERVICE);  // 255
  EXPECT_EQ(feedsControl(7, "00 07 08 00 10 FF 03"), STATUS_NO_SUCH_SERVICE);  // 511
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  EXPECT_THAT(log.all(), IsEmpty());
  EXPECT_EQ(link.opens(7, 3), STATUS_SUCCESS) << "the channel is still free";
}

TEST_F(ChannelControlTest, ASecondChannelToAServiceIsRefusedAndTheRefusalNeverLeaves) {
  link.opens(7, 3);
  EXPECT_EQ(feedsControl(8, "00 07 08 00 10 03"), STATUS_CHANNEL_REFUSED);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  EXPECT_THAT(service.events, ElementsAre("opened 7"));
  EXPECT_EQ(link.opens(8, 4), STATUS_SUCCESS);
}

TEST_F(ChannelControlTest, AServiceMayRefuse) {
  service.refuses = true;
  EXPECT_EQ(feedsControl(7, "00 07 08 00 10 03"), STATUS_CHANNEL_REFUSED);
  service.refuses = false;
  EXPECT_EQ(link.opens(7, 3), STATUS_SUCCESS);
}

TEST_F(ChannelControlTest, AnOpenRequestOnAnOpenChannelIsAnsweredWithInvalidChannel) {
  link.opens(7, 3);
  EXPECT_EQ(feedsControl(7, "00 07 08 00 10 04"), STATUS_INVALID_CHANNEL);
  EXPECT_THAT(link.sentFrames(), ElementsAre(bytes("07 0F 00 0D 00 08"
                                                   "08 FB FF FF FF FF FF FF FF FF 01")));  // -5
  EXPECT_FALSE(other.isChannelOpen());
}

TEST_F(ChannelControlTest, AnOpenRequestOnTheControlChannelIsAnsweredWithInvalidChannel) {
  EXPECT_EQ(feedsControl(0, "00 07 08 00 10 03"), STATUS_INVALID_CHANNEL);
  EXPECT_THAT(link.sent(0), ElementsAre(bytes("00 08 08 FB FF FF FF FF FF FF FF FF 01")));
}

TEST_F(ChannelControlTest, TheMappingStaysWhereTheChannelCannotBeRegistered) {
  link.channels().registerChannel(7, 0);  // registered, and mapped to no service
  EXPECT_EQ(link.opens(7, 3), STATUS_INVALID_CHANNEL);
  EXPECT_THAT(service.events, IsEmpty());
  EXPECT_FALSE(service.isChannelOpen());
  link.sends(7, bytes("80 01"));
  EXPECT_THAT(service.events, ElementsAre("message 32769 on 7"));
}

TEST_F(ChannelControlTest, AnUnparsableRequestIsLoggedAndNotAnswered) {
  for (const char* message :
       {"00 07", "00 07 08 00", "00 07 10 03", "00 07 08", "00 07 08 00 10 03 FF", "00 09 FF"}) {
    EXPECT_EQ(feedsControl(7, message), STATUS_INVALID_CHANNEL) << message;
  }
  EXPECT_EQ(log.all().size(), 6U);
  EXPECT_THAT(log.debug(), testing::Each(parseFailureIn("ChannelControl")));
  EXPECT_EQ(log.debug().size(), 6U);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(ChannelControlTest, AnUnknownControlMessageIsAnsweredOnItsChannel) {
  link.opens(7, 3);
  EXPECT_EQ(feedsControl(7, "00 08 08 00"), STATUS_SUCCESS);
  EXPECT_THAT(link.sentFrames(), ElementsAre(bytes("07 0B 00 02 00 FF")));
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] Sending unexpected message on channel 7"));
  EXPECT_THAT(service.messages, IsEmpty());
}

using ChannelControlDeathTest = ChannelControlTest;

TEST_F(ChannelControlDeathTest, AnUnknownControlMessageOnAFreeChannelStopsTheProcess) {
  EXPECT_DEATH(feedsControl(7, "00 08 08 00"), "status == STATUS_SUCCESS");
}

TEST_F(ChannelControlDeathTest, AResponseWithANumberThatIsNoStatusStopsTheProcess) {
  EXPECT_DEATH(link.router()->sendChannelOpenResp(0, -252), "::MessageStatus_IsValid\\(value\\)");
}

TEST_F(ChannelControlTest, ACloseNotificationFreesTheChannel) {
  link.opens(7, 3);
  EXPECT_EQ(link.feeds(bytes("07 0F 00 02 00 09")), STATUS_SUCCESS);
  EXPECT_THAT(service.events, ElementsAre("opened 7", "closed 7"));
  EXPECT_FALSE(service.isChannelOpen());
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  EXPECT_EQ(link.opens(7, 4), STATUS_SUCCESS);
  EXPECT_EQ(link.opens(8, 3), STATUS_SUCCESS);
}

/// Notes what would become of a message and of an open request while it hears that its channel closes.
struct ClosingEndpoint : RecordingEndpoint {
  using RecordingEndpoint::RecordingEndpoint;
  bool onChannelClosed(unsigned char channel) override {
    const bool known = RecordingEndpoint::onChannelClosed(channel);
    const shared_ptr<IoBuffer> message(new IoBuffer(2));
    std::fill(message->data, message->data + 2, static_cast<unsigned char>(0x80));
    delivered = router->routeMessage(channel, message);
    ChannelOpenRequest request;
    request.set_priority(0);
    request.set_service_id(4);
    opened = router->handleChannelOpenReq(channel, request);
    return known;
  }
  int delivered = -1;
  int opened = STATUS_SUCCESS;
};

TEST_F(ChannelControlTest, AServiceLearnsThatItsChannelClosesWhileTheChannelIsStillMapped) {
  ClosingEndpoint closing(5, link.router());
  link.registers(&closing);
  link.opens(9, 5);
  EXPECT_EQ(link.closes(9), STATUS_SUCCESS);
  EXPECT_EQ(closing.delivered, STATUS_SUCCESS);
  EXPECT_THAT(closing.events, ElementsAre("opened 9", "closed 9", "message 32896 on 9"));
  EXPECT_EQ(closing.opened, STATUS_INVALID_CHANNEL);
  EXPECT_FALSE(link.router()->closeChannel(9)) << "no longer mapped";
}

TEST_F(ChannelControlTest, ACloseNotificationOnAFreeChannelIsInvalid) {
  EXPECT_EQ(link.closes(7), STATUS_INVALID_CHANNEL);
  EXPECT_TRUE(link.channels().isRunning());
}

TEST_F(ChannelControlTest, ACloseNotificationForAServiceThatIsNotThereTellsSo) {
  link.router()->setupMapping(77, 7);
  EXPECT_EQ(link.closes(7), STATUS_NO_SUCH_SERVICE);
}

TEST_F(ChannelControlTest, ARefusedCloseLeavesTheMapping) {
  link.router()->setupMapping(3, 7);  // mapped, though the service knows of no channel
  EXPECT_EQ(link.closes(7), STATUS_INVALID_STATE);
  EXPECT_EQ(link.closes(7), STATUS_INVALID_STATE);
}

TEST_F(ChannelControlTest, AMappedChannelThatIsNotRegisteredCannotBeUnregistered) {
  link.opens(7, 3);
  link.channels().unregisterChannel(7);
  EXPECT_EQ(link.closes(7), STATUS_INVALID_CHANNEL);
  EXPECT_FALSE(service.isChannelOpen());
}

TEST_F(ChannelControlTest, ClosingTheControlChannelSilencesTheController) {
  EXPECT_EQ(link.closes(0), STATUS_SUCCESS);
  link.controller().sendPingRequest(1, false);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(ChannelControlTest, NotifyingAServiceThatIsNotThereDoesNothingButFor255) {
  ChannelOpenRequest request;
  request.set_service_id(77);
  link.router()->notifyChannelOpened(7, request);
  EXPECT_THAT(log.all(), IsEmpty());
  request.set_service_id(511);
  link.router()->notifyChannelOpened(7, request);
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] Failed to notify channel open channel:7 service:255"));
}

/// Channel 7, opened by the phone to service 3 and then closed by the head unit.
struct HalfClosedChannelTest : ChannelControlTest {
  HalfClosedChannelTest() {
    link.opens(7, 3);
    EXPECT_TRUE(link.router()->closeChannel(7));
    notification = link.sentFrames();
    service.events.clear();
  }
  std::vector<Bytes> notification;
};

TEST_F(HalfClosedChannelTest, ThePhoneHasBeenToldInAControlFrame) {
  EXPECT_THAT(notification, ElementsAre(bytes("07 0F 00 02 00 09")));
}

TEST_F(HalfClosedChannelTest, TheServiceIsNotTold) {
  EXPECT_TRUE(service.isChannelOpen());
  EXPECT_THAT(service.events, IsEmpty());
}

TEST_F(HalfClosedChannelTest, CannotBeClosedTwice) {
  EXPECT_FALSE(link.router()->closeChannel(7));
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(HalfClosedChannelTest, MessagesThatStillArriveAreDroppedWithoutAnAnswer) {
  EXPECT_EQ(link.sends(7, bytes("80 01")), STATUS_SUCCESS);
  EXPECT_THAT(service.messages, IsEmpty());
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(HalfClosedChannelTest, ACloseNotificationOfThePhoneChangesNothing) {
  EXPECT_EQ(link.closes(7), STATUS_INVALID_CHANNEL);
  EXPECT_TRUE(service.isChannelOpen());
}

TEST_F(HalfClosedChannelTest, AnOpenRequestToTheSameServiceIsRefusedAndTheRefusalLeaves) {
  EXPECT_EQ(link.opens(7, 3), STATUS_CHANNEL_REFUSED);
}

TEST_F(HalfClosedChannelTest, AnOpenRequestToAnotherServiceMapsTheChannelButCannotRegisterIt) {
  EXPECT_EQ(link.opens(7, 4), STATUS_INVALID_CHANNEL);
  EXPECT_FALSE(other.isChannelOpen());
  link.sends(7, bytes("80 01"));
  EXPECT_THAT(other.events, ElementsAre("message 32769 on 7"));
}

TEST_F(HalfClosedChannelTest, TheServiceStillSendsOnIt) {
  service.sendRecord(0x8001, ByeByeResponse());
  EXPECT_THAT(link.sent(7), ElementsAre(bytes("80 01")));
}

TEST_F(ChannelControlTest, AChannelThatThePhoneOpensToAnotherServiceWhileTheHeadUnitClosesItStaysOpen) {
  link.opens(7, 3);
  int reopened = -1;
  const EventAtPost meanwhile([&] {
    link.closes(7);
    reopened = link.opens(7, 4);
  });
  EXPECT_TRUE(link.router()->closeChannel(7));
  EXPECT_EQ(reopened, STATUS_SUCCESS);
  link.sends(7, bytes("80 01"));
  EXPECT_THAT(other.messages, ElementsAre(bytes("80 01")));
}

TEST_F(ChannelControlTest, AChannelThatIsNotMappedCannotBeClosedByTheHeadUnit) {
  EXPECT_FALSE(link.router()->closeChannel(7));
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

}  // namespace
}  // namespace test
