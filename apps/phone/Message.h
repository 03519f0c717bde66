#ifndef PHONE_MESSAGE_H
#define PHONE_MESSAGE_H

#include <google/protobuf/message_lite.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "phone/Frame.h"

namespace phone {

/// The most plain bytes that go into one frame.
constexpr std::size_t maxFragment = 16128;

/// One whole message: two type bytes, then a body.
struct Message {
  std::uint8_t channel = 0;
  bool control = false;    ///< Travelled in a control frame.
  bool encrypted = false;  ///< Travelled in TLS records (really, not merely by its flag).
  std::size_t frames = 0;  ///< How many frames it came in.
  std::size_t order = 0;   ///< Counts the messages of a link over all channels, from 0.
  Bytes bytes;             ///< Type bytes included.

  std::uint16_t type() const { return bytes.size() < 2 ? 0 : readBigEndian<std::uint16_t>(bytes.data()); }
  const std::uint8_t* body() const { return bytes.size() < 2 ? nullptr : bytes.data() + 2; }
  std::size_t bodySize() const { return bytes.size() < 2 ? 0 : bytes.size() - 2; }

  /// The body as a record; empty if it is none, or lacks a required field.
  template <class Record>
  std::optional<Record> as() const {
    Record record;
    if (!parse(&record)) return std::nullopt;
    return record;
  }
  bool parse(google::protobuf::MessageLite* record) const;
};

/// Type bytes and serialized record, without a check for required fields: tests send incomplete ones too.
Bytes messageBytes(std::uint16_t type, const google::protobuf::MessageLite& record);
/// Type bytes and raw body.
Bytes messageBytes(std::uint16_t type, const Bytes& body = {});

/// Cuts a whole message into frames of at most `fragment` plain bytes. `flags` is or-ed into every frame:
/// flagEncrypted, flagControl or neither. A message of no bytes makes no frame.
std::vector<Frame> cutMessage(std::uint8_t channel, const Bytes& message, std::uint8_t flags,
                              std::size_t fragment = maxFragment);

/// Puts the fragments of 256 channels together again. Each channel is judged alone, and a length that a peer
/// announces costs nothing until its bytes have come.
class Reassembler {
 public:
  enum class Verdict { incomplete, complete, outOfSequence, tooLong, tooShort };

  /// Takes one plain frame. On `complete`, and on `tooShort` (the fragments add up to less than announced),
  /// `message` holds the message. The other refusals leave the channel without a message in the making.
  Verdict add(const Frame& frame, Message* message);

  void forget(std::uint8_t channel) { partial_[channel].reset(); }

 private:
  struct Partial {
    std::uint32_t totalLength = 0;
    std::size_t frames = 0;
    Bytes bytes;
  };
  Verdict begin(const Frame& frame);
  Verdict proceed(const Frame& frame, Message* message);
  std::array<std::optional<Partial>, 256> partial_;
};

}  // namespace phone

#endif
