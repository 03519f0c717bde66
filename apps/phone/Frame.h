#ifndef PHONE_FRAME_H
#define PHONE_FRAME_H

#include "phone/Bytes.h"

namespace phone {

constexpr std::uint8_t flagFirst = 0x01;
constexpr std::uint8_t flagLast = 0x02;
constexpr std::uint8_t flagControl = 0x04;
constexpr std::uint8_t flagEncrypted = 0x08;

/// The low two flag bits: which piece of its message a frame carries.
enum class FrameKind : std::uint8_t { middle = 0, first = 1, last = 2, atomic = 3 };

/// One frame. On the wire:
///
///      0        1        2        3        4 (first frames only)
///   +--------+--------+--------+--------+--------+--------+--------+--------+----------------
///   |channel | flags  |     length      |   total length of the message     | payload ...
///   +--------+--------+--------+--------+--------+--------+--------+--------+----------------
///
/// A plain value: nothing in it is checked until encodeFrame.
struct Frame {
  std::uint8_t channel = 0;
  std::uint8_t flags = 0;
  std::uint32_t totalLength = 0;  ///< Plain bytes of the whole message; on the wire in first frames only.
  Bytes payload;                  ///< Plain bytes, or TLS records where flagEncrypted is meant seriously.

  FrameKind kind() const { return static_cast<FrameKind>(flags & 0x03); }
  bool has(std::uint8_t flag) const { return (flags & flag) != 0; }
};

/// The frame's wire bytes, flags as they stand. Throws std::length_error for a payload above 65535 bytes,
/// which no length field can tell.
Bytes encodeFrame(const Frame& frame);

/// Finds frames in a byte stream that may be cut anywhere. No header is invalid, so decoding cannot fail.
class FrameDecoder {
 public:
  /// Takes the next `size` bytes of the stream; they are copied.
  void feed(const std::uint8_t* data, std::size_t size);

  /// Moves the oldest whole frame into `frame`; false, with `frame` untouched, if there is none yet.
  bool next(Frame* frame);

  /// Bytes that wait for the rest of their frame. Not 0 at the end of a stream: it ended inside a frame.
  std::size_t pending() const { return buffer_.size() - taken_; }

 private:
  Bytes buffer_;
  std::size_t taken_ = 0;
};

}  // namespace phone

#endif
