#pragma once

#include "IoBuffer.h"
#include "VantryExport.h"
#include "shared_ptr.h"

/// The flags of a frame's second byte. Bits 4 to 7 are sent as 0 and ignored on receipt.
enum FrameFlag : unsigned char {
  FRAME_FLAG_FIRST = 0x01,      ///< the frame begins a message
  FRAME_FLAG_LAST = 0x02,       ///< the frame ends a message
  FRAME_FLAG_CONTROL = 0x04,    ///< opens or closes the channel; goes to the router, not to an endpoint
  FRAME_FLAG_ENCRYPTED = 0x08,  ///< the payload is whole TLS records once the handshake is done, plain before
};

/// The largest plain payload that goes into one frame; longer messages are cut into fragments of this size.
constexpr unsigned int MAX_FRAGMENT_PAYLOAD = 16128;

/// One frame in memory, always held by shared_ptr<Frame>. All fragments of an outgoing message share one
/// buffer.
class VANTRY_EXPORT Frame {
 public:
  /// The fragment kind, one of FragInfo: the low two flag bits.
  int kind() const { return flags & (FRAME_FLAG_FIRST | FRAME_FLAG_LAST); }

  /// Whether all of `flag`'s bits are set.
  bool has(FrameFlag flag) const { return (flags & flag) == flag; }

  unsigned char channelId = 0;       ///< 0 to 255
  unsigned char flags = 0;           ///< the flag byte as on the wire
  unsigned short length = 0;         ///< plain payload bytes (on receipt: once decoded)
  unsigned int totalLength = 0;      ///< plain size of the whole message in a FRAME_FIRST frame, otherwise 0
  unsigned char* payload = nullptr;  ///< first payload byte, inside `buffer`
  shared_ptr<IoBuffer> buffer;       ///< the storage that `payload` points into
  unsigned int room = 0;             ///< bytes behind the capacity of a `buffer` that is this frame's alone
};
