#include "ChannelManager.h"

#include "EndpointTest.h"
#include "FailingCalls.h"
#include "RecordingEndpoint.h"

// The table of channels, and what a message to send becomes.

namespace test {
namespace {

struct ChannelTableTest : EndpointTest {
  ChannelManager& channels = link.channels();

  /// The priority that is stored with a registered channel.
  int storedPriorityOf(unsigned char number) {
    shared_ptr<Frame> piece(new Frame());
    piece->channelId = number;
    piece->flags = ATOMIC | ENCRYPTED;
    shared_ptr<Channel> channel;
    bool acceptable = false;
    bool complete = false;
    channels.checkFragment(piece, &channel, &acceptable, &complete);
    return channel->priority;
  }
  /// The byte that registering with `priority` stored.
  int storedPriority(signed char priority) {
    channels.unregisterChannel(5);
    channels.registerChannel(5, priority);
    return storedPriorityOf(5);
  }
};

TEST_F(ChannelTableTest, StoresThePriorityPlus127InEightBits) {
  EXPECT_EQ(storedPriority(127), 254);
  EXPECT_EQ(storedPriority(1), 128);
  EXPECT_EQ(storedPriority(0), 127);
  EXPECT_EQ(storedPriority(-127), 0);
  EXPECT_EQ(storedPriority(-128), 255);
}

TEST_F(ChannelTableTest, ARegisteredNumberIsRefusedAndTheChannelStays) {
  EXPECT_EQ(channels.registerChannel(5, 0), STATUS_SUCCESS);
  channels.queueOutgoing(5, false, bytes("80 00").data(), 2);
  EXPECT_EQ(channels.registerChannel(5, 0), STATUS_INVALID_CHANNEL);
  EXPECT_THAT(link.sent(5), ElementsAre(bytes("80 00")));
}

TEST_F(ChannelTableTest, ChannelZeroIsRegisteredFromTheOutsetWithTheLowestPriority) {
  EXPECT_EQ(channels.registerChannel(0, 0), STATUS_INVALID_CHANNEL);
  EXPECT_EQ(storedPriorityOf(0), 255) << "-128";
}

TEST_F(ChannelTableTest, AFreeNumberCannotBeUnregistered) {
  EXPECT_EQ(channels.unregisterChannel(5), STATUS_INVALID_CHANNEL);
  channels.registerChannel(5, 0);
  EXPECT_EQ(channels.unregisterChannel(5), STATUS_SUCCESS);
  EXPECT_EQ(channels.unregisterChannel(5), STATUS_INVALID_CHANNEL);
}

TEST_F(ChannelTableTest, AFreeNumberCanBeRegisteredAgain) {
  channels.registerChannel(255, 0);
  channels.unregisterChannel(255);
  EXPECT_EQ(channels.registerChannel(255, 0), STATUS_SUCCESS);
}

TEST_F(ChannelTableTest, AMessageOnAFreeNumberIsDropped) {
  const FailingCall posts("sem_post", FailingCall::NEVER);
  EXPECT_EQ(channels.queueOutgoing(5, false, bytes("80 00").data(), 2), STATUS_INVALID_CHANNEL);
  EXPECT_EQ(channels.queueOutgoingUnencrypted(5, false, bytes("80 00").data(), 2), STATUS_INVALID_CHANNEL);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  EXPECT_EQ(posts.calls(), 0);
}

TEST_F(ChannelTableTest, UnregisteringDropsWhatWasQueued) {
  channels.registerChannel(5, 0);
  channels.queueOutgoing(5, false, bytes("80 00").data(), 2);
  channels.unregisterChannel(5);
  channels.registerChannel(5, 0);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(ChannelTableTest, InitForgetsAllChannelsAndRunsAgain) {
  channels.registerChannel(5, 0);
  channels.prepareShutdown();
  EXPECT_TRUE(channels.init(link.router()));
  EXPECT_TRUE(channels.isRunning());
  EXPECT_EQ(channels.registerChannel(5, 0), STATUS_SUCCESS);
  EXPECT_EQ(channels.registerChannel(0, 0), STATUS_SUCCESS);
}

TEST_F(ChannelTableTest, InitHasTheTurnsBeginAtChannelZeroAgain) {
  const auto queuesOn = [&](std::initializer_list<unsigned char> numbers) {
    for (const unsigned char number : numbers) {
      channels.registerChannel(number, 0);
      channels.queueOutgoing(number, false, bytes("80 00").data(), 2);
    }
  };
  const auto served = [&] {
    std::vector<int> numbers;
    for (const Bytes& wire : link.sentFrames()) numbers.push_back(parseFrame(wire).channel);
    return numbers;
  };
  queuesOn({5});
  EXPECT_THAT(served(), ElementsAre(5)) << "the next turn would be that of channel 6";
  channels.init(link.router());
  queuesOn({6, 255, 0});
  EXPECT_THAT(served(), ElementsAre(0, 6, 255));
}

TEST_F(ChannelTableTest, PrepareShutdownStopsBeforeItWakesTheWriter) {
  bool running = true;
  const EventAtPost woken([&] { running = channels.isRunning(); });
  channels.prepareShutdown();
  EXPECT_FALSE(running);
}

TEST_F(ChannelTableTest, ShutdownDropsChannelsAndTheirFrames) {
  channels.queueOutgoing(0, false, bytes("80 00").data(), 2);
  channels.shutdown();
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  EXPECT_EQ(channels.registerChannel(0, 0), STATUS_SUCCESS);
}

TEST_F(ChannelTableTest, AfterShutdownAFrameIsAFramingErrorThatReachesNobody) {
  EXPECT_CALL(link.host(), unrecoverableError()).Times(0);
  channels.prepareShutdown();
  channels.shutdown();
  EXPECT_EQ(link.feeds(frame(0, ATOMIC, bytes("00 10"))), STATUS_FRAMING_ERROR);
}

struct CuttingTest : EndpointTest {
  ChannelManager& channels = link.channels();
  ChannelSet waiting;
  shared_ptr<Channel> target{new Channel(9, 0, &waiting)};

  std::vector<shared_ptr<Frame>> cut(Bytes message, bool control = false, bool encrypted = true) {
    channels.messageToFrames(9, control, message.data(), static_cast<unsigned int>(message.size()), target,
                             encrypted);
    std::vector<shared_ptr<Frame>> result;
    while (target->hasOutgoing()) result.push_back(target->dequeueOutgoing());
    return result;
  }
  /// Kind and length of each frame of a message of `size` bytes, and the total length where there is one.
  std::string shape(std::size_t size) {
    std::string result;
    for (const shared_ptr<Frame>& piece : cut(pattern(size))) {
      result += "MFLA"[piece->kind()] + std::to_string(piece->length);
      if (piece->totalLength != 0) result += "/" + std::to_string(piece->totalLength);
      result += ' ';
    }
    return result;
  }
};

TEST_F(CuttingTest, UpToTheFragmentLimitAMessageIsOneFrame) {
  EXPECT_EQ(shape(1), "A1 ");
  EXPECT_EQ(shape(16127), "A16127 ");
  EXPECT_EQ(shape(16128), "A16128 ");
}

TEST_F(CuttingTest, AboveTheFragmentLimitAMessageIsSeveralFrames) {
  EXPECT_EQ(shape(16129), "F16128/16129 L1 ");
  EXPECT_EQ(shape(32256), "F16128/32256 L16128 ");
  EXPECT_EQ(shape(32257), "F16128/32257 M16128 L1 ");
  EXPECT_EQ(shape(4 * 16128), "F16128/64512 M16128 M16128 L16128 ");
}

TEST_F(CuttingTest, AnEmptyMessageMakesNoFrameAndWakesNobody) {
  const FailingCall posts("sem_post", FailingCall::NEVER);
  unsigned char nothing = 0;
  EXPECT_EQ(channels.queueOutgoing(0, false, &nothing, 0), STATUS_SUCCESS);
  EXPECT_EQ(channels.queueOutgoing(0, false, nullptr, 0), STATUS_SUCCESS);
  EXPECT_EQ(posts.calls(), 0);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(CuttingTest, TheWriterIsWokenOnceForEachFrame) {
  const FailingCall posts("sem_post", FailingCall::NEVER);
  cut(pattern(3 * 16128));
  EXPECT_EQ(posts.calls(), 3);
}

TEST_F(CuttingTest, AFrameIsQueuedAndTheWriterWokenBeforeTheNextIsQueued) {
  std::vector<int> queuedAtTheFirstPost;
  const EventAtPost posted([&] {
    while (target->hasOutgoing()) queuedAtTheFirstPost.push_back(target->dequeueOutgoing()->kind());
  });
  const std::vector<shared_ptr<Frame>> later = cut(pattern(3 * FRAGMENT));
  EXPECT_THAT(queuedAtTheFirstPost, ElementsAre(FIRST));
  EXPECT_EQ(later.size(), 2U);
}

TEST_F(CuttingTest, AllFramesShareOneCopyOfTheMessage) {
  const Bytes message = pattern(40000);
  const std::vector<shared_ptr<Frame>> pieces = cut(message);
  ASSERT_EQ(pieces.size(), 3U);
  const shared_ptr<IoBuffer> copy = pieces[0]->buffer;
  EXPECT_EQ(copy->capacity, 40000U);
  EXPECT_EQ(Bytes(copy->content(), copy->size()), message);
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    EXPECT_EQ(pieces[i]->buffer, copy);
    EXPECT_EQ(pieces[i]->payload, copy->data + i * 16128);
  }
}

TEST_F(CuttingTest, TheCopyHasTheMessagesLengthAndNoMore) {
  for (const std::size_t length : {1U, 64U, 2047U, 2048U, 16128U, 16129U}) {
    for (const bool encrypted : {false, true}) {
      SCOPED_TRACE(length);
      const Bytes message = pattern(length);
      const shared_ptr<IoBuffer> copy = cut(message, false, encrypted).at(0)->buffer;
      EXPECT_EQ(copy->capacity, length);
      EXPECT_EQ(Bytes(copy->content(), copy->size()), message);
    }
  }
}

TEST_F(CuttingTest, FlagsStandOnEveryFrame) {
  for (const shared_ptr<Frame>& piece : cut(pattern(40000), true, true))
    EXPECT_EQ(piece->flags & ~ATOMIC, 0x0C);
  for (const shared_ptr<Frame>& piece : cut(pattern(40000), true, false))
    EXPECT_EQ(piece->flags & ~ATOMIC, 0x04);
  for (const shared_ptr<Frame>& piece : cut(pattern(40000), false, true))
    EXPECT_EQ(piece->flags & ~ATOMIC, 0x08);
  for (const shared_ptr<Frame>& piece : cut(pattern(40000), false, false))
    EXPECT_EQ(piece->flags & ~ATOMIC, 0);
}

TEST_F(CuttingTest, TheThreeWaysToQueueDifferInEncryption) {
  Bytes data = bytes("80 00");
  channels.queueOutgoing(0, false, data.data(), 2);
  channels.queueOutgoing(0, true, data.data(), 2, true);
  channels.queueOutgoing(0, true, data.data(), 2, false);
  channels.queueOutgoingUnencrypted(0, false, data.data(), 2);
  std::vector<int> flags;
  for (const Bytes& wire : link.sentFrames()) flags.push_back(parseFrame(wire).flags);
  EXPECT_THAT(flags, ElementsAre(0x0B, 0x0F, 0x07, 0x03));
}

TEST_F(CuttingTest, TheCallersMemoryIsFreeAgainAtOnce) {
  Bytes data = bytes("80 00 01 02");
  channels.queueOutgoing(0, false, data.data(), 4);
  data = filled(4, 0xEE);
  EXPECT_THAT(link.sent(0), ElementsAre(bytes("80 00 01 02")));
}

TEST_F(CuttingTest, OnTheWireAMessageOfTheFragmentLimitHasAShortHeader) {
  Bytes data = pattern(16128);
  channels.queueOutgoing(0, false, data.data(), 16128);
  EXPECT_THAT(link.sentFrames(), ElementsAre(bytes("00 0B 3F 00") + data));
}

TEST_F(CuttingTest, OnTheWireALongMessageTellsItsLengthOnce) {
  Bytes data = pattern(32257);
  channels.queueOutgoing(0, false, data.data(), 32257);
  EXPECT_THAT(link.sentFrames(), ElementsAre(bytes("00"            // channel
                                                   "09"            // FRAME_FIRST, encrypted
                                                   "3F 00"         // length 16128
                                                   "00 00 7E 01")  // total length 32257
                                                 + part(data, 0, 16128),
                                             bytes("00 08 3F 00") + part(data, 16128, 16128),  // FRAME_MIDDLE
                                             bytes("00 0A 00 01") + part(data, 32256)));       // FRAME_LAST
}

}  // namespace
}  // namespace test
