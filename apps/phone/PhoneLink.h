#ifndef PHONE_PHONELINK_H
#define PHONE_PHONELINK_H

#include <array>
#include <memory>
#include <optional>
#include <vector>

#include "phone/LinkTypes.h"
#include "phone/Outbox.h"

namespace phone {

enum class ChannelState { free, opening, open, refused, closed };

/// The phone's side of one link, without a socket, a clock or a thread: feed() takes what the head unit sent,
/// takeOutput() gives what is to be sent to it. One thread at a time.
///
/// By itself it accepts the version, is the TLS server, discovers, answers pings and bye-byes. All of it can
/// be turned off in LinkOptions and done by hand, well or badly.
class PhoneLink {
 public:
  /// Throws std::invalid_argument, with the reason, if the credentials are unusable. Credentials that are all
  /// empty are allowed: such a link goes as far as the version response and fails at the handshake.
  explicit PhoneLink(LinkOptions options);
  ~PhoneLink();
  PhoneLink(const PhoneLink&) = delete;
  PhoneLink& operator=(const PhoneLink&) = delete;

  // ---- Bytes ----

  /// Takes bytes from the head unit, cut anywhere, and acts on every frame that they complete. Ignored once
  /// the link has ended. Not to be called from a handler or observer.
  void feed(const std::uint8_t* data, std::size_t size);
  void feed(const Bytes& data) { feed(data.data(), data.size()); }

  /// Hands over what waits to be sent, whole frames only; an interleaving link stops after the frame that
  /// reaches `enough` bytes, so that frames which are added later still get their turn early.
  /// Still gives what is left after the link has ended (an alert, a ByeByeResponse).
  Bytes takeOutput(std::size_t enough = SIZE_MAX);
  bool hasOutput() const { return !outbox_.empty(); }
  /// About how many bytes takeOutput() has to give. Nothing limits it but those who send.
  std::size_t outputSize() const { return outbox_.size(); }

  /// The stream from the head unit is at its end, or broke: `problem` tells how, empty means a plain end.
  /// Ends the link, cleanly only if bye-bye had been said.
  void streamEnded(const std::string& problem = {});

  // ---- State ----

  LinkState state() const { return state_; }
  const std::optional<LinkEnd>& end() const { return end_; }
  /// What the head unit offers; null until it has said so.
  const ServiceDiscoveryResponse* services() const { return services_ ? &*services_ : nullptr; }
  /// Whether the head unit has said anything at all, even if no whole frame.
  bool hasHeard() const { return hasHeard_; }
  std::optional<int> authStatus() const { return authStatus_; }
  std::uint16_t headUnitMajor() const { return headUnitMajor_; }
  std::uint16_t headUnitMinor() const { return headUnitMinor_; }
  TlsServer* tls() { return tls_.get(); }  ///< Null without credentials.

  /// Observers are called in the order in which they came; none is owned.
  void observe(LinkObserver* observer) { observers_.push_back(observer); }

  // ---- Channels ----

  /// Asks for a channel; its answer reaches `handler` (may be null), as do its messages. A refusal may come
  /// without any answer at all, so whoever waits for one sets a limit of his own.
  void openChannel(std::uint8_t channel, int serviceId, ChannelHandler* handler = nullptr, int priority = 0);
  /// Tells the head unit that the channel goes away; the handler is detached without a call.
  void closeChannel(std::uint8_t channel);
  ChannelState channelState(std::uint8_t channel) const { return channels_[channel].state; }
  /// Puts a handler on a channel, or with null takes it off, without a word on the wire. On channel 0 it gets
  /// what the link got, after the link.
  void attach(std::uint8_t channel, ChannelHandler* handler) { channels_[channel].handler = handler; }
  /// The lowest channel from 1 up that this link has not used yet; 0 if there is none.
  std::uint8_t unusedChannel() const;

  // ---- Whole messages ----

  /// Sends a record on a channel, encrypted as soon as TLS stands.
  void send(std::uint8_t channel, std::uint16_t type, const google::protobuf::MessageLite& record,
            std::uint8_t flags = flagEncrypted);
  /// The same with a raw body.
  void send(std::uint8_t channel, std::uint16_t type, const Bytes& body, std::uint8_t flags = flagEncrypted);
  /// Any message bytes, cut into frames of at most `fragment` plain bytes.
  void sendMessage(std::uint8_t channel, const Bytes& message, std::uint8_t flags = flagEncrypted,
                   std::size_t fragment = maxFragment);

  // ---- The control channel ----

  void sendVersionResponse(std::uint16_t major, std::uint16_t minor, std::uint8_t verdict);
  void sendHandshake(const Bytes& records);  ///< In the clear, in one message.
  void sendServiceDiscoveryRequest();
  void sendPing(std::int64_t timestamp, std::optional<bool> bugReport = {});
  void requestAudioFocus(AudioFocusRequestType request);
  void requestNavFocus(NavFocusType focus);
  void sendVoiceSession(VoiceSessionStatus status);
  /// Says good-bye; the link ends when the head unit answers.
  void sayByeBye(ByeByeReason reason = BYE_BYE_REASON_1);
  /// Ends the link at once, saying nothing on it. A link has one end; later ones are ignored.
  void finish(LinkEnd end);
  void fail(Side side, const std::string& what, const std::string& advice);

  // ---- By hand, also against the rules ----

  /// One frame with its flags as they stand. The payload is enciphered if flagEncrypted is set and TLS
  /// stands.
  void sendFrame(Frame frame);
  /// One frame, payload included, exactly as it is.
  void sendFrameAsIs(const Frame& frame);
  /// Bytes that need be no frame at all.
  void sendBytes(const Bytes& bytes);
  /// TLS records around `plain`, for payloads made by hand; they must be sent in the order of the calls.
  /// Only once TLS stands.
  Bytes encrypt(const Bytes& plain);

  // ---- What came ----

  /// All messages of a channel so far, oldest first (with LinkOptions::records).
  const std::vector<Message>& received(std::uint8_t channel) const { return received_[channel]; }
  /// Messages of one type on one channel.
  std::vector<Message> received(std::uint8_t channel, std::uint16_t type) const;
  /// All frames of the link, oldest first (with LinkOptions::records).
  const std::vector<FrameRecord>& receivedFrames() const { return receivedFrames_; }
  /// The rules that the head unit broke without ending the link, in words (with LinkOptions::records).
  const std::vector<std::string>& violations() const { return violations_; }

 private:
  struct Channel {
    ChannelState state = ChannelState::free;
    ChannelHandler* handler = nullptr;
  };

  // Receiving, from the bytes up.
  void takeFrame(Frame frame);
  bool decipher(Frame* frame, bool* wasEncrypted);
  bool takesAsPlain(const Frame& frame) const;
  void inspect(const Frame& frame, bool wasEncrypted);
  void takeFragment(const Frame& frame, bool wasEncrypted);
  void takeMessage(Message message);
  void takeChannelControl(const Message& message);
  void takeControlMessage(const Message& message);
  void deliver(const Message& message);

  // The control channel's messages, one each.
  void onVersionRequest(const Message& message);
  void onHandshake(const Message& message);
  void onAuthResponse(const Message& message);
  void onServiceDiscoveryResponse(const Message& message);
  void onPingRequest(const Message& message);
  void onByeByeRequest(const Message& message);
  void onByeByeResponse(const Message& message);
  void onChannelOpenResponse(const Message& message);
  void onChannelCloseNotification(const Message& message);

  void enter(LinkState state);
  void violation(const std::string& what);

  LinkOptions options_;
  std::unique_ptr<TlsServer> tls_;
  FrameDecoder decoder_;
  Reassembler reassembler_;
  Outbox outbox_;
  std::array<Channel, 256> channels_;
  std::vector<LinkObserver*> observers_;

  LinkState state_ = LinkState::awaitingVersion;
  std::optional<LinkEnd> end_;
  std::optional<ServiceDiscoveryResponse> services_;
  bool hasHeard_ = false;
  std::optional<int> authStatus_;
  std::uint16_t headUnitMajor_ = 0;
  std::uint16_t headUnitMinor_ = 0;

  std::size_t messages_ = 0;
  std::array<std::vector<Message>, 256> received_;
  std::vector<FrameRecord> receivedFrames_;
  std::vector<std::string> violations_;
};

}  // namespace phone

#endif
