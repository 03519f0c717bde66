#include "MessageRouter.h"

#include "EndpointTest.h"
#include "FailingCalls.h"
#include "RecordingEndpoint.h"

// Whole messages on their way to and from the services. Opening and closing is in ChannelControl_test.cpp.

namespace test {
namespace {

struct MessageRouterTest : EndpointTest {
  RecordingEndpoint service{1, link.router()};
  RecordingEndpoint rawService{2, link.router(), true};
  MessageRouter& router = *link.router();

  MessageRouterTest() {
    link.registers(&service);
    link.registers(&rawService);
    link.opens(3, 1);
    link.opens(4, 2);
    log.clear();
    service.events.clear();
    rawService.events.clear();
  }
  shared_ptr<IoBuffer> buffer(const Bytes& content) {
    const shared_ptr<IoBuffer> made =
        link.receiver().allocateBuffer(static_cast<unsigned int>(content.size()));
    std::copy(content.begin(), content.end(), made->data);
    return made;
  }
};

TEST_F(MessageRouterTest, TheTypeIsBigEndian) {
  EXPECT_EQ(MessageRouter::extractType(bytes("80 01").data()), 0x8001);
  EXPECT_EQ(MessageRouter::extractType(bytes("00 FF").data()), 0x00FF);
  EXPECT_EQ(MessageRouter::extractType(bytes("FF 00").data()), 0xFF00);
}

TEST_F(MessageRouterTest, AMessageReachesTheServiceOfItsChannelWithItsTypeInFront) {
  EXPECT_EQ(router.routeMessage(3, buffer(bytes("80 05 AA BB"))), STATUS_SUCCESS);
  EXPECT_THAT(service.events, ElementsAre("message 32773 on 3"));
  EXPECT_THAT(service.messages, ElementsAre(bytes("80 05 AA BB")));
  EXPECT_THAT(rawService.events, IsEmpty());
}

TEST_F(MessageRouterTest, AMessageOfOnlyATypeIsDelivered) {
  EXPECT_EQ(router.routeMessage(3, buffer(bytes("80 05"))), STATUS_SUCCESS);
  EXPECT_THAT(service.messages, ElementsAre(bytes("80 05")));
}

TEST_F(MessageRouterTest, ARawServiceGetsEveryMessageUndecoded) {
  for (const char* content : {"80 05 AA", "80", ""}) {
    EXPECT_EQ(router.routeMessage(4, buffer(bytes(content))), STATUS_SUCCESS);
  }
  EXPECT_THAT(rawService.events, ElementsAre("raw on 4", "raw on 4", "raw on 4"));
  EXPECT_THAT(rawService.messages, ElementsAre(bytes("80 05 AA"), bytes("80"), bytes("")));
}

TEST_F(MessageRouterTest, AMessageOnAnUnmappedChannelIsDropped) {
  EXPECT_EQ(router.routeMessage(5, buffer(bytes("80 05"))), STATUS_INVALID_CHANNEL);
  EXPECT_THAT(log.all(), IsEmpty());
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(MessageRouterTest, AMessageForAServiceThatIsNotThereIsDropped) {
  router.setupMapping(77, 5);
  EXPECT_EQ(router.routeMessage(5, buffer(bytes("80 05"))), STATUS_NO_SUCH_SERVICE);
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(MessageRouterTest, AnUnexpectedMessageIsAnsweredOnItsChannelAndLogged) {
  service.answer = STATUS_UNEXPECTED_MESSAGE;
  EXPECT_EQ(router.routeMessage(3, buffer(bytes("80 05"))), STATUS_SUCCESS) << "the status of the answer";
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] Sending unexpected message on channel 3"));
  EXPECT_THAT(link.sentFrames(), ElementsAre(bytes("03"         // channel
                                                   "0B"         // FRAME_ATOMIC, encrypted, no control frame
                                                   "00 02"      // length
                                                   "00 FF")));  // MESSAGE_UNEXPECTED_MESSAGE, no body
}

TEST_F(MessageRouterTest, AnUnexpectedMessageIsLoggedBeforeTheAnswerIsQueued) {
  service.answer = STATUS_UNEXPECTED_MESSAGE;
  std::vector<std::string> lines;
  const EventAtPost queued([&] { lines = log.all(); });
  router.routeMessage(3, buffer(bytes("80 05")));
  EXPECT_THAT(lines, ElementsAre("critical [LHU] Sending unexpected message on channel 3"));
}

TEST_F(MessageRouterTest, ARawServiceCanFindAMessageUnexpectedToo) {
  rawService.answer = STATUS_UNEXPECTED_MESSAGE;
  EXPECT_EQ(router.routeMessage(4, buffer(bytes("80"))), STATUS_SUCCESS);
  EXPECT_THAT(link.sent(4), ElementsAre(unexpectedMessage()));
}

TEST_F(MessageRouterTest, AnAnswerThatCannotBeQueuedTellsItsStatus) {
  service.answer = STATUS_UNEXPECTED_MESSAGE;
  link.channels().unregisterChannel(3);
  EXPECT_EQ(router.routeMessage(3, buffer(bytes("80 05"))), STATUS_INVALID_CHANNEL);
}

TEST_F(MessageRouterTest, EveryOtherStatusIsReturnedAndNotAnswered) {
  for (const int status :
       {STATUS_SUCCESS, STATUS_NO_SUCH_SERVICE, STATUS_FRAMING_ERROR, STATUS_INVALID_INPUT}) {
    service.answer = status;
    EXPECT_EQ(router.routeMessage(3, buffer(bytes("80 05"))), status);
  }
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  EXPECT_THAT(log.all(), IsEmpty());
}

/// A service that overrides nothing that it need not.
struct BareEndpoint : ProtocolEndpointBase {
  using ProtocolEndpointBase::ProtocolEndpointBase;
  void addDiscoveryInfo(ServiceDiscoveryResponse*) override {}
};

TEST_F(MessageRouterTest, TheBaseClassTakesNoMessageAndTheRouterDoesNotAnswer) {
  BareEndpoint plain(5, link.router(), false);
  BareEndpoint raw(6, link.router(), true);
  link.registers(&plain);
  link.registers(&raw);
  link.opens(5, 5);
  link.opens(6, 6);
  EXPECT_EQ(router.routeMessage(5, buffer(bytes("80 05"))), STATUS_NO_SUCH_SERVICE);
  EXPECT_EQ(router.routeMessage(6, buffer(bytes("80 05"))), STATUS_NO_SUCH_SERVICE);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(MessageRouterTest, AServiceCountsItsChannelAsOpenBetweenOpeningAndClosing) {
  BareEndpoint endpoint(5, link.router(), false);
  EXPECT_TRUE(endpoint.mayOpenChannel(9));
  EXPECT_FALSE(endpoint.onChannelClosed(9));
  endpoint.onChannelOpened(9);
  EXPECT_FALSE(endpoint.mayOpenChannel(9));
  EXPECT_FALSE(endpoint.mayOpenChannel(10));
  EXPECT_TRUE(endpoint.onChannelClosed(10)) << "whichever number is closed";
  EXPECT_TRUE(endpoint.mayOpenChannel(9));
}

TEST_F(MessageRouterTest, ASendOnAClosedChannelIsDroppedAndStillASuccess) {
  RecordingEndpoint idle(5, link.router());
  EXPECT_EQ(idle.sendRecord(0x8001, PingResponse()), STATUS_SUCCESS);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(MessageRouterTest, MarshalsTheTypeAndTheRecord) {
  PingRequest request;
  request.set_timestamp(300);
  request.set_bug_report(true);
  IoBuffer out;
  out.resize(50);
  out.start = 5;
  MessageRouter::marshallProto(MESSAGE_PING_REQUEST, request, &out);
  EXPECT_EQ(out.start, 0U);
  EXPECT_EQ(out.capacity, out.end);
  EXPECT_EQ(Bytes(out.content(), out.size()), bytes("00 0B"     // type
                                                    "08 AC 02"  // timestamp 300
                                                    "10 01"));  // bug_report
}

TEST_F(MessageRouterTest, MarshalsAnEmptyRecordAsTwoBytes) {
  IoBuffer out;
  MessageRouter::marshallProto(0xFFFE, ByeByeResponse(), &out);
  EXPECT_EQ(Bytes(out.content(), out.size()), bytes("FF FE"));
}

TEST_F(MessageRouterTest, MarshalsARecordWithoutItsRequiredFields) {
  IoBuffer out;
  PingRequest request;
  request.set_bug_report(false);
  MessageRouter::marshallProto(MESSAGE_PING_REQUEST, request, &out);
  EXPECT_EQ(Bytes(out.content(), out.size()), bytes("00 0B 10 00"));
}

TEST_F(MessageRouterTest, QueuesEncryptedOrNotAndNeverAsAControlFrame) {
  Bytes data = bytes("80 01 AA");
  EXPECT_EQ(router.queueOutgoing(3, data.data(), 3), STATUS_SUCCESS);
  EXPECT_EQ(router.queueOutgoingUnencrypted(3, data.data(), 3), STATUS_SUCCESS);
  EXPECT_THAT(link.sentFrames(), ElementsAre(bytes("03 0B 00 03 80 01 AA"), bytes("03 03 00 03 80 01 AA")));
}

TEST_F(MessageRouterTest, NothingCanBeQueuedOnAFreeChannel) {
  Bytes data = bytes("80 01");
  EXPECT_EQ(router.queueOutgoing(9, data.data(), 2), STATUS_INVALID_CHANNEL);
  EXPECT_EQ(router.queueOutgoingUnencrypted(9, data.data(), 2), STATUS_INVALID_CHANNEL);
}

TEST_F(MessageRouterTest, AfterShutdownASendIsDropped) {
  router.shutdown();
  Bytes data = bytes("80 01");
  EXPECT_EQ(router.queueOutgoing(3, data.data(), 2), STATUS_INVALID_CHANNEL);
  EXPECT_EQ(service.sendMessage(data.data(), 2), STATUS_INVALID_CHANNEL);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(MessageRouterTest, ShutdownForgetsNeitherServicesNorMappings) {
  EXPECT_CALL(link.host(), unrecoverableError());
  RecordingEndpoint second(1, link.router());
  router.shutdown();
  EXPECT_EQ(router.routeMessage(3, buffer(bytes("80 05"))), STATUS_SUCCESS);
  EXPECT_EQ(router.routeMessage(4, buffer(bytes("80 06"))), STATUS_SUCCESS);
  EXPECT_THAT(service.messages, ElementsAre(bytes("80 05")));
  EXPECT_THAT(rawService.messages, ElementsAre(bytes("80 06")));
  EXPECT_FALSE(router.registerService(&second)) << "the id is taken";
  router.unrecoverableError();
}

TEST_F(MessageRouterTest, ServiceIdsAreAdvertisedInAscendingOrderHoweverTheyWereRegistered) {
  RecordingEndpoint last(254, link.router());
  RecordingEndpoint middle(100, link.router());
  RecordingEndpoint early(3, link.router());
  for (RecordingEndpoint* endpoint : {&last, &middle, &early}) link.registers(endpoint);
  ServiceDiscoveryResponse response;
  router.populateServiceDiscoveryResponse(&response);
  std::vector<int> ids;
  for (const Service& offered : response.services()) ids.push_back(offered.id());
  EXPECT_THAT(ids, ElementsAre(1, 2, 3, 100, 254)) << "service 0 is never advertised";
}

TEST_F(MessageRouterTest, AServiceIdOf255OrTakenIsRefusedAndTheFirstStays) {
  RecordingEndpoint second(1, link.router());
  RecordingEndpoint control(0, link.router());
  RecordingEndpoint none(255, link.router());
  RecordingEndpoint lowBitsNone(511, link.router());
  RecordingEndpoint lowBitsTaken(256 + 1, link.router());
  for (RecordingEndpoint* endpoint : {&second, &control, &none, &lowBitsNone, &lowBitsTaken}) {
    EXPECT_FALSE(router.registerService(endpoint)) << endpoint->id();
  }
  link.sends(3, bytes("80 05"));
  EXPECT_EQ(service.messages.size(), 1U);
}

TEST_F(MessageRouterTest, OfAServiceIdTheLowEightBitsCount) {
  RecordingEndpoint endpoint(256 + 40, link.router());
  EXPECT_TRUE(router.registerService(&endpoint));
  EXPECT_EQ(link.opens(9, 40), STATUS_SUCCESS);
  EXPECT_TRUE(endpoint.isChannelOpen());
}

TEST_F(MessageRouterTest, AnUnrecoverableErrorReachesTheHost) {
  EXPECT_CALL(link.host(), unrecoverableError());
  router.unrecoverableError();
}

TEST_F(MessageRouterTest, InitForgetsServicesAndMappings) {
  EXPECT_TRUE(router.init(&link.channels()));
  EXPECT_EQ(router.routeMessage(3, buffer(bytes("80 05"))), STATUS_INVALID_CHANNEL);
  EXPECT_TRUE(router.registerService(&service));
}

/// A record that only claims to be of a size.
struct ClaimedRecord : google::protobuf::MessageLite {
  explicit ClaimedRecord(std::size_t claimed) : size(claimed) {}
  std::size_t size;

  std::string GetTypeName() const override { return "ClaimedRecord"; }
  MessageLite* New(google::protobuf::Arena*) const override { return nullptr; }
  void Clear() override {}
  bool IsInitialized() const override { return true; }
  void CheckTypeAndMergeFrom(const MessageLite&) override {}
  std::size_t ByteSizeLong() const override { return size; }
  int GetCachedSize() const override { return static_cast<int>(size); }
  google::protobuf::uint8* _InternalSerialize(google::protobuf::uint8* target,
                                              google::protobuf::io::EpsCopyOutputStream*) const override {
    ADD_FAILURE() << "a record of " << size << " bytes is written";
    return target;
  }
};

TEST_F(MessageRouterTest, ARecordLongerThanAMessageCanBeLeavesNothingToSend) {
  for (const std::size_t size : {std::size_t{0x7FFFFFFE}, std::size_t{0x7FFFFFFF}, std::size_t{0xFFFFFFFF},
                                 std::size_t{0x100000002}}) {
    IoBuffer message(7);
    MessageRouter::marshallProto(0x8001, ClaimedRecord(size), &message);
    EXPECT_EQ(message.size(), 0U) << size;
    EXPECT_EQ(service.sendRecord(0x8001, ClaimedRecord(size)), STATUS_SUCCESS);
  }
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST(FreshMessageRouterTest, HasNoChannelMapped) {
  MessageRouter router;
  for (int channel = 0; channel < 256; ++channel) {
    EXPECT_FALSE(router.closeChannel(static_cast<unsigned char>(channel))) << channel;
    EXPECT_EQ(router.routeMessage(static_cast<unsigned char>(channel), shared_ptr<IoBuffer>(new IoBuffer(2))),
              STATUS_INVALID_CHANNEL);
  }
}

}  // namespace
}  // namespace test
