#include <gmock/gmock.h>

#include "ChannelManager.h"
#include "EndpointTest.h"
#include "RecordingEndpoint.h"

// One frame into bytes and back. The wire bytes are written by hand.

namespace test {
namespace {

int additionalBytes(const char* header) {
  return ChannelManager::getAdditionalBytesToRead(bytes(header).data());
}

TEST(FrameHeaderTest, TellsHowManyBytesFollow) {
  EXPECT_EQ(additionalBytes("05 0B 00 08"), 8);       // FRAME_ATOMIC
  EXPECT_EQ(additionalBytes("05 0A 12 34"), 0x1234);  // FRAME_LAST
  EXPECT_EQ(additionalBytes("05 08 FF FF"), 65535);   // FRAME_MIDDLE
}

TEST(FrameHeaderTest, AFirstFrameHasFourBytesMore) {
  EXPECT_EQ(additionalBytes("05 09 00 08"), 12);
  EXPECT_EQ(additionalBytes("05 F9 FF FF"), 65539);
}

TEST(FrameHeaderTest, WithLengthZeroOnlyAFirstFrameHasMore) {
  EXPECT_EQ(additionalBytes("00 01 00 00"), 4);
  EXPECT_EQ(additionalBytes("00 00 00 00"), 0);
  EXPECT_EQ(additionalBytes("00 02 00 00"), 0);
  EXPECT_EQ(additionalBytes("00 03 00 00"), 0);
}

TEST(FrameLayoutTest, TheKindIsInTheLowTwoBits) {
  Frame piece;
  piece.flags = 0xFD;
  EXPECT_EQ(piece.kind(), FRAME_FIRST);
  piece.flags = 0x0C;
  EXPECT_EQ(piece.kind(), FRAME_MIDDLE);
  EXPECT_TRUE(piece.has(FRAME_FLAG_CONTROL));
  EXPECT_FALSE(piece.has(FRAME_FLAG_LAST));
}

struct FrameEncodingTest : EndpointTest {
  IoBuffer out;
  shared_ptr<Frame> piece{new Frame()};

  Bytes encoded(int channel, int flags, unsigned int totalLength, const Bytes& payload) {
    piece->channelId = static_cast<unsigned char>(channel);
    piece->flags = static_cast<unsigned char>(flags);
    piece->length = static_cast<unsigned short>(payload.size());
    piece->totalLength = totalLength;
    piece->buffer = link.receiver().allocateBuffer(piece->length);
    piece->payload = piece->buffer->data;
    std::copy(payload.begin(), payload.end(), piece->payload);
    link.channels().encodeFrame(piece, &out);
    return Bytes(out.content(), out.size());
  }
};

TEST_F(FrameEncodingTest, AnAtomicFrameHasAShortHeader) {
  EXPECT_EQ(encoded(0xC8, 0x03, 0, bytes("00 0B 08 01")), bytes("C8"              // channel 200
                                                                "03"              // FRAME_ATOMIC
                                                                "00 04"           // length
                                                                "00 0B 08 01"));  // payload
}

TEST_F(FrameEncodingTest, AFirstFrameTellsTheTotalLength) {
  EXPECT_EQ(encoded(7, 0x01, 0x01020304, bytes("AA BB")), bytes("07"           // channel
                                                                "01"           // FRAME_FIRST
                                                                "00 02"        // length
                                                                "01 02 03 04"  // total length
                                                                "AA BB"));     // payload
}

TEST_F(FrameEncodingTest, TheLengthIsBigEndian) {
  const Bytes wire = encoded(1, 0x02, 0, filled(0x3F00, 0x55));
  EXPECT_EQ(part(wire, 0, 4), bytes("01 02 3F 00"));
  EXPECT_EQ(part(wire, 4), filled(0x3F00, 0x55));
}

TEST_F(FrameEncodingTest, ATotalLengthIsWrittenExactlyWhereItIsNotZero) {
  EXPECT_EQ(encoded(1, 0x03, 5, bytes("AA")), bytes("01 03 00 01 00 00 00 05 AA"));
  EXPECT_EQ(encoded(1, 0x01, 0, bytes("AA")), bytes("01 01 00 01 AA"));
}

TEST_F(FrameEncodingTest, TheFlagByteGoesOutAsItStands) {
  EXPECT_EQ(encoded(1, 0xFE, 0, bytes("AA")), bytes("01 FE 00 01 AA"));
}

TEST_F(FrameEncodingTest, AFrameFlaggedForEncryptionIsPlainUntilTlsStands) {
  EXPECT_EQ(encoded(0, 0x0B, 0, bytes("00 0B")), bytes("00 0B 00 02 00 0B"));
}

TEST_F(FrameEncodingTest, ReplacesWhatTheOutputHeld) {
  out.resize(100);
  out.start = 10;
  EXPECT_EQ(encoded(1, 0x03, 0, bytes("AA")), bytes("01 03 00 01 AA"));
  EXPECT_EQ(out.start, 0U);
  EXPECT_EQ(out.end, 5U);
  EXPECT_EQ(out.capacity, 5U);
}

struct FrameDecodingTest : EndpointTest {
  shared_ptr<Frame> piece{new Frame()};
  shared_ptr<IoBuffer> buffer;

  int decodes(const Bytes& wire) {
    buffer = link.receiver().allocateBuffer(static_cast<unsigned int>(wire.size()));
    std::copy(wire.begin(), wire.end(), buffer->data);
    return link.channels().decodeFrame(piece, buffer);
  }
  Bytes payload() { return Bytes(piece->payload, piece->length); }
};

TEST_F(FrameDecodingTest, ReadsAShortHeader) {
  piece->totalLength = 77;
  EXPECT_EQ(decodes(bytes("C8"     // channel 200
                          "0E"     // FRAME_LAST, control, encrypted
                          "00 03"  // length
                          "AA BB CC")),
            STATUS_SUCCESS);
  EXPECT_EQ(piece->channelId, 200);
  EXPECT_EQ(piece->flags, 0x0E);
  EXPECT_EQ(piece->totalLength, 0U);
  EXPECT_EQ(payload(), bytes("AA BB CC"));
}

TEST_F(FrameDecodingTest, ReadsALongHeader) {
  EXPECT_EQ(decodes(bytes("05"           // channel
                          "09"           // FRAME_FIRST, encrypted
                          "00 02"        // length
                          "FF 02 03 04"  // total length
                          "AA BB")),
            STATUS_SUCCESS);
  EXPECT_EQ(piece->totalLength, 0xFF020304U);
  EXPECT_EQ(payload(), bytes("AA BB"));
}

TEST_F(FrameDecodingTest, KeepsTheHighFlagBitsAndIgnoresThem) {
  EXPECT_EQ(decodes(bytes("05 F2 00 01 AA")), STATUS_SUCCESS);
  EXPECT_EQ(piece->flags, 0xF2);
  EXPECT_EQ(piece->kind(), FRAME_LAST);
}

TEST_F(FrameDecodingTest, PointsIntoTheBufferWithoutACopy) {
  decodes(bytes("05 03 00 02 AA BB"));
  EXPECT_EQ(piece->buffer, buffer);
  EXPECT_EQ(piece->payload, buffer->data + 4);
}

TEST_F(FrameDecodingTest, BeginsAtTheBuffersStart) {
  buffer = link.receiver().allocateBuffer(9);
  const Bytes wire = bytes("EE EE 05 03 00 02 AA BB EE");
  std::copy(wire.begin(), wire.end(), buffer->data);
  buffer->start = 2;
  buffer->end = 8;
  EXPECT_EQ(link.channels().decodeFrame(piece, buffer), STATUS_SUCCESS);
  EXPECT_EQ(payload(), bytes("AA BB"));
}

TEST_F(FrameDecodingTest, TakesTheLargestLengthThatTheFieldCanTell) {
  EXPECT_EQ(decodes(bytes("05 03 FF FF") + filled(65535, 1)), STATUS_SUCCESS);
  EXPECT_EQ(piece->length, 65535);
}

TEST_F(FrameDecodingTest, ABufferOfElevenBytesForAFrameOfEightIsRefused) {
  EXPECT_EQ(decodes(bytes("05 03 00 08 01 02 03 04 05 06 07")), STATUS_FRAMING_ERROR);
  EXPECT_THAT(log.all(), ElementsAre("critical [LHU] Framing error: len=11 framelen=8"));
}

TEST_F(FrameDecodingTest, AByteTooManyIsRefusedLikeAByteTooFew) {
  EXPECT_EQ(decodes(bytes("05 03 00 02 AA BB CC")), STATUS_FRAMING_ERROR);
  EXPECT_EQ(decodes(bytes("05 01 00 02 00 00 00 02 AA")), STATUS_FRAMING_ERROR);
  EXPECT_THAT(log.critical(), ElementsAre("[LHU] Framing error: len=7 framelen=2",  //
                                          "[LHU] Framing error: len=9 framelen=2"));
}

TEST_F(FrameDecodingTest, ABufferShorterThanItsHeaderIsRefused) {
  const Bytes header = bytes("05 01 00 00 00 00 00");  // FRAME_FIRST, whose header has 8 bytes
  for (std::size_t size = 0; size <= header.size(); ++size) {
    EXPECT_EQ(decodes(part(header, 0, size)), STATUS_FRAMING_ERROR) << size;
  }
  EXPECT_EQ(log.critical().size(), 8U);
  EXPECT_EQ(log.critical().front(), "[LHU] Framing error: len=0 framelen=0");
  EXPECT_EQ(log.critical().back(), "[LHU] Framing error: len=7 framelen=0");
}

TEST_F(FrameDecodingTest, AnEncryptedFrameIsTakenAsPlainUntilTlsStands) {
  EXPECT_EQ(decodes(bytes("05 0B 00 02 AA BB")), STATUS_SUCCESS);
  EXPECT_EQ(payload(), bytes("AA BB"));
}

}  // namespace
}  // namespace test
