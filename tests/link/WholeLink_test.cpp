// Whole links over a byte stream in memory: the library's threads on one end, the independent phone on the
// other.

#include <gmock/gmock.h>

#include <thread>

#include "LiveLink.h"
#include "LogCapture.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using namespace test;

/// Media contents around every size at which the fragments of a message (with its ten bytes of prefix)
/// change.
std::vector<Bytes> awkwardContents() {
  std::vector<Bytes> contents;
  unsigned int seed = 1;
  for (const std::size_t whole : {10U, 11U, 16127U, 16128U, 16129U, 32256U, 32257U, 50000U}) {
    contents.push_back(pattern(whole - 10, seed++));
  }
  return contents;
}

void expectDelivery(LiveLink* link, const std::vector<Bytes>& contents) {
  ASSERT_TRUE(link->comesUp());
  ASSERT_TRUE(link->opensVideo());
  for (const Bytes& content : contents) ASSERT_TRUE(link->sendsFrame(content));
  EXPECT_THAT(link->delivered(), ElementsAreArray(contents));
  EXPECT_TRUE(link->phone().violations().empty());
}

TEST(WholeLink, bringsTheStreamFromThePhoneToTheHostAndItsAcknowledgementsBack) {
  LiveLink link;
  link.start();
  expectDelivery(&link, awkwardContents());
  const auto acks = link.phone().received(LiveLink::VIDEO_CHANNEL, MESSAGE_ACK);
  ASSERT_EQ(acks.size(), awkwardContents().size());
  for (const phone::Message& ack : acks) {
    EXPECT_EQ(Bytes(ack.bytes), bytes("80 04"     // type
                                      "08 11"     // session 17
                                      "10 01"));  // one message
    EXPECT_TRUE(ack.encrypted);
  }
}

TEST(WholeLink, tellsTheHostOfEachStepInOrder) {
  LiveLink link;
  link.start();
  expectDelivery(&link, {pattern(5)});
  EXPECT_THAT(link.host().events(),
              ElementsAre("version", "authenticated 0", "discovery", "setup", "configuration 0", "start 17"));
}

class CutStream : public testing::TestWithParam<std::size_t> {};

TEST_P(CutStream, deliversTheSameHoweverTheStreamIsCut) {
  LiveLink link;
  link.transport().cutsReads([] { return GetParam(); });
  link.transport().cutsWrites([] { return GetParam(); });
  link.start();
  expectDelivery(&link, {pattern(0), pattern(1, 2), pattern(3000, 3), pattern(16119, 4)});
}

INSTANTIATE_TEST_SUITE_P(bytesAtATime, CutStream, testing::Values(1U, 3U, 4U, 5U, 7U, 8U, 9U, 4096U, 16133U));

TEST(WholeLink, carriesPingsAndFocusBesideAStream) {
  LiveLink link;
  link.start();
  expectDelivery(&link, {pattern(20000)});
  link.phone().sendPing(42, true);
  link.receiver().controller().sendPingRequest(43, false);
  link.receiver().controller().setAudioFocus(AUDIO_FOCUS_STATE_1, false);
  ASSERT_TRUE(link.pumpUntil([&] {
    return !link.phone().received(0, MESSAGE_PING_REQUEST).empty() &&
           !link.phone().received(0, MESSAGE_AUDIO_FOCUS_NOTIFICATION).empty();
  }));
  // What the head unit answers to a later ping, it answers after it has taken the phone's answer.
  link.phone().sendPing(44);
  ASSERT_TRUE(link.pumpUntil([&] { return link.phone().received(0, MESSAGE_PING_RESPONSE).size() == 2; }));
  EXPECT_TRUE(link.host().has("pong 43"));
  EXPECT_TRUE(link.host().has("ping 42"));
  EXPECT_EQ(Bytes(link.phone().received(0, MESSAGE_PING_RESPONSE).at(0).bytes), bytes("00 0C 08 2A"));
}

TEST(WholeLink, servesHostThreadsThatSendWhileTheStreamRuns) {
  constexpr int SENDERS = 4;
  constexpr int PINGS = 200;
  LiveLink link;
  link.start();
  ASSERT_TRUE(link.comesUp());
  ASSERT_TRUE(link.opensVideo());
  std::vector<std::thread> senders;
  for (int sender = 0; sender < SENDERS; ++sender) {
    senders.emplace_back([&link, sender] {
      for (int i = 0; i < PINGS; ++i) link.receiver().controller().sendPingRequest(sender * PINGS + i, false);
    });
  }
  for (unsigned int i = 0; i < 50; ++i) ASSERT_TRUE(link.sendsFrame(pattern(17000, i)));
  for (std::thread& sender : senders) sender.join();
  EXPECT_TRUE(link.pumpUntil(
      [&] { return link.phone().received(0, MESSAGE_PING_REQUEST).size() == std::size_t{SENDERS} * PINGS; }));
  EXPECT_EQ(link.delivered().size(), 50U);
}

TEST(WholeLink, endsCleanlyWhenThePhoneSaysGoodBye) {
  LiveLink link;
  link.start();
  ASSERT_TRUE(link.comesUp());
  link.phone().sayByeBye();
  ASSERT_TRUE(link.pumpUntil([&] { return link.phone().end().has_value(); }));
  EXPECT_TRUE(link.phone().end()->clean);
  EXPECT_TRUE(link.host().has("bye-bye"));
}

TEST(WholeLink, runsSeveralReceiversOfOneProcessAtOnce) {
  constexpr unsigned int LINKS = 4;
  std::vector<std::thread> threads;
  std::atomic<unsigned int> complete{0};
  for (unsigned int i = 0; i < LINKS; ++i) {
    threads.emplace_back([&complete, i] {
      for (unsigned int again = 0; again < 3; ++again) {
        LiveLink link;
        link.start();
        const Bytes content = pattern(40000, i);
        if (!link.comesUp() || !link.opensVideo() || !link.sendsFrame(content)) return;
        link.stop();
        if (link.delivered() != std::vector<Bytes>{content}) return;
      }
      ++complete;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(complete, LINKS);
}

TEST(WholeLink, canBeDestroyedWithoutEverHavingStarted) {
  LiveLink link;
  link.stop();
  EXPECT_TRUE(link.host().events().empty());
}

}  // namespace
