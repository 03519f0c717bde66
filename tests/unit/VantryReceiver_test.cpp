#include "VantryReceiver.h"

#include "EndpointTest.h"
#include "FailingCalls.h"
#include "RecordingEndpoint.h"
#include "SecureLink.h"

namespace test {
namespace {

struct VantryReceiverTest : EndpointTest {
  VantryReceiver& receiver = link.receiver();
};

TEST_F(VantryReceiverTest, AfterInitChannelZeroWorksBeforeAnyFrameHasArrived) {
  EXPECT_CALL(link.host(), byeByeResponse());
  EXPECT_EQ(link.channels().registerChannel(0, 0), STATUS_INVALID_CHANNEL);
  EXPECT_EQ(link.feeds(bytes("00 03 00 02 00 10")), STATUS_SUCCESS);
  EXPECT_TRUE(receiver.controller().isChannelOpen());
  EXPECT_EQ(receiver.controller().id(), 0);
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(VantryReceiverTest, InitReportsSuccessAlwaysAlsoASecondTime) {
  EXPECT_NE(receiver.init(shared_ptr<IControllerCallbacks>()), 0);
}

TEST_F(VantryReceiverTest, InitForgetsServicesThatWereRegisteredBefore) {
  RecordingEndpoint service(1, receiver.messageRouter());
  VantryReceiver fresh;
  RecordingEndpoint early(1, fresh.messageRouter());
  RecordingEndpoint later(1, fresh.messageRouter());
  EXPECT_TRUE(fresh.registerService(&early));
  EXPECT_NE(fresh.init(shared_ptr<IControllerCallbacks>(new MockControllerCallbacks())), 0);
  EXPECT_TRUE(fresh.registerService(&later));
}

/// Tells of its destruction.
struct MortalCallbacks : testing::NiceMock<MockControllerCallbacks> {
  explicit MortalCallbacks(int* counter) : gone(counter) {}
  ~MortalCallbacks() override { ++*gone; }
  int* gone;
};

TEST_F(VantryReceiverTest, HoldsTheCallbacksUntilOthersReplaceThem) {
  int gone = 0;
  VantryReceiver fresh;
  fresh.init(shared_ptr<IControllerCallbacks>(new MortalCallbacks(&gone)));
  EXPECT_EQ(gone, 0);
  fresh.init(shared_ptr<IControllerCallbacks>(new MortalCallbacks(&gone)));
  EXPECT_EQ(gone, 1);
}

TEST_F(VantryReceiverTest, ReleasesTheCallbacksWhenItIsDestroyed) {
  int gone = 0;
  {
    VantryReceiver fresh;
    fresh.init(shared_ptr<IControllerCallbacks>(new MortalCallbacks(&gone)));
    fresh.prepareShutdown();
    fresh.shutdown();
    EXPECT_EQ(gone, 0);
  }
  EXPECT_EQ(gone, 1);
}

TEST_F(VantryReceiverTest, AServiceIdOf255OrTakenIsRefused) {
  RecordingEndpoint first(5, receiver.messageRouter());
  RecordingEndpoint second(5, receiver.messageRouter());
  RecordingEndpoint none(255, receiver.messageRouter());
  EXPECT_TRUE(receiver.registerService(&first));
  EXPECT_FALSE(receiver.registerService(&second));
  EXPECT_FALSE(receiver.registerService(&none));
  EXPECT_EQ(link.opens(3, 5), STATUS_SUCCESS);
  EXPECT_TRUE(first.isChannelOpen());
}

TEST_F(VantryReceiverTest, StartQueuesTheVersionRequest) {
  EXPECT_EQ(receiver.start(), STATUS_SUCCESS);
  IoBuffer out;
  EXPECT_TRUE(receiver.getEncodedFrame(&out));
  EXPECT_EQ(Bytes(out.content(), out.size()), bytes("00 03 00 06 00 01 00 01 00 00"));
}

TEST_F(VantryReceiverTest, AllocatesBuffersToFillInPlace) {
  const shared_ptr<IoBuffer> buffer = receiver.allocateBuffer(65543);
  EXPECT_EQ(buffer->capacity, 65543U);
  EXPECT_EQ(buffer->start, 0U);
  EXPECT_EQ(buffer->end, 65543U);
  std::fill(buffer->data, buffer->data + 65543, static_cast<unsigned char>(1));
  EXPECT_EQ(receiver.allocateBuffer(0)->size(), 0U);
}

TEST_F(VantryReceiverTest, TellsHowManyBytesFollow) {
  unsigned char header[] = {0, FIRST, 1, 2};
  EXPECT_EQ(receiver.getAdditionalBytesToRead(header), 0x0102 + 4);
}

TEST_F(VantryReceiverTest, CopiesAFrameOutOfTheCallersMemory) {
  RecordingEndpoint service(1, receiver.messageRouter());
  link.registers(&service);
  link.opens(3, 1);
  shared_ptr<IoBuffer> kept;
  service.onMessage = [&](const shared_ptr<IoBuffer>& message) { kept = message; };
  Bytes memory = bytes("03 0B 00 03 80 01 AA");
  EXPECT_EQ(receiver.queueIncoming(memory.data(), 7), STATUS_SUCCESS);
  memory = filled(7, 0xEE);
  EXPECT_EQ(Bytes(kept->content(), kept->size()), bytes("80 01 AA"));
  EXPECT_EQ(kept->capacity, 7U);
}

TEST_F(VantryReceiverTest, TheCopyingEntryRefusesWhatIsNoWholeFrame) {
  EXPECT_CALL(link.host(), unrecoverableError()).Times(2);
  Bytes memory = bytes("00 03 00 02 00 10");
  EXPECT_EQ(receiver.queueIncoming(memory.data(), 5), STATUS_FRAMING_ERROR);
  EXPECT_EQ(receiver.queueIncoming(nullptr, 0), STATUS_FRAMING_ERROR);
}

TEST_F(VantryReceiverTest, TellsTheStatusOfAControlMessage) {
  Bytes memory = bytes("07 07 00 02 00 09");
  EXPECT_EQ(receiver.queueIncoming(memory.data(), 6), STATUS_INVALID_CHANNEL);
}

TEST_F(VantryReceiverTest, AfterPrepareShutdownNothingIsGivenOutAndNothingBlocks) {
  receiver.start();
  receiver.prepareShutdown();
  receiver.prepareShutdown();
  IoBuffer out;
  EXPECT_FALSE(receiver.getEncodedFrame(&out));
}

TEST_F(VantryReceiverTest, PrepareShutdownWakesTheWriterOnce) {
  const FailingCall posts("sem_post", FailingCall::NEVER);
  receiver.prepareShutdown();
  EXPECT_EQ(posts.calls(), 1);
}

TEST(VantryReceiverShutdownTest, LogsTheVersionAndFreesEverything) {
  LogCapture log;
  {
    SecureLink link;
    link.bringUp();
    link.controller().sendPingRequest(1, false);  // left in its queue
    log.clear();
  }
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] VTP Version : VTP_1.0_001_160829"));
}

TEST(VantryReceiverShutdownTest, WithoutCredentialsIsHarmless) {
  LogCapture log;
  VantryReceiver receiver;
  receiver.init(shared_ptr<IControllerCallbacks>(new MockControllerCallbacks()));
  receiver.prepareShutdown();
  receiver.shutdown();
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] VTP Version : VTP_1.0_001_160829"));
}

TEST(VantryReceiverShutdownTest, AfterwardsHostThreadsThatStillSendAreIgnored) {
  LogCapture log;
  VantryReceiver receiver;
  receiver.init(shared_ptr<IControllerCallbacks>(new MockControllerCallbacks()));
  ChannelManager* const channels = receiver.messageRouter()->manager();
  receiver.prepareShutdown();
  receiver.shutdown();
  EXPECT_EQ(channels->registerChannel(0, 0), STATUS_SUCCESS) << "there again, so that a frame would stay";
  receiver.controller().sendPingRequest(1, false);
  EXPECT_EQ(receiver.start(), STATUS_SUCCESS);
  IoBuffer out;
  EXPECT_FALSE(channels->extractEncodedFrame(&out));
}

TEST(VantryReceiverShutdownTest, TheRouterForgetsTheChannelsAndTheyTheirFrames) {
  LogCapture log;
  VantryReceiver receiver;
  receiver.init(shared_ptr<IControllerCallbacks>(new MockControllerCallbacks()));
  ChannelManager* const channels = receiver.messageRouter()->manager();
  receiver.start();  // leaves the version request in its queue
  receiver.prepareShutdown();
  receiver.shutdown();
  EXPECT_EQ(receiver.messageRouter()->manager(), nullptr);
  IoBuffer out;
  EXPECT_FALSE(channels->extractEncodedFrame(&out));
  EXPECT_EQ(channels->registerChannel(0, 0), STATUS_SUCCESS);
}

TEST(VantryReceiverShutdownTest, LogsThenEndsTheRouterThenTheChannelsThenTls) {
  LogCapture log;
  VantryReceiver receiver;
  receiver.init(shared_ptr<IControllerCallbacks>(new MockControllerCallbacks()));
  ChannelManager* const channels = receiver.messageRouter()->manager();
  std::vector<std::string> done;  // at each lock on the way: the log's, the channels', and OpenSSL's
  const EventAtEach locks("pthread_mutex_lock", [&](unsigned long long) {
    std::string now = log.all().empty() ? "nothing" : "log";
    if (receiver.messageRouter()->manager() == nullptr) now += ", router";
    if (channels->registerChannel(0, 0) == STATUS_SUCCESS) {
      channels->unregisterChannel(0);
      now += ", channels";
    }
    if (done.empty() || done.back() != now) done.push_back(now);
  });
  receiver.shutdown();
  EXPECT_THAT(done, ElementsAre("nothing", "log, router", "log, router, channels"));
}

TEST(VantryReceiverShutdownTest, OneReceiverAfterAnotherBringsItsLinkUp) {
  for (int i = 0; i < 3; ++i) {
    SecureLink link;
    link.bringUp();
    EXPECT_CALL(link.host(), byeByeResponse());
    EXPECT_EQ(link.sendsEncrypted(0, bytes("00 10")), STATUS_SUCCESS);
  }
}

TEST(VantryReceiverShutdownTest, TheShutdownOfOneLeavesAnotherAtWork) {
  SecureLink survivor;
  survivor.bringUp();
  {
    SecureLink other;
    other.bringUp();
  }
  EXPECT_CALL(survivor.host(), byeByeResponse());
  EXPECT_EQ(survivor.sendsEncrypted(0, bytes("00 10")), STATUS_SUCCESS);
}

}  // namespace
}  // namespace test
