#include "EndpointTest.h"
#include "FailingCalls.h"
#include "MemoryTransport.h"
#include "RecordingEndpoint.h"
#include "Semaphore.h"
#include "ThreadDefaults.h"

// The reader and the writer at work.

namespace test {
namespace {

using testing::Contains;
using testing::Not;

struct TransportThreadsTest : EndpointTest {
  RecordingEndpoint service{1, link.router()};
  MemoryTransport transport{&link.receiver()};

  TransportThreadsTest() {
    link.registers(&service);
    link.opens(3, 1);
    log.clear();
  }
  ~TransportThreadsTest() override {
    transport.requestStop();
    transport.waitForExit();
  }
  /// Reads `stream` to its end, which stops both threads.
  void readsAll(const Bytes& stream) {
    transport.gives(stream);
    transport.ends();
    transport.start();
    transport.waitForExit();
  }
};

TEST_F(TransportThreadsTest, ReadFrameAfterFrame) {
  readsAll(frame(3, ATOMIC | ENCRYPTED, bytes("80 01")) +
           firstFrame(3, FIRST | ENCRYPTED, 4, bytes("80 02")) + frame(3, LAST | ENCRYPTED, bytes("AA BB")));
  EXPECT_THAT(service.messages, ElementsAre(bytes("80 01"), bytes("80 02 AA BB")));
}

/// The same stream, however it is cut: (most bytes of the first read, of the second, and so on in turn).
struct CutStreamTest : TransportThreadsTest, testing::WithParamInterface<std::vector<std::size_t>> {};

TEST_P(CutStreamTest, YieldsTheSameMessages) {
  Bytes stream;
  std::vector<Bytes> messages;
  for (const std::size_t size : {2U, 300U, 16128U, 16129U, 40000U, 3U}) {
    messages.push_back(bytes("80 00") + pattern(size - 2, static_cast<unsigned int>(size)));
    for (const Bytes& piece : frames(3, ENCRYPTED, messages.back())) stream = stream + piece;
  }
  transport.cutsReads(
      [cuts = GetParam(), turn = std::size_t{0}]() mutable { return cuts[turn++ % cuts.size()]; });
  readsAll(stream);
  EXPECT_EQ(service.messages, messages);
}

INSTANTIATE_TEST_SUITE_P(Whole, CutStreamTest, testing::Values(std::vector<std::size_t>{1U << 20}));
INSTANTIATE_TEST_SUITE_P(ByteByByte, CutStreamTest, testing::Values(std::vector<std::size_t>{1}));
INSTANTIATE_TEST_SUITE_P(Awkward, CutStreamTest,
                         testing::Values(std::vector<std::size_t>{3, 1}, std::vector<std::size_t>{4, 7, 1},
                                         std::vector<std::size_t>{2, 5, 16127},
                                         std::vector<std::size_t>{4096}));

TEST_F(TransportThreadsTest, TheWriterWritesWholeFramesInPieces) {
  transport.cutsWrites([] { return 3; });
  transport.start();
  Bytes message = bytes("80 01") + pattern(20000);
  link.router()->queueOutgoing(3, message.data(), static_cast<unsigned int>(message.size()));
  Bytes written;
  while (written.size() < 8 + 16128 + 4 + 3874) written = written + transport.waitsForBytes();
  EXPECT_EQ(cutIntoFrames(written), frames(3, ENCRYPTED, message));
}

TEST_F(TransportThreadsTest, AFirstFrameOfLengthZeroIsReadAndGoesOn) {
  readsAll(bytes("03 09 00 00 00 00 00 02") + frame(3, LAST | ENCRYPTED, bytes("80 01")));
  EXPECT_THAT(service.messages, ElementsAre(bytes("80 01")));
}

TEST_F(TransportThreadsTest, AnyOtherFrameOfLengthZeroStopsTheLink) {
  transport.gives(bytes("03 0B 00 00"));
  transport.start();
  transport.waitForExit();
  EXPECT_THAT(log.critical(),
              ElementsAre("[LHU] Bad payload length 0. Shutting down due to potential framing error."));
  EXPECT_TRUE(transport.isStopRequested());
  EXPECT_EQ(transport.aborts(), 1);
}

TEST_F(TransportThreadsTest, AReadThatFailsStopsTheLinkWithoutACallback) {
  EXPECT_CALL(link.host(), unrecoverableError()).Times(0);
  transport.failsRead(1);
  transport.start();
  transport.waitForExit();
  EXPECT_THAT(log.critical(), ElementsAre("[LHU] Encounted fatal error on read."));
  EXPECT_THAT(log.debug(),
              testing::UnorderedElementsAre("[LHU] Reader thread exiting.", "[LHU] Writer thread exiting.",
                                            "[LHU] Reader thread joined", "[LHU] Writer thread joined"));
  EXPECT_GE(transport.aborts(), 1);
}

TEST_F(TransportThreadsTest, AReadThatFailsInsideAFrameDropsIt) {
  readsAll(bytes("03 0B 00 04 80 01"));
  EXPECT_THAT(service.messages, IsEmpty());
  EXPECT_THAT(log.critical(), ElementsAre("[LHU] Encounted fatal error on read."));
  EXPECT_THAT(log.debug(), Not(Contains("[LHU] Reader thread shutting down on request.")));
}

TEST_F(TransportThreadsTest, AWriteThatFailsStopsTheLinkWithoutACallback) {
  EXPECT_CALL(link.host(), unrecoverableError()).Times(0);
  transport.failsWrite(1);
  transport.start();
  link.receiver().start();
  transport.waitForExit();
  EXPECT_THAT(log.critical(), Contains("[LHU] Encounted fatal error on write."));
  EXPECT_TRUE(transport.isStopRequested());
  EXPECT_GE(transport.aborts(), 1);
}

TEST_F(TransportThreadsTest, AStopWhileTheHeaderIsReadIsLogged) {
  transport.gives(bytes("03 0B"));
  transport.cutsReads([this, bytes = 0]() mutable {
    if (++bytes == 2) transport.requestStop();
    return 1;
  });
  transport.start();
  transport.waitForExit();
  EXPECT_THAT(log.debug(), Contains("[LHU] Reader thread shutting down on request."));
  EXPECT_EQ(transport.aborts(), 1) << "the reader does not stop what is stopped";
}

/// Is stopped by its first read, which reads a whole header all the same.
struct StopInsideARead : Transport {
  using Transport::Transport;
  std::atomic<int> reads{0};
  std::atomic<int> aborts{0};

  void abortTransfers() override { ++aborts; }
  int read(void* data, unsigned int) override {
    ++reads;
    const Bytes header = bytes("03 0B 00 02");
    std::copy(header.begin(), header.end(), static_cast<unsigned char*>(data));
    requestStop();
    return 4;
  }
  int write(void*, unsigned int) override { return -1; }
};

TEST_F(TransportThreadsTest, AStopWithAWholeHeaderReadIsLoggedToo) {
  StopInsideARead stopping(&link.receiver());
  stopping.start();
  stopping.waitForExit();
  EXPECT_THAT(log.debug(), Contains("[LHU] Reader thread shutting down on request."));
  EXPECT_EQ(stopping.reads, 1);
  EXPECT_EQ(stopping.aborts, 1);
}

TEST_F(TransportThreadsTest, AStopBehindTheHeaderIsNotLogged) {
  transport.gives(bytes("03 0B 00 04 80 01 02 03"));
  transport.cutsReads([this, bytes = 0]() mutable {
    if (++bytes == 5) transport.requestStop();
    return 1;
  });
  transport.start();
  transport.waitForExit();
  EXPECT_THAT(log.all(), Not(Contains("debug [LHU] Reader thread shutting down on request.")));
  EXPECT_THAT(log.debug(), Contains("[LHU] Reader thread exiting."));
  EXPECT_THAT(service.messages, IsEmpty());
  EXPECT_EQ(transport.aborts(), 2) << "here the reader stops once more, as after any read that failed";
}

TEST_F(TransportThreadsTest, AFramingErrorDoesNotEndTheReader) {
  EXPECT_CALL(link.host(), unrecoverableError()).Times(3);
  readsAll(frame(9, ATOMIC | ENCRYPTED, bytes("80 01")) + frame(3, ATOMIC | ENCRYPTED, bytes("80 01")) +
           frame(3, ATOMIC | ENCRYPTED, bytes("80 02")));
  EXPECT_THAT(service.messages, IsEmpty());
}

TEST_F(TransportThreadsTest, TheHostMayStopFromTheCallbackOfAFramingError) {
  EXPECT_CALL(link.host(), unrecoverableError()).WillOnce([&] { transport.requestStop(); });
  transport.gives(frame(9, ATOMIC | ENCRYPTED, bytes("80 01")) +
                  frame(3, ATOMIC | ENCRYPTED, bytes("80 01")));
  transport.start();
  transport.waitForExit();
  EXPECT_THAT(service.messages, IsEmpty());
  EXPECT_THAT(log.debug(), Contains("[LHU] Reader thread exiting."));
  EXPECT_THAT(log.debug(), Not(Contains("[LHU] Reader thread shutting down on request.")));
}

TEST_F(TransportThreadsTest, TheHostMayStopFromAnyCallback) {
  service.onMessage = [&](const shared_ptr<IoBuffer>&) { transport.requestStop(); };
  transport.gives(frame(3, ATOMIC | ENCRYPTED, bytes("80 01")) +
                  frame(3, ATOMIC | ENCRYPTED, bytes("80 02")));
  transport.start();
  transport.waitForExit();
  EXPECT_THAT(service.messages, ElementsAre(bytes("80 01")));
}

TEST_F(TransportThreadsTest, AStopBeforeTheStartEndsBothThreadsAtOnce) {
  transport.requestStop();
  transport.start();
  transport.waitForExit();
  EXPECT_EQ(transport.reads(), 0);
  EXPECT_EQ(transport.writes(), 0);
}

/// Stops in a callback of the host, to which the message with this type and body leads.
struct StopInACallbackTest : TransportThreadsTest, testing::WithParamInterface<const char*> {};

TEST_P(StopInACallbackTest, IsTheLastThatTheReaderDoes) {
  MockControllerCallbacks& host = link.host();
  int heard = 0;  // the reader's, until it has ended
  const auto stops = [&] {
    ++heard;
    transport.requestStop();
  };
  ON_CALL(host, pingResponse).WillByDefault(stops);
  ON_CALL(host, byeByeResponse).WillByDefault(stops);
  ON_CALL(host, navigationFocusRequest).WillByDefault(stops);
  ON_CALL(host, audioFocusRequest).WillByDefault(stops);
  ON_CALL(host, voiceSessionNotification).WillByDefault(stops);
  const Bytes message = frame(0, ATOMIC | ENCRYPTED, bytes(GetParam()));
  EXPECT_CALL(host, unrecoverableError()).Times(0);
  readsAll(message + message);
  EXPECT_EQ(heard, 1) << "something was heard after the stop";
  EXPECT_EQ(transport.reads(), 2) << "of one header and what is behind it";
  EXPECT_EQ(transport.aborts(), 1);
  EXPECT_THAT(log.debug(), Contains("[LHU] Reader thread exiting."));
  EXPECT_THAT(log.debug(), Not(Contains("[LHU] Reader thread shutting down on request.")));
}

INSTANTIATE_TEST_SUITE_P(PingResponse, StopInACallbackTest, testing::Values("00 0C 08 01"));
INSTANTIATE_TEST_SUITE_P(NavigationFocusRequest, StopInACallbackTest, testing::Values("00 0D 08 01"));
INSTANTIATE_TEST_SUITE_P(ByeByeResponse, StopInACallbackTest, testing::Values("00 10"));
INSTANTIATE_TEST_SUITE_P(VoiceSessionNotification, StopInACallbackTest, testing::Values("00 11 08 01"));
INSTANTIATE_TEST_SUITE_P(AudioFocusRequest, StopInACallbackTest, testing::Values("00 12 08 01"));

TEST_F(TransportThreadsTest, AreGivenNeitherANameNorAPriority) {
  const ThreadDefaults defaults;
  Semaphore atWork;
  pthread_t reader{};
  pthread_t writer{};
  const auto tells = [&atWork](pthread_t* thread) {
    return [&atWork, thread] {
      *thread = pthread_self();
      atWork.up();
      return SIZE_MAX;
    };
  };
  transport.cutsReads(tells(&reader));
  transport.cutsWrites(tells(&writer));
  transport.start();
  link.receiver().start();
  for (int threads = 0; threads < 2;) threads += atWork.down();
  defaults.expectOf(reader);
  defaults.expectOf(writer);
}

TEST_F(TransportThreadsTest, WaitForExitJoinsTheReaderAndSaysSoBeforeItJoinsTheWriter) {
  pthread_t writer{};
  transport.cutsWrites([&writer] {
    writer = pthread_self();
    return SIZE_MAX;
  });
  transport.start();
  link.receiver().start();
  transport.waitsForBytes();
  transport.requestStop();

  std::vector<std::string> events;
  const auto takesLines = [&] {
    for (const std::string& line : log.debug()) {
      if (line.find("joined") != std::string::npos) events.push_back(line);
    }
    log.clear();
  };
  {
    const EventAtEach joins("pthread_join", [&](unsigned long long thread) {
      takesLines();
      events.push_back(pthread_equal(thread, writer) ? "join the writer" : "join the reader");
    });
    transport.waitForExit();
  }
  takesLines();
  EXPECT_THAT(events, ElementsAre("join the reader", "[LHU] Reader thread joined", "join the writer",
                                  "[LHU] Writer thread joined"));
}

TEST_F(TransportThreadsTest, TheLargestFrameIsRead) {
  const Bytes message = bytes("80 00") + filled(65533, 7);
  readsAll(frame(3, ATOMIC | ENCRYPTED, message));
  EXPECT_THAT(service.messages, ElementsAre(message));
}

}  // namespace
}  // namespace test
