#include "Channel.h"

#include <gmock/gmock.h>

namespace test {
namespace {

shared_ptr<Frame> frameOf(unsigned short length, unsigned int total = 0) {
  shared_ptr<Frame> made(new Frame());
  made->length = length;
  made->totalLength = total;
  return made;
}

struct ChannelTest : testing::Test {
  ChannelSet waiting;
  Channel channel{5, 127, &waiting};
};

TEST_F(ChannelTest, IsEmptyAtFirst) {
  EXPECT_EQ(channel.id, 5);
  EXPECT_EQ(channel.priority, 127);
  EXPECT_FALSE(channel.hasIncoming());
  EXPECT_FALSE(channel.hasOutgoing());
  EXPECT_FALSE(channel.dequeueOutgoing());
}

TEST_F(ChannelTest, GivesOutgoingFramesOldestFirst) {
  const shared_ptr<Frame> first = frameOf(1);
  const shared_ptr<Frame> second = frameOf(2);
  channel.enqueueOutgoing(first);
  channel.enqueueOutgoing(second);
  EXPECT_EQ(channel.dequeueOutgoing(), first);
  EXPECT_TRUE(channel.hasOutgoing());
  EXPECT_EQ(channel.dequeueOutgoing(), second);
  EXPECT_FALSE(channel.hasOutgoing());
}

TEST_F(ChannelTest, GivesIncomingFramesOldestFirst) {
  const shared_ptr<Frame> first = frameOf(1);
  const shared_ptr<Frame> second = frameOf(2);
  channel.enqueueIncoming(first);
  channel.enqueueIncoming(second);
  EXPECT_EQ(channel.dequeueIncoming(), first);
  EXPECT_EQ(channel.dequeueIncoming(), second);
  EXPECT_FALSE(channel.hasIncoming());
}

TEST_F(ChannelTest, ShowsTheNewestIncomingFrameWithoutRemovingIt) {
  const shared_ptr<Frame> newest = frameOf(2);
  channel.enqueueIncoming(frameOf(1));
  channel.enqueueIncoming(newest);
  EXPECT_EQ(channel.peekLastIncoming(), newest);
  EXPECT_EQ(channel.peekLastIncoming(), newest);
}

TEST_F(ChannelTest, TheTwoQueuesAreApart) {
  channel.enqueueIncoming(frameOf(1));
  EXPECT_FALSE(channel.hasOutgoing());
  channel.dequeueIncoming();
  channel.enqueueOutgoing(frameOf(1));
  EXPECT_FALSE(channel.hasIncoming());
}

TEST_F(ChannelTest, EntersItselfAmongThoseToBeLookedAtAndLeavesWhenFoundIdle) {
  EXPECT_EQ(waiting.firstFrom(0), -1);
  channel.enqueueOutgoing(frameOf(1));
  EXPECT_EQ(waiting.firstFrom(0), 5);
  channel.dequeueOutgoing();
  EXPECT_EQ(waiting.firstFrom(0), 5);
  EXPECT_FALSE(channel.hasOutgoing());
  EXPECT_EQ(waiting.firstFrom(0), -1);
}

TEST(ChannelSetTest, FindsTheNextMemberInAscendingOrderAndWraps) {
  for (int member = 0; member < 256; ++member) {
    ChannelSet set;
    set.insert(static_cast<unsigned char>(member));
    for (int from = 0; from < 256; ++from) EXPECT_EQ(set.firstFrom(static_cast<unsigned char>(from)), member);
  }
}

TEST(ChannelSetTest, OfSeveralMembersTheOneFromTheGivenNumberOnComesFirst) {
  ChannelSet set;
  for (const int member : {3, 63, 64, 200}) set.insert(static_cast<unsigned char>(member));
  EXPECT_EQ(set.firstFrom(0), 3);
  EXPECT_EQ(set.firstFrom(3), 3);
  EXPECT_EQ(set.firstFrom(4), 63);
  EXPECT_EQ(set.firstFrom(64), 64);
  EXPECT_EQ(set.firstFrom(65), 200);
  EXPECT_EQ(set.firstFrom(201), 3);
  set.erase(3);
  EXPECT_EQ(set.firstFrom(201), 63);
}

TEST_F(ChannelTest, AddsUpWhatHasArrived) {
  channel.enqueueIncoming(frameOf(1000, 5000));
  channel.enqueueIncoming(frameOf(65535));
  EXPECT_EQ(channel.incomingLength(), 66535U);
  EXPECT_EQ(channel.incomingTotal(), 5000U);
  channel.dequeueIncoming();
  EXPECT_EQ(channel.incomingLength(), 65535U);
}

}  // namespace
}  // namespace test
