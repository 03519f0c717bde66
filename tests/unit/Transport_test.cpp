#include "Transport.h"

#include <atomic>
#include <deque>

#include "EndpointTest.h"
#include "FailingCalls.h"
#include "MemoryTransport.h"
#include "RecordingEndpoint.h"

namespace test {
namespace {

/// A transport whose reads and writes give a list of results and keep what they were asked for.
struct ScriptedTransport : Transport {
  using Transport::Transport;
  std::deque<int> results;
  std::vector<unsigned int> asked;
  Bytes moved;
  int aborts = 0;
  std::function<void()> beforeEach;

  void abortTransfers() override { ++aborts; }
  int read(void* data, unsigned int length) override {
    const int result = next(length);
    for (int i = 0; i < result; ++i)
      static_cast<unsigned char*>(data)[i] = static_cast<unsigned char>(0xA0 + i);
    return result;
  }
  int write(void* data, unsigned int length) override {
    const int result = next(length);
    if (result > 0) moved = moved + Bytes(data, static_cast<std::size_t>(result));
    return result;
  }

 private:
  int next(unsigned int length) {
    asked.push_back(length);
    if (beforeEach) beforeEach();
    const int result = results.front();
    results.pop_front();
    return result;
  }
};

struct TransferTest : EndpointTest {
  ScriptedTransport transport{&link.receiver()};
  unsigned char data[6] = {1, 2, 3, 4, 5, 6};

  bool reads(std::deque<int> results) {
    transport.results = std::move(results);
    return transport.readOrFail(data, sizeof data);
  }
  bool writes(std::deque<int> results) {
    transport.results = std::move(results);
    return transport.writeOrFail(data, sizeof data);
  }
};

TEST_F(TransferTest, AReadGoesOnUntilItHasEverything) {
  EXPECT_TRUE(reads({2, 1, 3}));
  EXPECT_THAT(transport.asked, ElementsAre(6, 4, 3));
  EXPECT_EQ(Bytes(data, 6), bytes("A0 A1 A0 A0 A1 A2"));
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(TransferTest, AReadThatHasNothingNowOrMakesNoProgressIsRepeated) {
  EXPECT_TRUE(reads({-2, 0, 5, -2, -2, 1}));
  EXPECT_THAT(transport.asked, ElementsAre(6, 6, 6, 1, 1, 1));
}

TEST_F(TransferTest, AFatalReadIsLogged) {
  EXPECT_FALSE(reads({2, -1}));
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] Encounted fatal error on read."));
  EXPECT_EQ(transport.aborts, 0) << "stopping is the caller's";
}

TEST_F(TransferTest, AStopInTheMiddleOfAReadFailsItWithoutALine) {
  transport.beforeEach = [&] { transport.requestStop(); };
  EXPECT_FALSE(reads({2}));
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(TransferTest, AStopDuringTheLastReadDoesNotFailIt) {
  transport.beforeEach = [&] { transport.requestStop(); };
  EXPECT_TRUE(reads({6}));
}

TEST_F(TransferTest, AfterAStopNothingIsReadOrWritten) {
  transport.requestStop();
  EXPECT_FALSE(reads({}));
  EXPECT_FALSE(writes({}));
  EXPECT_THAT(transport.asked, IsEmpty());
}

TEST_F(TransferTest, NothingIsReadAndWrittenWithoutACall) {
  EXPECT_TRUE(transport.readOrFail(data, 0));
  EXPECT_TRUE(transport.writeOrFail(data, 0));
  EXPECT_THAT(transport.asked, IsEmpty());
}

TEST_F(TransferTest, AWriteGoesOnUntilEverythingIsOut) {
  EXPECT_TRUE(writes({2, -2, 0, 1, 3}));
  EXPECT_THAT(transport.asked, ElementsAre(6, 4, 4, 4, 3));
  EXPECT_EQ(transport.moved, bytes("01 02 03 04 05 06"));
}

TEST_F(TransferTest, AFatalWriteIsLogged) {
  EXPECT_FALSE(writes({2, -1}));
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] Encounted fatal error on write."));
}

TEST_F(TransferTest, AStopInTheMiddleOfAWriteFailsItWithoutALine) {
  transport.beforeEach = [&] { transport.requestStop(); };
  EXPECT_FALSE(writes({2}));
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(TransferTest, AWriteThatNeverProgressesIsLeftByAStopOnly) {
  transport.beforeEach = [&] {
    if (transport.asked.size() == 100) transport.requestStop();
  };
  EXPECT_FALSE(writes(std::deque<int>(1000, -2)));
  EXPECT_EQ(transport.asked.size(), 100U);
}

TEST_F(TransferTest, RequestStopStopsTheReceiverBeforeItAbortsTheTransfers) {
  struct Watcher : ScriptedTransport {
    Watcher(VantryReceiver* target, ChannelManager* manager) : ScriptedTransport(target), channels(manager) {}
    ChannelManager* channels;
    void abortTransfers() override {
      EXPECT_TRUE(isStopRequested());
      EXPECT_FALSE(channels->isRunning());
      ++aborts;
    }
  } watcher(&link.receiver(), &link.channels());
  EXPECT_FALSE(watcher.isStopRequested());
  watcher.requestStop();
  watcher.requestStop();
  EXPECT_EQ(watcher.aborts, 2) << "each step bears repetition";
}

TEST_F(TransferTest, TheStopIsThereWhenTheWriterIsWoken) {
  bool requested = false;
  int aborts = -1;
  const EventAtPost woken([&] {
    requested = transport.isStopRequested();
    aborts = transport.aborts;
  });
  transport.requestStop();
  EXPECT_TRUE(requested);
  EXPECT_EQ(aborts, 0) << "that is the last step";
}

TEST_F(TransferTest, WaitForExitLogsEvenWhereNothingWasStarted) {
  transport.waitForExit();
  EXPECT_THAT(log.all(), ElementsAre("debug [LHU] Reader thread joined", "debug [LHU] Writer thread joined"));
}

TEST_F(TransferTest, WithoutEitherThreadStartFailsAndNothingIsWaitedFor) {
  MemoryTransport memory(&link.receiver());
  const FailingCall failing("pthread_create", FailingCall::EVERY);
  EXPECT_FALSE(memory.start());
  EXPECT_EQ(failing.calls(), 2) << "the writer is tried all the same";
  memory.waitForExit();
  EXPECT_EQ(memory.reads(), 0);
  EXPECT_EQ(memory.writes(), 0);
}

TEST_F(TransferTest, AReaderThatCannotStartLeavesTheWriter) {
  MemoryTransport memory(&link.receiver());
  {
    const FailingCall failing("pthread_create", 1);
    EXPECT_TRUE(memory.start());
  }
  link.receiver().start();
  EXPECT_EQ(memory.waitsForBytes(), bytes("00 03 00 06 00 01 00 01 00 00"));
}

TEST_F(TransferTest, AWriterThatCannotStartLeavesTheReader) {
  std::atomic<bool> arrived{false};
  EXPECT_CALL(link.host(), byeByeResponse()).WillOnce([&] { arrived = true; });
  MemoryTransport memory(&link.receiver());
  {
    const FailingCall failing("pthread_create", 2);
    EXPECT_TRUE(memory.start());
  }
  memory.gives(bytes("00 03 00 02 00 10"));
  memory.ends();
  memory.waitsForAbort();
  EXPECT_TRUE(arrived);
}

}  // namespace
}  // namespace test
