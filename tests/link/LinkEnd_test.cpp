// How links end: by the host, by a callback, by the stream, at any moment.

#include <gmock/gmock.h>

#include <thread>

#include "LiveLink.h"

namespace {

using namespace test;

/// A whole short link, up to one acknowledged frame and the phone's good-bye; false if it broke on the way.
bool runs(LiveLink* link) {
  link->start();
  if (!link->comesUp() || !link->opensVideo() || !link->sendsFrame(pattern(20000))) return false;
  link->phone().sayByeBye();
  return link->pumpUntil([link] { return link->phone().end().has_value(); });
}

TEST(LinkEnd, stopsFromTheHostInTheMiddleOfAStream) {
  LiveLink link;
  link.start();
  ASSERT_TRUE(link.comesUp() && link.opensVideo() && link.sendsFrame(pattern(100)));
  link.stop();
  EXPECT_TRUE(link.transport().isStopRequested());
  EXPECT_FALSE(link.host().has("unrecoverable"));
}

TEST(LinkEnd, stopsFromInsideAMediaCallback) {
  LiveLink link;
  link.onFrame = [&link] { link.transport().requestStop(); };
  link.start();
  ASSERT_TRUE(link.comesUp() && link.opensVideo());
  EXPECT_FALSE(link.sendsFrame(pattern(100)));
  link.joins();
  EXPECT_EQ(link.delivered().size(), 1U);
}

TEST(LinkEnd, stopsFromInsideUnrecoverableErrorAfterADamagedRecord) {
  LiveLink link;
  link.start();
  ASSERT_TRUE(link.comesUp() && link.opensVideo());
  phone::Frame frame;
  frame.channel = LiveLink::VIDEO_CHANNEL;
  frame.flags = phone::flagFirst | phone::flagLast | phone::flagEncrypted;
  frame.payload = link.phone().encrypt(phone::messageBytes(MESSAGE_MEDIA_DATA, pattern(100)));
  frame.payload.back() ^= 1;
  link.phone().sendFrameAsIs(frame);
  EXPECT_FALSE(link.pumpUntil([] { return false; }));
  link.joins();
  EXPECT_TRUE(link.host().has("unrecoverable"));
  EXPECT_TRUE(link.delivered().empty());
}

/// A callback of the host, by the name that the journal gives it; the last one that its message leads to.
class StopInACallback : public testing::TestWithParam<const char*> {};

TEST_P(StopInACallback, endsTheLink) {
  LiveLink link;
  link.host().listens([&link](const std::string& event) {
    if (event == GetParam()) link.transport().requestStop();
  });
  link.start();
  const auto pings = [&link] {
    link.phone().sendPing(42);
    return link.pumpUntil([&link] { return link.host().has("ping 42"); });
  };
  const bool ended = !link.comesUp() || !link.opensVideo() || !link.sendsFrame(pattern(100)) || !pings() ||
                     (link.phone().sayByeBye(), !link.pumpUntil([] { return false; }));
  EXPECT_TRUE(ended);
  link.joins();  // returns, for both threads have ended by themselves
  EXPECT_EQ(link.host().events().back(), GetParam()) << "something was heard after the stop";
}

INSTANTIATE_TEST_SUITE_P(ofTheHost, StopInACallback,
                         testing::Values("version", "authenticated 0", "discovery", "setup", "start 17",
                                         "ping 42", "bye-bye"));

TEST(LinkEnd, stopsFromTheHostWhileAWriteBlocks) {
  LiveLink link;
  link.start();
  ASSERT_TRUE(link.comesUp() && link.opensVideo() && link.sendsFrame(pattern(100)));
  link.transport().holdsWrites();
  link.receiver().controller().sendPingRequest(1, false);
  ASSERT_TRUE(link.transport().waitsForHeldWrite());
  link.stop();  // returns
  EXPECT_FALSE(link.host().has("unrecoverable"));
}

TEST(LinkEnd, stopsFromACallbackWhileAWriteBlocks) {
  LiveLink link;
  link.onFrame = [&link] { link.transport().requestStop(); };
  link.start();
  ASSERT_TRUE(link.comesUp() && link.opensVideo());
  link.transport().holdsWrites();
  link.receiver().controller().sendPingRequest(1, false);
  ASSERT_TRUE(link.transport().waitsForHeldWrite());
  EXPECT_FALSE(link.sendsFrame(pattern(100)));
  link.joins();
  EXPECT_EQ(link.delivered().size(), 1U);
}

/// Lets `act` run inside the `which`th transfer, which then fails.
std::function<std::size_t()> actsIn(int which, std::function<void()> act) {
  return [which, act = std::move(act), count = 0]() mutable -> std::size_t {
    if (++count == which) act();
    return SIZE_MAX;
  };
}

TEST(LinkEnd, stopsFromInsideEveryReadThatDies) {
  for (int dying = 1; dying <= 20; ++dying) {
    LiveLink link;
    link.transport().cutsReads(actsIn(dying, [&link] { link.transport().requestStop(); }));
    EXPECT_FALSE(runs(&link)) << "read " << dying;
    link.joins();
    EXPECT_FALSE(link.host().has("unrecoverable")) << "read " << dying;
  }
}

TEST(LinkEnd, stopsFromInsideEveryWriteThatDies) {
  for (int dying = 1; dying <= 5; ++dying) {
    LiveLink link;
    link.transport().cutsWrites(actsIn(dying, [&link] { link.transport().requestStop(); }));
    EXPECT_FALSE(runs(&link)) << "write " << dying;
    link.joins();
    EXPECT_FALSE(link.host().has("unrecoverable")) << "write " << dying;
  }
}

TEST(LinkEnd, stopsOnceHoweverManyStopItWhileItDies) {
  for (int dying = 1; dying <= 20; ++dying) {
    LiveLink link;
    link.transport().failsRead(dying);
    std::vector<std::thread> hosts;
    link.transport().cutsReads(actsIn(dying, [&] {
      for (int i = 0; i < 3; ++i) hosts.emplace_back([&link] { link.transport().requestStop(); });
    }));
    link.transport().cutsWrites(actsIn(3, [&link] { link.transport().requestStop(); }));
    EXPECT_FALSE(runs(&link));
    link.joins();
    for (std::thread& host : hosts) host.join();
    EXPECT_GE(link.transport().aborts(), 1);
  }
}

TEST(LinkEnd, stopsInTheMiddleOfTheHandshake) {
  LiveLink link;
  link.start();
  ASSERT_TRUE(link.pumpUntil([&] { return link.phone().state() == phone::LinkState::handshaking; }));
  link.stop();
  EXPECT_FALSE(link.host().has("authenticated 0"));
}

TEST(LinkEnd, stopsInTheMiddleOfAFrame) {
  LiveLink link;
  link.start();
  ASSERT_TRUE(link.comesUp() && link.opensVideo() && link.sendsFrame(pattern(100)));
  link.phone().send(LiveLink::VIDEO_CHANNEL, MESSAGE_MEDIA_DATA, pattern(5000));
  const Bytes frame = link.phone().takeOutput();
  link.transport().gives(part(frame, 0, frame.size() / 2));
  link.stop();
  EXPECT_EQ(link.delivered().size(), 1U);
}

TEST(LinkEnd, endsWhenTheStreamEndsInTheMiddleOfAFrame) {
  LiveLink link;
  link.start();
  ASSERT_TRUE(link.comesUp() && link.opensVideo());
  link.phone().send(LiveLink::VIDEO_CHANNEL, MESSAGE_MEDIA_DATA, pattern(5000));
  const Bytes frame = link.phone().takeOutput();
  link.transport().gives(part(frame, 0, frame.size() - 1));
  link.transport().ends();
  link.joins();
  EXPECT_TRUE(link.transport().isStopRequested());
  EXPECT_TRUE(link.delivered().empty());
}

TEST(LinkEnd, survivesTheFailureOfEveryReadOfAShortLink) {
  int reads = 0;
  {
    LiveLink whole;
    ASSERT_TRUE(runs(&whole));
    whole.stop();
    reads = whole.transport().reads();
  }
  ASSERT_GT(reads, 10);
  for (int failing = 1; failing < reads; ++failing) {
    LiveLink link;
    link.transport().failsRead(failing);
    runs(&link);
    link.joins();  // returns, for both threads have ended by themselves
    EXPECT_TRUE(link.transport().isStopRequested()) << "read " << failing;
  }
}

TEST(LinkEnd, survivesTheFailureOfEveryWriteOfAShortLink) {
  int writes = 0;
  {
    LiveLink whole;
    ASSERT_TRUE(runs(&whole));
    whole.stop();
    writes = whole.transport().writes();
  }
  ASSERT_GT(writes, 5);
  for (int failing = 1; failing <= writes; ++failing) {
    LiveLink link;
    link.transport().failsWrite(failing);
    EXPECT_FALSE(runs(&link)) << "write " << failing;
    link.joins();
    EXPECT_TRUE(link.transport().isStopRequested()) << "write " << failing;
  }
}

}  // namespace
