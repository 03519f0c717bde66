#ifndef PHONE_OUTBOX_H
#define PHONE_OUTBOX_H

#include <array>
#include <deque>

#include "phone/Frame.h"
#include "phone/TlsServer.h"

namespace phone {

/// What waits to be sent. A frame is enciphered at the moment its turn is settled, so that the TLS records
/// stand on the wire in the order in which they were made.
class Outbox {
 public:
  /// With `interleaves`, channels take turns a frame each; otherwise frames leave in the order of the calls.
  Outbox(bool interleaves, TlsServer* tls) : interleaves_(interleaves), tls_(tls) {}

  /// `encipher` false sends the payload as it is, whatever the flags say.
  void add(Frame frame, bool encipher);
  /// Bytes that need be no frame; they leave behind all that was added before.
  void addBytes(const Bytes& bytes);

  /// What is added later leaves behind all that was added before, whatever the channels.
  void settleAll();

  bool empty() const { return ready_.empty() && waiting_ == 0; }
  /// Bytes that wait, give or take what headers and enciphering add to frames whose turn has not come.
  std::size_t size() const { return ready_.size() + waitingBytes_; }
  Bytes take(std::size_t enough);

 private:
  struct Waiting {
    Frame frame;
    bool encipher;
  };
  void settle(Frame frame, bool encipher);
  void settleNext();

  bool interleaves_;
  TlsServer* tls_;
  Bytes ready_;
  std::array<std::deque<Waiting>, 256> queues_;
  std::size_t waiting_ = 0;  ///< Frames in the queues.
  std::size_t waitingBytes_ = 0;
  std::size_t lastChannel_ = 255;
};

}  // namespace phone

#endif
