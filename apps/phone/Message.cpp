#include "phone/Message.h"

#include <algorithm>

namespace phone {

bool Message::parse(google::protobuf::MessageLite* record) const {
  // In two steps, because the one-step parse prints about missing fields by itself.
  return bytes.size() >= 2 && record->ParsePartialFromArray(body(), static_cast<int>(bodySize())) &&
         record->IsInitialized();
}

Bytes messageBytes(std::uint16_t type, const google::protobuf::MessageLite& record) {
  Bytes bytes(2 + record.ByteSizeLong());
  bytes[0] = static_cast<std::uint8_t>(type >> 8);
  bytes[1] = static_cast<std::uint8_t>(type);
  record.SerializePartialToArray(bytes.data() + 2, static_cast<int>(bytes.size() - 2));
  return bytes;
}

Bytes messageBytes(std::uint16_t type, const Bytes& body) {
  Bytes bytes;
  bytes.reserve(2 + body.size());
  appendBigEndian(&bytes, type);
  append(&bytes, body);
  return bytes;
}

std::vector<Frame> cutMessage(std::uint8_t channel, const Bytes& message, std::uint8_t flags,
                              std::size_t fragment) {
  std::vector<Frame> frames;
  for (std::size_t at = 0; at < message.size();) {
    const std::size_t size = std::min(fragment, message.size() - at);
    Frame frame;
    frame.channel = channel;
    frame.flags = flags;
    if (at == 0) frame.flags |= flagFirst;
    if (at + size == message.size()) frame.flags |= flagLast;
    if (frame.kind() == FrameKind::first) frame.totalLength = static_cast<std::uint32_t>(message.size());
    const auto begin = message.begin() + static_cast<std::ptrdiff_t>(at);
    frame.payload.assign(begin, begin + static_cast<std::ptrdiff_t>(size));
    frames.push_back(std::move(frame));
    at += size;
  }
  return frames;
}

Reassembler::Verdict Reassembler::add(const Frame& frame, Message* message) {
  const bool begins = frame.has(flagFirst);
  if (begins == partial_[frame.channel].has_value()) {
    forget(frame.channel);
    return Verdict::outOfSequence;
  }
  if (frame.kind() == FrameKind::atomic) {
    message->bytes = frame.payload;
    message->frames = 1;
    return Verdict::complete;
  }
  return begins ? begin(frame) : proceed(frame, message);
}

Reassembler::Verdict Reassembler::begin(const Frame& frame) {
  if (frame.payload.size() > frame.totalLength) return Verdict::tooLong;
  partial_[frame.channel] = Partial{frame.totalLength, 1, frame.payload};
  return Verdict::incomplete;
}

Reassembler::Verdict Reassembler::proceed(const Frame& frame, Message* message) {
  Partial& partial = *partial_[frame.channel];
  if (frame.payload.size() > partial.totalLength - partial.bytes.size()) {
    forget(frame.channel);
    return Verdict::tooLong;
  }
  append(&partial.bytes, frame.payload);
  ++partial.frames;
  if (!frame.has(flagLast)) return Verdict::incomplete;

  const bool whole = partial.bytes.size() == partial.totalLength;
  message->bytes = std::move(partial.bytes);
  message->frames = partial.frames;
  forget(frame.channel);
  return whole ? Verdict::complete : Verdict::tooShort;
}

}  // namespace phone
