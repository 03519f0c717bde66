#include <algorithm>
#include <set>

#include "EndpointTest.h"
#include "ProcessMemory.h"
#include "RecordingEndpoint.h"

// Streams that no conforming phone sends.

namespace test {
namespace {

struct DamagedStreamTest : EndpointTest {
  RecordingEndpoint service{1, link.router()};

  DamagedStreamTest() {
    link.registers(&service);
    link.opens(3, 1);
    log.clear();
  }
  int feedsFirst(unsigned int total, const Bytes& payload) {
    return link.feeds(firstFrame(3, FIRST | ENCRYPTED, total, payload));
  }
  int feeds(int kind, const Bytes& payload) { return link.feeds(frame(3, kind | ENCRYPTED, payload)); }
};

TEST_F(DamagedStreamTest, ABufferShorterThanItsHeaderEndsTheLink) {
  EXPECT_CALL(link.host(), unrecoverableError());
  EXPECT_EQ(link.feeds(bytes("03 0B 00")), STATUS_FRAMING_ERROR);
  EXPECT_THAT(log.critical(), ElementsAre("[LHU] Framing error: len=3 framelen=0",
                                          "[LHU] Sending Framing Error notification!"));
}

TEST_F(DamagedStreamTest, AFirstFrameOfMoreThanItAnnouncesEndsTheLink) {
  EXPECT_CALL(link.host(), unrecoverableError());
  EXPECT_EQ(feedsFirst(3, bytes("80 00 01 02")), STATUS_FRAMING_ERROR);
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] Sending Framing Error notification!"));
}

TEST_F(DamagedStreamTest, AMiddleFrameBeyondTheAnnouncedLengthEndsTheLink) {
  EXPECT_CALL(link.host(), unrecoverableError());
  feedsFirst(4, bytes("80 00 01"));
  EXPECT_EQ(feeds(MIDDLE, bytes("02 03")), STATUS_FRAMING_ERROR);
}

TEST_F(DamagedStreamTest, ALastFrameBeyondTheAnnouncedLengthEndsTheLinkAndNothingIsDelivered) {
  EXPECT_CALL(link.host(), unrecoverableError());
  feedsFirst(4, bytes("80 00"));
  feeds(MIDDLE, bytes("01"));
  EXPECT_EQ(feeds(LAST, bytes("02 03")), STATUS_FRAMING_ERROR);
  EXPECT_THAT(service.messages, IsEmpty());
}

TEST_F(DamagedStreamTest, ExactlyTheAnnouncedLengthIsTaken) {
  feedsFirst(4, bytes("80 00"));
  EXPECT_EQ(feeds(LAST, bytes("01 02")), STATUS_SUCCESS);
  EXPECT_THAT(service.messages, ElementsAre(bytes("80 00 01 02")));
}

TEST_F(DamagedStreamTest, WhatWasAnnouncedAndNotSentIsZero) {
  feedsFirst(10, bytes("80 00"));
  feeds(MIDDLE, bytes("AA"));
  EXPECT_EQ(feeds(LAST, bytes("BB")), STATUS_SUCCESS);
  EXPECT_THAT(service.messages, ElementsAre(bytes("80 00 AA BB 00 00 00 00 00 00")));
}

TEST_F(DamagedStreamTest, AnAnnouncedLengthOfZeroMakesAMessageWithoutAType) {
  EXPECT_EQ(feedsFirst(0, {}), STATUS_SUCCESS);
  EXPECT_EQ(feeds(LAST, {}), STATUS_SUCCESS);
  EXPECT_THAT(service.messages, IsEmpty());
  EXPECT_THAT(link.sent(3), ElementsAre(unexpectedMessage()));
  EXPECT_EQ(feedsFirst(0, bytes("80")), STATUS_FRAMING_ERROR);
}

TEST_F(DamagedStreamTest, AMessageTooShortForItsTypeIsRefusedAndTheLinkLives) {
  EXPECT_EQ(feeds(ATOMIC, bytes("80")), STATUS_SUCCESS);
  EXPECT_EQ(feeds(ATOMIC, {}), STATUS_SUCCESS);
  EXPECT_THAT(link.sent(3), ElementsAre(unexpectedMessage(), unexpectedMessage()));
  EXPECT_THAT(log.debug(), testing::Each(parseFailureIn("MessageRouter")));
  EXPECT_EQ(log.debug().size(), 2U);
  EXPECT_EQ(feeds(ATOMIC, bytes("80 00")), STATUS_SUCCESS);
  EXPECT_EQ(service.messages.size(), 1U);
}

TEST_F(DamagedStreamTest, AControlFrameTooShortForItsTypeIsRefusedAndTheLinkLives) {
  EXPECT_EQ(link.feeds(frame(3, ATOMIC | CONTROL | ENCRYPTED, bytes("00"))), STATUS_INVALID_CHANNEL);
  EXPECT_EQ(link.feeds(frame(9, ATOMIC | CONTROL | ENCRYPTED, {})), STATUS_INVALID_CHANNEL);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  EXPECT_EQ(log.debug().size(), 2U);
  EXPECT_EQ(feeds(ATOMIC, bytes("80 00")), STATUS_SUCCESS);
}

long residentKilobytes() { return memoryKilobytes("VmRSS"); }

/// Looks at its messages instead of copying them.
struct PeekingEndpoint : RecordingEndpoint {
  using RecordingEndpoint::RecordingEndpoint;
  std::function<void(const IoBuffer&)> seen;
  int routeMessage(unsigned char, unsigned short, const shared_ptr<IoBuffer>& message) override {
    seen(*message);
    return STATUS_SUCCESS;
  }
};

TEST_F(DamagedStreamTest, MegabytesAnnouncedAgainAndAgainAndHardlySentCostNextToNothing) {
  PeekingEndpoint sink(2, link.router());
  link.registers(&sink);
  link.opens(4, 2);
  for (const unsigned int megabytes : {1U, 5U, 30U, 31U}) {
    [[maybe_unused]] const long before = memoryKilobytes("VmHWM");
    const unsigned int total = megabytes << 20;
    int seen = 0;
    sink.seen = [&](const IoBuffer& message) {
      ++seen;
      EXPECT_EQ(message.size(), total);
      EXPECT_EQ(Bytes(message.content(), 4), bytes("80 00 01 00"));
      EXPECT_EQ(message.content()[total - 1], 0);
    };
    for (int i = 0; i < 10; ++i) {
      EXPECT_EQ(link.feeds(firstFrame(4, FIRST | ENCRYPTED, total, bytes("80 00"))), STATUS_SUCCESS);
      EXPECT_EQ(link.feeds(frame(4, LAST | ENCRYPTED, bytes("01"))), STATUS_SUCCESS);
    }
    EXPECT_EQ(seen, 10);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // whose own book-keeping counts too
    EXPECT_LT(memoryKilobytes("VmHWM") - before, 512) << megabytes;
#endif
  }
}

TEST_F(DamagedStreamTest, FourGigabytesAnnouncedAndOneByteSentCostNextToNothing) {
  [[maybe_unused]] const long before = residentKilobytes();
  long during = 0;
  bool delivered = false;
  PeekingEndpoint sink(2, link.router());
  sink.seen = [&](const IoBuffer& message) {
    delivered = true;
    during = residentKilobytes();
    EXPECT_EQ(message.size(), 0xFFFFFFFFU);
    EXPECT_EQ(message.content()[0], 0x80);
    EXPECT_EQ(message.content()[0xFFFFFFFE], 0);
  };
  link.registers(&sink);
  link.opens(4, 2);
  EXPECT_EQ(link.feeds(firstFrame(4, FIRST | ENCRYPTED, 0xFFFFFFFF, bytes("80"))), STATUS_SUCCESS);
  const int status = link.feeds(frame(4, LAST | ENCRYPTED, {}));

  // Where the system lends no such address space, the message is refused like a stream that cannot be right.
  EXPECT_EQ(status, delivered ? STATUS_SUCCESS : STATUS_FRAMING_ERROR);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // whose own book-keeping counts too
  EXPECT_LT(during - before, 4 * 1024);
#endif
}

TEST_F(DamagedStreamTest, AnAnnouncementAloneAllocatesNothing) {
  const long before = residentKilobytes();
  for (int channel = 10; channel < 250; ++channel) {
    link.channels().registerChannel(static_cast<unsigned char>(channel), 0);
    EXPECT_EQ(link.feeds(firstFrame(channel, FIRST | ENCRYPTED, 0xFFFFFFFF, bytes("80"))), STATUS_SUCCESS);
  }
  EXPECT_LT(residentKilobytes() - before, 4 * 1024);
}

TEST_F(DamagedStreamTest, ATwoGigabyteFieldOfWhichNothingWasSentIsRefusedWithoutACopy) {
  EXPECT_CALL(link.host(), serviceDiscoveryRequest(_, _, _, _)).Times(0);
  [[maybe_unused]] const long before = memoryKilobytes("VmHWM");
  link.feeds(firstFrame(0, FIRST, 0x7FFFFF08, bytes("00 05 0A 80 FE FF FF 07")));
  const int status = link.feeds(frame(0, LAST, {}));

  if (status == STATUS_FRAMING_ERROR) GTEST_SKIP() << "the system lends no such address space";
  EXPECT_THAT(log.debug(), ElementsAre(parseFailureIn("Controller")));
  EXPECT_THAT(link.sent(0), ElementsAre(unexpectedMessage()));
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
  EXPECT_LT(memoryKilobytes("VmHWM") - before, 4 * 1024);
#endif
}

TEST_F(DamagedStreamTest, AFieldIsFilledUpWithTheZerosThatWereNotSent) {
  EXPECT_CALL(link.host(), serviceDiscoveryRequest(std::string("a\0\0\0", 4), _, _, _));
  EXPECT_EQ(link.sends(0, bytes("00 02 00 01 00 00 00")), STATUS_SUCCESS);
  link.feeds(firstFrame(0, FIRST, 8, bytes("00 05 0A 04 61")));
  EXPECT_EQ(link.feeds(frame(0, LAST, {})), STATUS_SUCCESS);
}

/// The version is agreed on, and then the phone announces a discovery request of `total` bytes and ends it
/// after `sent`.
void asksWithout(PlainLink* link, unsigned int total, const Bytes& sent) {
  link->sends(0, bytes("00 02 00 01 00 00 00"));
  link->sent(0);
  link->feeds(firstFrame(0, FIRST, total, sent));
  link->feeds(frame(0, LAST, {}));
}

TEST_F(DamagedStreamTest, ARecordOfWhichAMebibyteWasNotSentIsTaken) {
  EXPECT_CALL(link.host(), serviceDiscoveryRequest("a" + std::string(1 << 20, '\0'), _, _, _));
  asksWithout(&link, 0x100007, bytes("00 05 0A 81 80 40 61"));  // a field of 1 MiB and 1 byte
}

TEST_F(DamagedStreamTest, ARecordOfWhichMoreThanAMebibyteWasNotSentIsRefusedAndTheLinkLives) {
  EXPECT_CALL(link.host(), serviceDiscoveryRequest(_, _, _, _)).Times(0);
  asksWithout(&link, 0x100008, bytes("00 05 0A 82 80 40 61"));
  EXPECT_THAT(log.debug(), ElementsAre(parseFailureIn("Controller")));
  EXPECT_THAT(link.sent(0), ElementsAre(unexpectedMessage()));
  EXPECT_EQ(feeds(ATOMIC, bytes("80 00")), STATUS_SUCCESS);
}

TEST_F(DamagedStreamTest, TheMessageBehindOneThatWasNotSentWholeIsJudgedByItself) {
  asksWithout(&link, 0x100008, bytes("00 05 0A 82 80 40 61"));
  EXPECT_CALL(link.host(), serviceDiscoveryRequest(std::string(0x100002, '\0'), _, _, _));
  link.sends(0, bytes("00 05 0A 82 80 40") + filled(0x100002, 0));
}

/// A stream of messages of one, two and three frames, in which all body bytes of a message are its own
/// number.
std::vector<Bytes> numberedStream() {
  std::vector<Bytes> stream;
  const int flags = ENCRYPTED;
  for (std::uint8_t number = 1; number <= 6; ++number) {
    const Bytes whole = message(0x8000, filled(58, number));
    if (number % 3 == 0) {
      stream.push_back(frame(3, flags | ATOMIC, whole));
      continue;
    }
    stream.push_back(firstFrame(3, flags | FIRST, 60, part(whole, 0, 20)));
    if (number % 3 == 1) stream.push_back(frame(3, flags | MIDDLE, part(whole, 20, 20)));
    stream.push_back(frame(3, flags | LAST, part(whole, number % 3 == 1 ? 40 : 20)));
  }
  return stream;
}

/// Feeds a stream to a fresh link and tells of each delivered message which numbers are in it, zeros apart.
std::vector<std::set<int>> numbersDelivered(const std::vector<Bytes>& stream) {
  PlainLink link;
  RecordingEndpoint service(1, link.router());
  link.registers(&service);
  link.opens(3, 1);
  link.feeds(stream);
  std::vector<std::set<int>> result;
  for (const Bytes& delivered : service.messages) {
    std::set<int> numbers(delivered.begin() + 2, delivered.end());
    numbers.erase(0);
    result.push_back(numbers);
  }
  return result;
}

void expectNoMixture(const std::vector<Bytes>& stream) {
  for (const std::set<int>& numbers : numbersDelivered(stream)) EXPECT_LE(numbers.size(), 1U);
}

TEST(DamagedFrameOrderTest, TheWholeStreamDeliversEveryMessage) {
  EXPECT_EQ(numbersDelivered(numberedStream()).size(), 6U);
  expectNoMixture(numberedStream());
}

TEST(DamagedFrameOrderTest, ALostFrameNeverJoinsHalvesOfTwoMessages) {
  for (std::size_t lost = 0; lost < numberedStream().size(); ++lost) {
    SCOPED_TRACE(lost);
    std::vector<Bytes> stream = numberedStream();
    stream.erase(stream.begin() + static_cast<std::ptrdiff_t>(lost));
    expectNoMixture(stream);
  }
}

TEST(DamagedFrameOrderTest, ARepeatedFrameNeverJoinsHalvesOfTwoMessages) {
  for (std::size_t repeated = 0; repeated < numberedStream().size(); ++repeated) {
    SCOPED_TRACE(repeated);
    std::vector<Bytes> stream = numberedStream();
    stream.insert(stream.begin() + static_cast<std::ptrdiff_t>(repeated), numberedStream()[repeated]);
    expectNoMixture(stream);
  }
}

TEST(DamagedFrameOrderTest, ExchangedFramesNeverJoinHalvesOfTwoMessages) {
  for (std::size_t i = 0; i + 1 < numberedStream().size(); ++i) {
    SCOPED_TRACE(i);
    std::vector<Bytes> stream = numberedStream();
    std::swap(stream[i], stream[i + 1]);
    expectNoMixture(stream);
  }
}

TEST(DamagedFrameOrderTest, ATurnedBitInAHeaderNeverJoinsHalvesOfTwoMessages) {
  const std::vector<Bytes> whole = numberedStream();
  for (std::size_t i = 0; i < whole.size(); ++i) {
    for (std::size_t bit = 0; bit < 32; ++bit) {
      SCOPED_TRACE(testing::Message() << "frame " << i << " bit " << bit);
      std::vector<Bytes> stream = whole;
      stream[i][bit / 8] = static_cast<std::uint8_t>(stream[i][bit / 8] ^ 1 << bit % 8);
      expectNoMixture(stream);
    }
  }
}

}  // namespace
}  // namespace test
