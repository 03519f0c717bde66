#include <signal.h>

#include <atomic>
#include <thread>

#include "EndpointTest.h"
#include "FailingCalls.h"
#include "RecordingEndpoint.h"

// The ways of frames through the channel manager, and the framing error that ends them.

namespace test {
namespace {

struct IncomingFrameTest : EndpointTest {
  RecordingEndpoint service{1, link.router()};

  IncomingFrameTest() {
    link.registers(&service);
    link.opens(3, 1);
    log.clear();
  }
};

TEST_F(IncomingFrameTest, AnAtomicFrameReachesItsServiceInTheBufferThatItCameIn) {
  const shared_ptr<IoBuffer> buffer = link.receiver().allocateBuffer(8);
  const Bytes wire = bytes("03 0B 00 04 80 00 AA BB");
  std::copy(wire.begin(), wire.end(), buffer->data);
  service.onMessage = [&](const shared_ptr<IoBuffer>& message) {
    EXPECT_EQ(message, buffer);
    EXPECT_EQ(message->start, 4U);
    EXPECT_EQ(message->end, 8U);
  };
  EXPECT_EQ(link.receiver().queueIncoming(buffer), STATUS_SUCCESS);
  EXPECT_THAT(service.messages, ElementsAre(bytes("80 00 AA BB")));
}

TEST_F(IncomingFrameTest, WhatAServiceThinksOfAMessageIsNoFailureOfTheLink) {
  service.answer = STATUS_INVALID_STATE;
  EXPECT_EQ(link.sends(3, bytes("80 00")), STATUS_SUCCESS);
  service.answer = STATUS_UNEXPECTED_MESSAGE;
  EXPECT_EQ(link.sends(3, bytes("80 00")), STATUS_SUCCESS);
  service.answer = STATUS_FRAMING_ERROR;
  EXPECT_EQ(link.sends(3, bytes("80 00")), STATUS_SUCCESS);
  EXPECT_TRUE(link.channels().isRunning());
}

TEST_F(IncomingFrameTest, APlainFrameOnTheControlChannelIsAccepted) {
  EXPECT_CALL(link.host(), pingResponse(1));
  EXPECT_EQ(link.feeds(frame(0, ATOMIC, bytes("00 0C 08 01"))), STATUS_SUCCESS);
}

TEST_F(IncomingFrameTest, TheHighFlagBitsAreIgnored) {
  EXPECT_EQ(link.feeds(frame(3, 0xF0 | ATOMIC | ENCRYPTED, bytes("80 00"))), STATUS_SUCCESS);
  EXPECT_EQ(service.messages.size(), 1U);
}

TEST_F(IncomingFrameTest, AControlFrameInFragmentsIsIgnoredAndTheLinkStaysUp) {
  EXPECT_CALL(link.host(), unrecoverableError()).Times(0);
  for (const int kind : {FIRST, MIDDLE, LAST}) {
    const Bytes payload = bytes("00 09");
    const Bytes wire =
        kind == FIRST ? firstFrame(3, kind | CONTROL, 2, payload) : frame(3, kind | CONTROL, payload);
    EXPECT_EQ(link.feeds(wire), STATUS_FRAMING_ERROR);
  }
  EXPECT_THAT(log.all(), IsEmpty());
  EXPECT_TRUE(link.channels().isRunning());
  EXPECT_EQ(link.sends(3, bytes("80 00")), STATUS_SUCCESS);
}

TEST_F(IncomingFrameTest, AFramingErrorIsLoggedThenQueuedThenTold) {
  EXPECT_CALL(link.host(), unrecoverableError()).WillOnce([&] {
    EXPECT_FALSE(link.channels().isRunning());
    EXPECT_THAT(log.critical(), ElementsAre("[LHU] Framing error: len=5 framelen=2",
                                            "[LHU] Sending Framing Error notification!"));
    EXPECT_THAT(link.sentFrames(), ElementsAre(bytes("00"     // channel 0
                                                     "03"     // FRAME_ATOMIC, neither control nor encrypted
                                                     "00 02"  // length
                                                     "FF FF")));  // MESSAGE_FRAMING_ERROR, no body
  });
  EXPECT_EQ(link.feeds(bytes("03 0B 00 02 80")), STATUS_FRAMING_ERROR);
}

TEST_F(IncomingFrameTest, AFramingErrorHasStoppedTheLinkAndIsLoggedWhenItsNotificationIsQueued) {
  bool running = true;
  std::vector<std::string> lines;
  const EventAtPost queued([&] {
    running = link.channels().isRunning();
    lines = log.critical();
  });
  link.feeds(bytes("03 0B 00 02 80"));
  EXPECT_FALSE(running);
  EXPECT_THAT(lines, ElementsAre("[LHU] Framing error: len=5 framelen=2",
                                 "[LHU] Sending Framing Error notification!"));
}

TEST_F(IncomingFrameTest, EveryFrameAfterAFramingErrorRepeatsIt) {
  EXPECT_CALL(link.host(), unrecoverableError()).Times(3);
  link.feeds(bytes("03 0B 00 02 80"));
  EXPECT_EQ(link.sends(3, bytes("80 00")), STATUS_FRAMING_ERROR);
  EXPECT_EQ(link.closes(3), STATUS_FRAMING_ERROR);
  EXPECT_THAT(service.messages, IsEmpty());
}

TEST_F(IncomingFrameTest, AFramingErrorLeavesTheChannelsAsTheyWere) {
  link.feeds(bytes("03 0B 00 02 80"));
  EXPECT_TRUE(service.isChannelOpen());
  EXPECT_EQ(link.channels().registerChannel(3, 0), STATUS_INVALID_CHANNEL) << "still taken";
}

TEST_F(IncomingFrameTest, TheNotificationOfAFramingErrorIsNotGivenOut) {
  link.feeds(bytes("03 0B 00 02 80"));
  IoBuffer out;
  EXPECT_FALSE(link.receiver().getEncodedFrame(&out));
  EXPECT_EQ(out.size(), 0U);
  EXPECT_THAT(link.sent(0), ElementsAre(bytes("FF FF"))) << "it stays queued";
}

TEST_F(IncomingFrameTest, AfterPrepareShutdownAFrameIsAFramingErrorWhateverItsBytes) {
  EXPECT_CALL(link.host(), unrecoverableError()).Times(2);
  link.receiver().prepareShutdown();
  EXPECT_EQ(link.sends(3, bytes("80 00")), STATUS_FRAMING_ERROR);
  EXPECT_EQ(link.feeds(bytes("00")), STATUS_FRAMING_ERROR);
  EXPECT_THAT(log.critical(), ElementsAre("[LHU] Sending Framing Error notification!",
                                          "[LHU] Sending Framing Error notification!"));
}

TEST_F(IncomingFrameTest, AFrameOnAFreeChannelIsAFramingError) {
  EXPECT_CALL(link.host(), unrecoverableError());
  EXPECT_EQ(link.sends(4, bytes("80 00")), STATUS_FRAMING_ERROR);
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] Sending Framing Error notification!"));
}

TEST_F(IncomingFrameTest, APlainFrameOnAServiceChannelIsAFramingError) {
  EXPECT_CALL(link.host(), unrecoverableError());
  EXPECT_EQ(link.feeds(frame(3, ATOMIC, bytes("80 00"))), STATUS_FRAMING_ERROR);
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] Sending Framing Error notification!"));
  EXPECT_THAT(service.messages, IsEmpty());
}

struct OutgoingFrameTest : EndpointTest {
  ChannelManager& channels = link.channels();
  IoBuffer out;

  void queues(int channel, Bytes message) {
    EXPECT_EQ(
        channels.queueOutgoing(channel, false, message.data(), static_cast<unsigned int>(message.size())),
        STATUS_SUCCESS);
  }
  std::vector<int> channelsOf(const std::vector<Bytes>& wire) {
    std::vector<int> result;
    for (const Bytes& piece : wire) result.push_back(parseFrame(piece).channel);
    return result;
  }
};

TEST_F(OutgoingFrameTest, ChannelsTakeTurnsAFrameEachAndTheFirstTurnIsChannelZeros) {
  for (const int channel : {1, 7, 255}) channels.registerChannel(static_cast<unsigned char>(channel), 0);
  for (const int channel : {255, 7, 1, 0, 255, 7, 7}) queues(channel, bytes("80 00"));
  EXPECT_THAT(channelsOf(link.sentFrames()), ElementsAre(0, 1, 7, 255, 7, 255, 7));
}

TEST_F(OutgoingFrameTest, PrioritiesTakeNoPart) {
  channels.registerChannel(1, 127);
  channels.registerChannel(2, -127);
  for (const int channel : {2, 1, 2, 1}) queues(channel, bytes("80 00"));
  EXPECT_THAT(channelsOf(link.sentFrames()), ElementsAre(1, 2, 1, 2));
}

TEST_F(OutgoingFrameTest, TheNextTurnBeginsBehindTheChannelServedLast) {
  channels.registerChannel(5, 0);
  channels.registerChannel(9, 0);
  queues(5, bytes("80 00"));
  EXPECT_TRUE(channels.extractEncodedFrame(&out));
  queues(0, bytes("80 00"));
  queues(5, bytes("80 00"));
  queues(9, bytes("80 00"));
  EXPECT_THAT(channelsOf(link.sentFrames()), ElementsAre(9, 0, 5));
}

TEST_F(OutgoingFrameTest, LongMessagesInterleaveFragmentByFragment) {
  channels.registerChannel(1, 0);
  channels.registerChannel(2, 0);
  queues(1, pattern(3 * FRAGMENT));
  queues(2, pattern(2 * FRAGMENT));
  EXPECT_THAT(channelsOf(link.sentFrames()), ElementsAre(1, 2, 1, 2, 1));
}

TEST_F(OutgoingFrameTest, NothingQueuedGivesNothing) {
  EXPECT_FALSE(channels.extractEncodedFrame(&out));
  EXPECT_EQ(out.data, nullptr);
}

TEST_F(OutgoingFrameTest, TheWriterWaitsUntilTheVersionRequestIsQueued) {
  {
    const FailingCall waits("sem_wait", FailingCall::EVERY);
    EXPECT_FALSE(link.receiver().getEncodedFrame(&out));
    EXPECT_EQ(waits.calls(), 1);
    EXPECT_EQ(waits.number(), 0U) << "there is nothing that would let it through";
    link.receiver().start();
    EXPECT_FALSE(link.receiver().getEncodedFrame(&out)) << "the wait was interrupted";
    EXPECT_EQ(waits.number(), 1U);
  }
  EXPECT_TRUE(link.receiver().getEncodedFrame(&out));
  EXPECT_EQ(Bytes(out.content(), out.size()), bytes("00 03 00 06 00 01 00 01 00 00"));
}

TEST_F(OutgoingFrameTest, AFrameThatIsQueuedIsGivenOut) {
  queues(0, bytes("80 00"));
  EXPECT_TRUE(link.receiver().getEncodedFrame(&out));
  EXPECT_EQ(Bytes(out.content(), out.size()), bytes("00 0B 00 02 80 00"));
}

TEST_F(OutgoingFrameTest, AChannelThatGoesAwayLeavesAnEmptyWakeUpForEachOfItsFrames) {
  channels.registerChannel(1, 0);
  queues(1, bytes("80 00"));
  queues(1, bytes("80 01"));
  channels.unregisterChannel(1);
  EXPECT_FALSE(link.receiver().getEncodedFrame(&out));
  EXPECT_FALSE(link.receiver().getEncodedFrame(&out));
  queues(0, bytes("80 02"));
  EXPECT_TRUE(link.receiver().getEncodedFrame(&out)) << "the caller simply calls again";
}

TEST_F(OutgoingFrameTest, AfterPrepareShutdownNothingIsGivenOutAndNothingBlocks) {
  queues(0, bytes("80 00"));
  link.receiver().prepareShutdown();
  EXPECT_FALSE(link.receiver().getEncodedFrame(&out));
  EXPECT_FALSE(link.receiver().getEncodedFrame(&out));
  EXPECT_FALSE(link.receiver().getEncodedFrame(&out));
}

TEST_F(OutgoingFrameTest, AFramingErrorWhileTheWriterWaitsIsNotGivenOut) {
  const EventAt waiting("sem_wait", [&] { channels.sendFramingError(); });
  EXPECT_FALSE(channels.getEncodedFrame(&out));
  EXPECT_EQ(out.data, nullptr);
  EXPECT_THAT(link.sent(0), ElementsAre(bytes("FF FF"))) << "it stays queued";
}

TEST_F(OutgoingFrameTest, AQueuedFrameWakesTheWriter) {
  std::atomic<bool> result{false};
  std::thread writer([&] { result = link.receiver().getEncodedFrame(&out); });
  queues(0, bytes("80 00"));
  writer.join();
  EXPECT_TRUE(result);
}

TEST_F(OutgoingFrameTest, PrepareShutdownWakesTheWriter) {
  std::atomic<bool> result{true};
  std::thread writer([&] { result = link.receiver().getEncodedFrame(&out); });
  link.receiver().prepareShutdown();
  writer.join();
  EXPECT_FALSE(result);
}

TEST_F(OutgoingFrameTest, ASignalWakesTheWriterWithoutAFrame) {
  struct sigaction action = {};
  action.sa_handler = [](int) {};
  struct sigaction former;
  ASSERT_EQ(sigaction(SIGUSR1, &action, &former), 0);
  std::atomic<bool> result{true};
  std::atomic<bool> ended{false};
  std::thread writer([&] {
    result = link.receiver().getEncodedFrame(&out);
    ended = true;
  });
  while (!ended) {
    pthread_kill(writer.native_handle(), SIGUSR1);
    std::this_thread::yield();
  }
  writer.join();
  sigaction(SIGUSR1, &former, nullptr);
  EXPECT_FALSE(result);
  EXPECT_TRUE(link.channels().isRunning());
}

}  // namespace
}  // namespace test
