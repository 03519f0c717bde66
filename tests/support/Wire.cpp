#include "Wire.h"

#include <stdexcept>

namespace test {
namespace {

Bytes bigEndian(std::uint64_t value, int size) {
  Bytes result;
  for (int i = size - 1; i >= 0; --i) result.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  return result;
}

std::size_t readLength(const Bytes& wire, std::size_t offset, std::size_t size) {
  std::size_t value = 0;
  for (std::size_t i = 0; i < size; ++i) value = value * 256 + wire.at(offset + i);
  return value;
}

std::size_t headerSize(const Bytes& wire) { return (wire.at(1) & ATOMIC) == FIRST ? 8 : 4; }

}  // namespace

Bytes bigEndian16(std::uint16_t value) { return bigEndian(value, 2); }
Bytes bigEndian32(std::uint32_t value) { return bigEndian(value, 4); }
Bytes bigEndian64(std::uint64_t value) { return bigEndian(value, 8); }

Bytes frameTelling(int channel, int flags, std::uint16_t length, const Bytes& payload) {
  const Bytes start = {static_cast<std::uint8_t>(channel), static_cast<std::uint8_t>(flags)};
  return start + bigEndian16(length) + payload;
}

Bytes firstFrameTelling(int channel, int flags, std::uint16_t length, std::uint32_t totalLength,
                        const Bytes& payload) {
  return frameTelling(channel, flags, length, bigEndian32(totalLength) + payload);
}

Bytes frame(int channel, int flags, const Bytes& payload) {
  return frameTelling(channel, flags, static_cast<std::uint16_t>(payload.size()), payload);
}

Bytes firstFrame(int channel, int flags, std::uint32_t totalLength, const Bytes& payload) {
  return firstFrameTelling(channel, flags, static_cast<std::uint16_t>(payload.size()), totalLength, payload);
}

std::vector<Bytes> frames(int channel, int flags, const Bytes& message) {
  if (message.size() <= FRAGMENT) return {frame(channel, flags | ATOMIC, message)};
  const auto total = static_cast<std::uint32_t>(message.size());
  std::vector<Bytes> result = {firstFrame(channel, flags | FIRST, total, part(message, 0, FRAGMENT))};
  for (std::size_t offset = FRAGMENT; offset < message.size(); offset += FRAGMENT) {
    const int kind = message.size() - offset <= FRAGMENT ? LAST : MIDDLE;
    result.push_back(frame(channel, flags | kind, part(message, offset, FRAGMENT)));
  }
  return result;
}

Bytes message(int type, const Bytes& body) { return bigEndian16(static_cast<std::uint16_t>(type)) + body; }

Bytes message(int type, const google::protobuf::MessageLite& record) {
  const std::string body = record.SerializePartialAsString();
  return message(type, Bytes(body.data(), body.size()));
}

Bytes mediaData(std::uint64_t timestamp, const Bytes& media) {
  return message(0, bigEndian64(timestamp) + media);
}

WireFrame parseFrame(const Bytes& wire) {
  if (wire.size() < 4 || wire.size() != headerSize(wire) + readLength(wire, 2, 2)) {
    throw std::invalid_argument("not one whole frame");
  }
  WireFrame result;
  result.channel = wire[0];
  result.flags = wire[1];
  if (headerSize(wire) == 8) result.totalLength = static_cast<std::uint32_t>(readLength(wire, 4, 4));
  result.payload = part(wire, headerSize(wire));
  return result;
}

std::vector<Bytes> cutIntoFrames(const Bytes& stream) {
  std::vector<Bytes> result;
  for (std::size_t offset = 0; offset < stream.size();) {
    const Bytes rest = part(stream, offset);
    if (rest.size() < 4) throw std::invalid_argument("the stream ends inside a header");
    const std::size_t size = headerSize(rest) + readLength(rest, 2, 2);
    if (rest.size() < size) throw std::invalid_argument("the stream ends inside a frame");
    result.push_back(part(rest, 0, size));
    offset += size;
  }
  return result;
}

}  // namespace test
