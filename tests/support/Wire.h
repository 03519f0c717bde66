#pragma once

#include <google/protobuf/message_lite.h>

#include "Bytes.h"

// Bytes as they stand on the wire, made without the code under test.

namespace test {

constexpr int MIDDLE = 0x00;
constexpr int FIRST = 0x01;
constexpr int LAST = 0x02;
constexpr int ATOMIC = 0x03;
constexpr int CONTROL = 0x04;
constexpr int ENCRYPTED = 0x08;

/// The largest plain payload in one frame.
constexpr std::size_t FRAGMENT = 0x3F00;

/// A frame with a header of 4 bytes: channel, flags, length.
Bytes frame(int channel, int flags, const Bytes& payload);

/// A frame with a header of 8 bytes, which FRAME_FIRST has: channel, flags, length, total length.
Bytes firstFrame(int channel, int flags, std::uint32_t totalLength, const Bytes& payload);

/// The same two with a length field that tells what it likes.
Bytes frameTelling(int channel, int flags, std::uint16_t length, const Bytes& payload);
Bytes firstFrameTelling(int channel, int flags, std::uint16_t length, std::uint32_t totalLength,
                        const Bytes& payload);

/// A whole message in as many frames as it needs; `flags` without the fragment kind.
std::vector<Bytes> frames(int channel, int flags, const Bytes& message);

/// Two type bytes and a body.
Bytes message(int type, const Bytes& body = {});

/// Two type bytes and a record, of which no required field need be set.
Bytes message(int type, const google::protobuf::MessageLite& record);

/// A media data message: type 0, 64-bit timestamp, media bytes.
Bytes mediaData(std::uint64_t timestamp, const Bytes& media);

Bytes bigEndian16(std::uint16_t value);
Bytes bigEndian32(std::uint32_t value);
Bytes bigEndian64(std::uint64_t value);

/// A frame of the wire taken apart.
struct WireFrame {
  int channel = 0;
  int flags = 0;
  std::uint32_t totalLength = 0;
  Bytes payload;

  int kind() const { return flags & ATOMIC; }
};

/// Throws std::invalid_argument unless `wire` is one whole frame and nothing else.
WireFrame parseFrame(const Bytes& wire);

/// The frames of a stream. Throws std::invalid_argument if it ends inside one.
std::vector<Bytes> cutIntoFrames(const Bytes& stream);

}  // namespace test
