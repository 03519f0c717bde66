#ifndef PHONE_LINKTYPES_H
#define PHONE_LINKTYPES_H

#include <protos.pb.h>

#include <string>

#include "phone/Credentials.h"
#include "phone/Message.h"
#include "phone/TlsServer.h"

namespace phone {

/// How far a link has come, in this order.
enum class LinkState {
  awaitingVersion,  ///< Nothing heard yet.
  refused,          ///< The phone's verdict on the version was no; the link idles.
  handshaking,      ///< Version accepted; TLS flights go back and forth.
  awaitingAuth,     ///< TLS stands on this side; the head unit's AuthResponse is due.
  discovering,      ///< ServiceDiscoveryRequest is out.
  up,               ///< The services are known; channels may be opened.
  leaving,          ///< A ByeByeRequest of ours is out.
  ended             ///< See PhoneLink::end().
};

const char* nameOf(LinkState state);

enum class Side { phone, headUnit, medium };

/// Why a link ended.
struct LinkEnd {
  bool clean = false;
  Side side = Side::phone;  ///< Who ended it, or at whose door the fault lies.
  std::string what;         ///< A sentence for people.
  std::string advice;       ///< What to do about it; empty after a clean end.

  std::string words() const;  ///< "head unit: <what>; <advice>"
};

/// What a frame looked like on arrival.
struct FrameRecord {
  std::uint8_t channel = 0;
  std::uint8_t flags = 0;
  std::size_t wireLength = 0;   ///< Payload bytes as they came.
  std::size_t plainLength = 0;  ///< Payload bytes after decryption.
  std::uint32_t totalLength = 0;
};

/// How a link behaves. The defaults are a well-behaved phone; a test turns off what it wants to do by hand.
struct LinkOptions {
  Credentials credentials;
  TlsOptions tls;

  std::uint16_t major = 1;  ///< Told in the version response ...
  std::uint16_t minor = 0;
  std::uint8_t verdict = 0;  ///< ... with this verdict; 0 accepts.
  ServiceDiscoveryRequest identity;

  bool answersVersion = true;
  bool answersHandshake = true;
  bool discovers = true;  ///< Sends ServiceDiscoveryRequest as soon as the head unit says yes.
  bool answersPings = true;
  bool answersByeBye = true;  ///< Answers a ByeByeRequest and ends; otherwise it is only recorded.

  /// False: frames leave in the order of the calls. True: channels with frames waiting take turns, a frame
  /// each, so that a long message of one does not hold up the others.
  bool interleaves = false;
  bool records = true;  ///< Keep all that is received, for received() and receivedFrames(); violations too.
};

/// Gets what happens on one channel. A channel's handler must outlive the link or detach first.
class ChannelHandler {
 public:
  virtual ~ChannelHandler() = default;
  virtual void onOpened() {}
  /// The head unit said no, with this status.
  virtual void onRefused(MessageStatus) {}
  virtual void onMessage(const Message&) {}
  /// The head unit closed the channel, or the link has ended.
  virtual void onClosed() {}
};

/// Sees a whole link. Called from inside PhoneLink's operations, which may all be called in turn, except
/// feed.
class LinkObserver {
 public:
  virtual ~LinkObserver() = default;
  virtual void onState(LinkState) {}
  /// Every whole message of every channel, also those that the link answers itself, after it has.
  virtual void onMessage(const Message&) {}
  /// The head unit broke a rule that does not end the link.
  virtual void onViolation(const std::string&) {}
  virtual void onEnd(const LinkEnd&) {}
};

}  // namespace phone

#endif
