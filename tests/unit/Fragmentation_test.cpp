#include "EndpointTest.h"
#include "RecordingEndpoint.h"

// Fragments that arrive: which fit, and what they make.

namespace test {
namespace {

/// What a channel holds, what arrives, and the verdict.
struct FragmentRow {
  std::vector<int> held;
  int arriving;
  bool acceptable;
  bool complete;
};

struct FragmentVerdictTest : EndpointTest {
  shared_ptr<Frame> frameOf(int number, int flags, const char* payload = "AA") {
    const Bytes data = bytes(payload);
    const bool first = (flags & ATOMIC) == FIRST;
    const Bytes wire = first ? firstFrame(number, flags, 100, data) : frame(number, flags, data);
    const shared_ptr<IoBuffer> buffer =
        link.receiver().allocateBuffer(static_cast<unsigned int>(wire.size()));
    std::copy(wire.begin(), wire.end(), buffer->data);
    const shared_ptr<Frame> made(new Frame());
    EXPECT_EQ(link.channels().decodeFrame(made, buffer), STATUS_SUCCESS);
    return made;
  }
  int check(const shared_ptr<Frame>& piece) {
    acceptable = complete = false;
    channel = shared_ptr<Channel>();
    return link.channels().checkFragment(piece, &channel, &acceptable, &complete);
  }

  shared_ptr<Channel> channel;
  bool acceptable = false;
  bool complete = false;
};

struct FragmentSequenceTest : FragmentVerdictTest, testing::WithParamInterface<FragmentRow> {};

TEST_P(FragmentSequenceTest, IsJudgedByWhatTheChannelHolds) {
  link.channels().registerChannel(3, 0);
  check(frameOf(3, ATOMIC | ENCRYPTED));
  const shared_ptr<Channel> target = channel;
  for (const int kind : GetParam().held) target->enqueueIncoming(frameOf(3, kind | ENCRYPTED));

  EXPECT_EQ(check(frameOf(3, GetParam().arriving | ENCRYPTED)), STATUS_SUCCESS)
      << "also where it does not fit";
  EXPECT_EQ(acceptable, GetParam().acceptable);
  EXPECT_EQ(complete, GetParam().complete);
  EXPECT_EQ(channel, target);
}

INSTANTIATE_TEST_SUITE_P(
    EveryPair, FragmentSequenceTest,
    testing::Values(
        FragmentRow{{}, ATOMIC, true, true}, FragmentRow{{}, FIRST, true, false},
        FragmentRow{{}, MIDDLE, false, false}, FragmentRow{{}, LAST, false, false},
        FragmentRow{{FIRST}, MIDDLE, true, false}, FragmentRow{{FIRST}, LAST, true, true},
        FragmentRow{{FIRST}, FIRST, false, false}, FragmentRow{{FIRST}, ATOMIC, false, false},
        FragmentRow{{FIRST, MIDDLE}, MIDDLE, true, false}, FragmentRow{{FIRST, MIDDLE}, LAST, true, true},
        FragmentRow{{FIRST, MIDDLE}, FIRST, false, false}, FragmentRow{{FIRST, MIDDLE}, ATOMIC, false, false},
        FragmentRow{{FIRST, LAST}, MIDDLE, false, false}, FragmentRow{{ATOMIC}, LAST, false, false},
        FragmentRow{{ATOMIC}, FIRST, false, false}, FragmentRow{{ATOMIC}, ATOMIC, false, false}));

TEST_F(FragmentVerdictTest, OnAFreeChannelNothingFits) {
  EXPECT_EQ(check(frameOf(3, ATOMIC | ENCRYPTED)), STATUS_FRAMING_ERROR);
  EXPECT_FALSE(acceptable);
  EXPECT_FALSE(channel);
}

TEST_F(FragmentVerdictTest, OnlyTheControlChannelMayCarryPlainFrames) {
  link.channels().registerChannel(3, 0);
  EXPECT_EQ(check(frameOf(3, ATOMIC)), STATUS_AUTHENTICATION_FAILURE);
  EXPECT_FALSE(acceptable);
  EXPECT_EQ(check(frameOf(0, ATOMIC)), STATUS_SUCCESS);
  EXPECT_TRUE(acceptable);
}

TEST_F(FragmentVerdictTest, APlainFrameOutOfSequenceIsRefusedForBeingPlain) {
  link.channels().registerChannel(3, 0);
  EXPECT_EQ(check(frameOf(3, LAST)), STATUS_AUTHENTICATION_FAILURE);
  EXPECT_FALSE(acceptable);
}

TEST_F(FragmentVerdictTest, AFrameThatDoesNotFitLeavesWhatHasArrivedAsItWas) {
  link.channels().registerChannel(3, 0);
  check(frameOf(3, ATOMIC | ENCRYPTED));
  const shared_ptr<Channel> target = channel;
  const shared_ptr<Frame> first = frameOf(3, FIRST | ENCRYPTED);
  target->enqueueIncoming(first);
  for (const int flags : {FIRST | ENCRYPTED, ATOMIC | ENCRYPTED, MIDDLE + 0, LAST + 0}) {
    check(frameOf(3, flags));
    EXPECT_FALSE(acceptable) << flags;
    EXPECT_EQ(target->peekLastIncoming(), first) << flags;
    EXPECT_EQ(target->incomingLength(), 1U) << flags;
  }
  EXPECT_EQ(target->dequeueIncoming(), first);
  EXPECT_FALSE(target->hasIncoming());
}

TEST_F(FragmentVerdictTest, HalfAMessageStaysOnAChannelThatTheHeadUnitCloses) {
  RecordingEndpoint service(1, link.router());
  link.registers(&service);
  link.opens(3, 1);
  link.feeds(firstFrame(3, FIRST | ENCRYPTED, 4, bytes("80 01")));
  EXPECT_TRUE(link.router()->closeChannel(3));
  check(frameOf(3, LAST | ENCRYPTED));
  ASSERT_TRUE(acceptable) << "the rest of it still fits";
  EXPECT_EQ(channel->incomingLength(), 2U);
}

TEST_F(FragmentVerdictTest, AnAtomicFrameGivesItsOwnBufferBackUncopied) {
  ChannelSet waiting;
  const shared_ptr<Channel> source(new Channel(3, 0, &waiting));
  const shared_ptr<Frame> piece = frameOf(3, ATOMIC | ENCRYPTED, "80 01 0A");
  const shared_ptr<IoBuffer> received = piece->buffer;
  const unsigned char* const payload = piece->payload;
  source->enqueueIncoming(piece);
  const shared_ptr<Frame> later = frameOf(3, ATOMIC | ENCRYPTED);
  source->enqueueIncoming(later);

  const shared_ptr<IoBuffer> message = link.channels().framesToMessage(source);
  EXPECT_EQ(message, received);
  EXPECT_EQ(message->content(), payload);
  EXPECT_EQ(message->start, 4U) << "the frame's header stays in the storage, outside the message";
  EXPECT_EQ(Bytes(message->content(), message->size()), bytes("80 01 0A"));
  EXPECT_EQ(source->dequeueIncoming(), later);
}

struct FragmentTest : EndpointTest {
  RecordingEndpoint service{1, link.router()};
  RecordingEndpoint other{2, link.router()};

  FragmentTest() {
    link.registers(&service);
    link.registers(&other);
    link.opens(3, 1);
    link.opens(4, 2);
    log.clear();
  }
  int feedsFirst(int channel, unsigned int total, const char* payload) {
    return link.feeds(firstFrame(channel, FIRST | ENCRYPTED, total, bytes(payload)));
  }
  int feedsMiddle(int channel, const char* payload) {
    return link.feeds(frame(channel, MIDDLE | ENCRYPTED, bytes(payload)));
  }
  int feedsLast(int channel, const char* payload) {
    return link.feeds(frame(channel, LAST | ENCRYPTED, bytes(payload)));
  }
};

TEST_F(FragmentTest, MakeOneMessage) {
  EXPECT_EQ(feedsFirst(3, 6, "80 01 0A"), STATUS_SUCCESS);
  EXPECT_EQ(feedsMiddle(3, "0B 0C"), STATUS_SUCCESS);
  EXPECT_THAT(service.messages, IsEmpty());
  EXPECT_EQ(feedsLast(3, "0D"), STATUS_SUCCESS);
  EXPECT_THAT(service.messages, ElementsAre(bytes("80 01 0A 0B 0C 0D")));
}

TEST_F(FragmentTest, NeedNotBeOfTheSizeThatThisSideSends) {
  feedsFirst(3, 5, "80");
  feedsMiddle(3, "");
  feedsMiddle(3, "01");
  feedsLast(3, "02 03 04");
  EXPECT_THAT(service.messages, ElementsAre(bytes("80 01 02 03 04")));
}

TEST_F(FragmentTest, MayInterleaveWithThoseOfAnotherChannel) {
  feedsFirst(3, 4, "80 01");
  feedsFirst(4, 4, "80 02");
  link.feeds(frame(0, ATOMIC, bytes("00 10")));
  feedsLast(4, "BB BB");
  feedsLast(3, "AA AA");
  EXPECT_THAT(service.messages, ElementsAre(bytes("80 01 AA AA")));
  EXPECT_THAT(other.messages, ElementsAre(bytes("80 02 BB BB")));
}

TEST_F(FragmentTest, OfMessagesOneAfterAnotherStayApart) {
  for (int i = 0; i < 3; ++i) {
    feedsFirst(3, 4, "80 01");
    feedsLast(3, "AA AA");
  }
  EXPECT_THAT(service.messages, testing::Each(bytes("80 01 AA AA")));
  EXPECT_EQ(service.messages.size(), 3U);
}

TEST_F(FragmentTest, ALastFrameOnAnIdleChannelEndsTheLink) {
  EXPECT_CALL(link.host(), unrecoverableError());
  EXPECT_EQ(feedsLast(3, "80 01"), STATUS_FRAMING_ERROR);
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] Sending Framing Error notification!"));
}

TEST_F(FragmentTest, AFirstFrameInsideAMessageEndsTheLinkAndRestartsNothing) {
  EXPECT_CALL(link.host(), unrecoverableError()).Times(2);
  feedsFirst(3, 4, "80 01");
  EXPECT_EQ(feedsFirst(3, 4, "80 02"), STATUS_FRAMING_ERROR);
  EXPECT_EQ(feedsLast(3, "AA AA"), STATUS_FRAMING_ERROR);
  EXPECT_THAT(service.messages, IsEmpty());
}

TEST_F(FragmentTest, APlainFragmentOnAServiceChannelEndsTheLink) {
  EXPECT_CALL(link.host(), unrecoverableError());
  feedsFirst(3, 4, "80 01");
  EXPECT_EQ(link.feeds(frame(3, LAST, bytes("AA AA"))), STATUS_FRAMING_ERROR);
  EXPECT_THAT(service.messages, IsEmpty());
}

TEST_F(FragmentTest, ClosingTheChannelDropsHalfAMessageAndTheNextOpenStartsClean) {
  feedsFirst(3, 4, "80 01");
  EXPECT_EQ(link.closes(3), STATUS_SUCCESS);
  EXPECT_EQ(link.opens(3, 1), STATUS_SUCCESS);
  feedsFirst(3, 4, "80 02");
  feedsLast(3, "BB BB");
  EXPECT_THAT(service.messages, ElementsAre(bytes("80 02 BB BB")));
}

TEST_F(FragmentTest, OfAPlainMessageOnTheControlChannelAreTaken) {
  EXPECT_CALL(link.host(), pingResponse(300));
  link.feeds(firstFrame(0, FIRST, 5, bytes("00 0C")));
  link.feeds(frame(0, LAST, bytes("08 AC 02")));
}

TEST_F(FragmentTest, TheJoinedMessageBeginsAtTheStartOfItsBuffer) {
  service.onMessage = [](const shared_ptr<IoBuffer>& message) {
    EXPECT_EQ(message->start, 0U);
    EXPECT_EQ(message->end, 4U);
    EXPECT_EQ(message->capacity, 4U);
  };
  feedsFirst(3, 4, "80 01");
  feedsLast(3, "AA AA");
  EXPECT_EQ(service.messages.size(), 1U);
}

}  // namespace
}  // namespace test
