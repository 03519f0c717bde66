#include "phone/Frame.h"

#include <stdexcept>

namespace phone {

namespace {

constexpr std::size_t shortHeader = 4;
constexpr std::size_t longHeader = 8;

bool isFirst(std::uint8_t flags) { return (flags & 0x03) == flagFirst; }

}  // namespace

Bytes encodeFrame(const Frame& frame) {
  if (frame.payload.size() > UINT16_MAX) throw std::length_error("a frame holds at most 65535 bytes");
  Bytes wire;
  wire.reserve(longHeader + frame.payload.size());
  wire.push_back(frame.channel);
  wire.push_back(frame.flags);
  appendBigEndian(&wire, static_cast<std::uint16_t>(frame.payload.size()));
  if (isFirst(frame.flags)) appendBigEndian(&wire, frame.totalLength);
  append(&wire, frame.payload);
  return wire;
}

void FrameDecoder::feed(const std::uint8_t* data, std::size_t size) {
  buffer_.insert(buffer_.end(), data, data + size);
}

bool FrameDecoder::next(Frame* frame) {
  const std::uint8_t* start = buffer_.data() + taken_;
  if (pending() < shortHeader) return false;
  const std::size_t header = isFirst(start[1]) ? longHeader : shortHeader;
  const std::size_t length = readBigEndian<std::uint16_t>(start + 2);
  if (pending() < header + length) return false;

  frame->channel = start[0];
  frame->flags = start[1];
  frame->totalLength = header == longHeader ? readBigEndian<std::uint32_t>(start + 4) : 0;
  frame->payload.assign(start + header, start + header + length);
  taken_ += header + length;
  if (taken_ == buffer_.size() || taken_ > (std::size_t{1} << 20)) {
    buffer_.erase(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(taken_));
    taken_ = 0;
  }
  return true;
}

}  // namespace phone
