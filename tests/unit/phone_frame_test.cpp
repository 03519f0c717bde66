#include "phone/Frame.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "Wire.h"

namespace test {
namespace {

using phone::Frame;
using phone::FrameDecoder;
using phone::FrameKind;

Frame makeFrame(std::uint8_t channel, std::uint8_t flags, const Bytes& payload,
                std::uint32_t totalLength = 0) {
  Frame made;
  made.channel = channel;
  made.flags = flags;
  made.totalLength = totalLength;
  made.payload = payload;
  return made;
}

std::vector<Frame> decodeCut(const Bytes& stream, std::size_t cut) {
  FrameDecoder decoder;
  std::vector<Frame> found;
  for (std::size_t at = 0; at < stream.size(); at += cut) {
    const Bytes piece = part(stream, at, cut);
    decoder.feed(piece.data(), piece.size());
    Frame frame;
    while (decoder.next(&frame)) found.push_back(frame);
  }
  EXPECT_EQ(decoder.pending(), 0u);
  return found;
}

TEST(PhoneFrame, AnAtomicFrameHasFourHeaderBytes) {
  EXPECT_EQ(Bytes(phone::encodeFrame(makeFrame(0, 0x03, bytes("00 02 00 01 00 00 00")))),
            bytes("00"                       // channel
                  "03"                       // first and last
                  "00 07"                    // length
                  "00 02 00 01 00 00 00"));  // payload
}

TEST(PhoneFrame, AFirstFrameCarriesTheTotalLength) {
  EXPECT_EQ(Bytes(phone::encodeFrame(makeFrame(5, 0x09, bytes("AA BB"), 0x00013F02))),
            bytes("05"           // channel
                  "09"           // first, encrypted
                  "00 02"        // length of this fragment
                  "00 01 3F 02"  // length of the message
                  "AA BB"));     // payload
}

TEST(PhoneFrame, NoOtherKindCarriesATotalLength) {
  for (const int kind : {0x00, 0x02, 0x03}) {
    EXPECT_EQ(phone::encodeFrame(makeFrame(1, static_cast<std::uint8_t>(kind), bytes("11"), 99)).size(), 5u);
  }
}

TEST(PhoneFrame, MeaninglessFlagBitsGoOutAsTheyStand) {
  EXPECT_EQ(Bytes(phone::encodeFrame(makeFrame(1, 0xF3, {}))), bytes("01 F3 00 00"));
}

TEST(PhoneFrame, TheLargestPayloadIsWhatTheLengthFieldCanTell) {
  const Bytes wire = phone::encodeFrame(makeFrame(1, 3, filled(65535, 7)));
  EXPECT_EQ(part(wire, 0, 4), bytes("01 03 FF FF"));
  EXPECT_EQ(wire.size(), 65539u);
  EXPECT_THROW(phone::encodeFrame(makeFrame(1, 3, filled(65536, 7))), std::length_error);
}

TEST(PhoneFrame, DecodesAStreamAtEveryCut) {
  const Bytes stream = bytes(
      "00 03 00 06 00 01 00 01 00 00"     // atomic on channel 0
      "07 09 00 03 00 00 00 05 0A 0B 0C"  // first of a message of 5
      "09 0B 00 00"                       // atomic, empty
      "07 0A 00 02 0D 0E");               // last
  for (std::size_t cut = 1; cut <= stream.size(); ++cut) {
    const std::vector<Frame> found = decodeCut(stream, cut);
    ASSERT_EQ(found.size(), 4u) << "cut " << cut;
    EXPECT_EQ(found[0].channel, 0);
    EXPECT_EQ(Bytes(found[0].payload), bytes("00 01 00 01 00 00"));
    EXPECT_EQ(found[0].totalLength, 0u);
    EXPECT_EQ(found[1].kind(), FrameKind::first);
    EXPECT_EQ(found[1].totalLength, 5u);
    EXPECT_EQ(Bytes(found[1].payload), bytes("0A 0B 0C"));
    EXPECT_TRUE(found[2].payload.empty());
    EXPECT_EQ(found[3].kind(), FrameKind::last);
    EXPECT_TRUE(found[3].has(phone::flagEncrypted));
    EXPECT_EQ(Bytes(found[3].payload), bytes("0D 0E"));
  }
}

TEST(PhoneFrame, AnUnfinishedFrameIsPendingAndNotGivenOut) {
  FrameDecoder decoder;
  const Bytes beginning = bytes("00 03 00 02 00");
  decoder.feed(beginning.data(), beginning.size());
  Frame frame = makeFrame(42, 0, {});
  EXPECT_FALSE(decoder.next(&frame));
  EXPECT_EQ(frame.channel, 42);
  EXPECT_EQ(decoder.pending(), 5u);
}

TEST(PhoneFrame, ALongStreamDoesNotPileUp) {
  FrameDecoder decoder;
  const Bytes wire = phone::encodeFrame(makeFrame(1, 3, pattern(60000)));
  Bytes odd = wire;
  odd.push_back(0x02);  // the next frame's first byte, so that the buffer is never quite empty
  decoder.feed(odd.data(), odd.size());
  const Bytes rest = part(wire, 1) + bytes("02");
  Frame frame;
  for (int i = 0; i < 100; ++i) {
    ASSERT_TRUE(decoder.next(&frame));
    EXPECT_EQ(Bytes(frame.payload), pattern(60000));
    EXPECT_EQ(decoder.pending(), 1u);
    decoder.feed(rest.data(), rest.size());
  }
}

}  // namespace
}  // namespace test
