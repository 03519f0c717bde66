#pragma once

#include <IoBuffer.h>
#include <shared_ptr.h>

#include <cstdint>

#include "headunit/Clock.h"

namespace headunit {

/// When one frame passed each station, from the socket to the screen.
struct FrameTimes {
  TimePoint read;      ///< its last bytes left the socket
  TimePoint received;  ///< decrypted and whole, in the library's callback
  TimePoint dequeued;  ///< the decoder took it
  TimePoint decoded;
  TimePoint shown;
};

/// One access unit, in the buffer in which it came.
struct VideoFrame {
  ::shared_ptr<IoBuffer> buffer;
  unsigned int offset = 0;  ///< of its first byte in the buffer's storage
  unsigned int length = 0;
  int session = 0;
  std::uint64_t timestamp = 0;  ///< the phone's, in microseconds
  FrameTimes times;

  unsigned char* data() const { return buffer->data + offset; }
};

/// Puts `padding` zero bytes behind the frame, which decoders ask for, without copying it where the allocator
/// has room behind the buffer: growing a block then only moves its end. The frame's data may stand elsewhere
/// afterwards.
///
/// To be called by the only user of the buffer, once the library's callback has been left.
void padWithZeros(VideoFrame* frame, unsigned int padding);

}  // namespace headunit
