#include "phone/Message.h"

#include <gmock/gmock.h>
#include <protos.pb.h>

#include "Wire.h"

namespace test {
namespace {

using phone::cutMessage;
using phone::Frame;
using phone::FrameKind;
using phone::Message;
using phone::Reassembler;
using Verdict = Reassembler::Verdict;

Frame fragment(FrameKind kind, const Bytes& payload, std::uint32_t totalLength = 0,
               std::uint8_t channel = 3) {
  Frame frame;
  frame.channel = channel;
  frame.flags = static_cast<std::uint8_t>(kind);
  frame.totalLength = totalLength;
  frame.payload = payload;
  return frame;
}

Message messageOf(const Bytes& whole) {
  Message made;
  made.bytes = whole;
  return made;
}

struct PhoneReassembler : testing::Test {
  Reassembler reassembler;
  Message message;
  Verdict add(FrameKind kind, const Bytes& payload, std::uint32_t totalLength = 0, std::uint8_t channel = 3) {
    return reassembler.add(fragment(kind, payload, totalLength, channel), &message);
  }
};

TEST(PhoneMessage, ATypeIsBigEndianAndTheRestIsTheBody) {
  const Message message = messageOf(bytes("80 03 08 02"));
  EXPECT_EQ(message.type(), MESSAGE_CONFIG);
  EXPECT_EQ(Bytes(message.body(), message.bodySize()), bytes("08 02"));
}

TEST(PhoneMessage, AMessageTooShortForItsTypeHasNone) {
  EXPECT_EQ(messageOf(bytes("80")).type(), 0);
  EXPECT_EQ(messageOf(bytes("80")).bodySize(), 0u);
  EXPECT_FALSE(messageOf(bytes("80")).as<Stop>());
}

TEST(PhoneMessage, ARecordIsWrittenBehindItsType) {
  ChannelOpenRequest request;
  request.set_priority(-1);
  request.set_service_id(3);
  EXPECT_EQ(Bytes(phone::messageBytes(MESSAGE_CHANNEL_OPEN_REQUEST, request)),
            bytes("00 07"     // type
                  "08 01"     // priority -1, zig-zag
                  "10 03"));  // service 3
  EXPECT_EQ(Bytes(phone::messageBytes(MESSAGE_STOP, Stop())), bytes("80 02"));
}

TEST(PhoneMessage, ARecordMayBeSentIncompleteButIsNotReadIncomplete) {
  EXPECT_EQ(Bytes(phone::messageBytes(MESSAGE_START, Start())), bytes("80 01"));
  EXPECT_FALSE(messageOf(bytes("80 01 08 01")).as<Start>());
  EXPECT_EQ(messageOf(bytes("80 01 08 01 10 02")).as<Start>()->configuration_index(), 2u);
}

TEST(PhoneMessage, CutsAtSixteenThousandOneHundredAndTwentyEight) {
  EXPECT_TRUE(cutMessage(1, {}, 0).empty());

  const auto whole = cutMessage(1, pattern(16128), phone::flagEncrypted);
  ASSERT_EQ(whole.size(), 1u);
  EXPECT_EQ(whole[0].flags, 0x0B);
  EXPECT_EQ(whole[0].totalLength, 0u);

  const auto two = cutMessage(1, pattern(16129), 0);
  ASSERT_EQ(two.size(), 2u);
  EXPECT_EQ(two[0].kind(), FrameKind::first);
  EXPECT_EQ(two[0].totalLength, 16129u);
  EXPECT_EQ(two[0].payload.size(), 16128u);
  EXPECT_EQ(two[1].kind(), FrameKind::last);
  EXPECT_EQ(two[1].totalLength, 0u);
  EXPECT_EQ(two[1].payload.size(), 1u);

  EXPECT_EQ(cutMessage(1, pattern(32256), 0).size(), 2u);
  const auto three = cutMessage(1, pattern(32257), phone::flagControl);
  ASSERT_EQ(three.size(), 3u);
  EXPECT_EQ(three[1].kind(), FrameKind::middle);
  EXPECT_EQ(three[1].flags, phone::flagControl);
}

TEST_F(PhoneReassembler, PutsTogetherWhatWasCut) {
  const Bytes sent = pattern(100);
  for (std::size_t size = 1; size <= 101; ++size) {
    Verdict last = Verdict::incomplete;
    const auto pieces = cutMessage(3, sent, 0, size);
    for (const Frame& piece : pieces) {
      ASSERT_EQ(last, Verdict::incomplete);
      last = reassembler.add(piece, &message);
    }
    EXPECT_EQ(last, Verdict::complete);
    EXPECT_EQ(Bytes(message.bytes), sent);
    EXPECT_EQ(message.frames, pieces.size());
  }
}

TEST_F(PhoneReassembler, JudgesEachChannelAlone) {
  EXPECT_EQ(add(FrameKind::first, bytes("01 02"), 3, 3), Verdict::incomplete);
  EXPECT_EQ(add(FrameKind::first, bytes("0A"), 2, 4), Verdict::incomplete);
  EXPECT_EQ(add(FrameKind::atomic, bytes("77"), 0, 5), Verdict::complete);
  EXPECT_EQ(add(FrameKind::last, bytes("0B"), 0, 4), Verdict::complete);
  EXPECT_EQ(Bytes(message.bytes), bytes("0A 0B"));
  EXPECT_EQ(add(FrameKind::last, bytes("03"), 0, 3), Verdict::complete);
  EXPECT_EQ(Bytes(message.bytes), bytes("01 02 03"));
}

TEST_F(PhoneReassembler, RefusesAFragmentThatContinuesNothing) {
  EXPECT_EQ(add(FrameKind::middle, bytes("01")), Verdict::outOfSequence);
  EXPECT_EQ(add(FrameKind::last, bytes("01")), Verdict::outOfSequence);
}

TEST_F(PhoneReassembler, RefusesABeginningInTheMiddleAndForgetsWhatItHad) {
  for (const FrameKind beginning : {FrameKind::first, FrameKind::atomic}) {
    ASSERT_EQ(add(FrameKind::first, bytes("01"), 9), Verdict::incomplete);
    EXPECT_EQ(add(beginning, bytes("02"), 9), Verdict::outOfSequence);
    EXPECT_EQ(add(FrameKind::last, bytes("03")), Verdict::outOfSequence);
  }
}

TEST_F(PhoneReassembler, RefusesMoreThanWasAnnounced) {
  EXPECT_EQ(add(FrameKind::first, bytes("01 02"), 1), Verdict::tooLong);
  ASSERT_EQ(add(FrameKind::first, bytes("01 02"), 3), Verdict::incomplete);
  EXPECT_EQ(add(FrameKind::last, bytes("03 04")), Verdict::tooLong);
  EXPECT_EQ(add(FrameKind::last, bytes("03")), Verdict::outOfSequence);
}

TEST_F(PhoneReassembler, TellsOfLessThanWasAnnounced) {
  ASSERT_EQ(add(FrameKind::first, bytes("01 02"), 5), Verdict::incomplete);
  EXPECT_EQ(add(FrameKind::last, bytes("03")), Verdict::tooShort);
  EXPECT_EQ(Bytes(message.bytes), bytes("01 02 03"));
}

TEST_F(PhoneReassembler, FourGibibytesAnnouncedCostNothing) {
  ASSERT_EQ(add(FrameKind::first, bytes("01"), 0xFFFFFFFF), Verdict::incomplete);
  EXPECT_EQ(add(FrameKind::last, bytes("02")), Verdict::tooShort);
  EXPECT_LT(message.bytes.capacity(), 100u);
}

TEST_F(PhoneReassembler, AForgottenChannelStartsClean) {
  ASSERT_EQ(add(FrameKind::first, bytes("01"), 9), Verdict::incomplete);
  reassembler.forget(3);
  EXPECT_EQ(add(FrameKind::atomic, bytes("02")), Verdict::complete);
  EXPECT_EQ(Bytes(message.bytes), bytes("02"));
}

}  // namespace
}  // namespace test
