// The half of PhoneLink that knows what the messages of the control channel, and of control frames, mean.
#include "phone/PhoneLink.h"

namespace phone {

namespace {

constexpr char credentialAdvice[] =
    "both sides need valid certificates signed by one root; scripts/make-credentials makes such a set";

std::string typeWords(const Message& message) {
  return "message of type " + std::to_string(message.type()) + " on channel " +
         std::to_string(message.channel);
}

}  // namespace

void PhoneLink::takeControlMessage(const Message& message) {
  switch (message.type()) {
    case MESSAGE_VERSION_REQUEST: return onVersionRequest(message);
    case MESSAGE_SSL_HANDSHAKE: return onHandshake(message);
    case MESSAGE_AUTH_RESPONSE: return onAuthResponse(message);
    case MESSAGE_SERVICE_DISCOVERY_RESPONSE: return onServiceDiscoveryResponse(message);
    case MESSAGE_PING_REQUEST: return onPingRequest(message);
    case MESSAGE_BYE_BYE_REQUEST: return onByeByeRequest(message);
    case MESSAGE_BYE_BYE_RESPONSE: return onByeByeResponse(message);
    case MESSAGE_FRAMING_ERROR:
      return fail(Side::headUnit, "reports a framing error",
                  "what this phone last sent broke the rules of frames");
    case MESSAGE_PING_RESPONSE:
    case MESSAGE_NAV_FOCUS_NOTIFICATION:
    case MESSAGE_AUDIO_FOCUS_NOTIFICATION:
    case MESSAGE_UNEXPECTED_MESSAGE: return;  // For handlers and observers.
    default: return violation("a " + typeWords(message) + " is not for a phone");
  }
}

void PhoneLink::takeChannelControl(const Message& message) {
  switch (message.type()) {
    case MESSAGE_CHANNEL_OPEN_RESPONSE: return onChannelOpenResponse(message);
    case MESSAGE_CHANNEL_CLOSE_NOTIFICATION: return onChannelCloseNotification(message);
    default: return violation("a control frame carries a " + typeWords(message));
  }
}

// ---- Bring-up ----

void PhoneLink::onVersionRequest(const Message& message) {
  if (message.bodySize() != 4) return violation("a version request has a body of other than 4 bytes");
  headUnitMajor_ = readBigEndian<std::uint16_t>(message.body());
  headUnitMinor_ = readBigEndian<std::uint16_t>(message.body() + 2);
  if (state_ != LinkState::awaitingVersion) violation("a second version request");
  if (options_.answersVersion) sendVersionResponse(options_.major, options_.minor, options_.verdict);
}

void PhoneLink::sendVersionResponse(std::uint16_t major, std::uint16_t minor, std::uint8_t verdict) {
  Bytes body;
  appendBigEndian(&body, major);
  appendBigEndian(&body, minor);
  body.push_back(verdict);
  send(0, MESSAGE_VERSION_RESPONSE, body, 0);
  if (state_ <= LinkState::refused) enter(verdict == 0 ? LinkState::handshaking : LinkState::refused);
}

void PhoneLink::onHandshake(const Message& message) {
  if (!options_.answersHandshake) return;
  if (!tls_) return fail(Side::phone, "has no credentials for the TLS handshake", credentialAdvice);
  if (tls_->established()) return violation("a handshake message after the handshake");

  Bytes flight;
  const TlsServer::Step step = tls_->handshake(message.body(), message.bodySize(), &flight);
  if (!flight.empty()) sendHandshake(flight);
  if (step == TlsServer::Step::established) enter(LinkState::awaitingAuth);
  if (step == TlsServer::Step::failed) {
    fail(Side::headUnit, "the TLS handshake failed (" + tls_->error() + ")", credentialAdvice);
  }
}

void PhoneLink::sendHandshake(const Bytes& records) { send(0, MESSAGE_SSL_HANDSHAKE, records, 0); }

void PhoneLink::onAuthResponse(const Message& message) {
  const auto answer = message.as<AuthResponse>();
  if (!answer) return violation("an AuthResponse does not parse");
  if (message.encrypted) violation("an AuthResponse is encrypted");
  authStatus_ = answer->status();
  if (answer->status() != STATUS_SUCCESS) {
    return fail(Side::headUnit,
                "refused this phone's certificate (status " + std::to_string(answer->status()) + ")",
                credentialAdvice);
  }
  if (state_ == LinkState::awaitingAuth && options_.discovers) sendServiceDiscoveryRequest();
}

void PhoneLink::sendServiceDiscoveryRequest() {
  send(0, MESSAGE_SERVICE_DISCOVERY_REQUEST, options_.identity);
  if (state_ == LinkState::awaitingAuth) enter(LinkState::discovering);
}

void PhoneLink::onServiceDiscoveryResponse(const Message& message) {
  auto answer = message.as<ServiceDiscoveryResponse>();
  if (!answer) {
    return fail(Side::headUnit, "its list of services does not parse",
                "a required field is missing, or it is damaged");
  }
  services_ = std::move(*answer);
  if (state_ == LinkState::discovering) enter(LinkState::up);
}

// ---- Keep-alive, focus, farewell ----

void PhoneLink::onPingRequest(const Message& message) {
  const auto request = message.as<PingRequest>();
  if (!request) return violation("a PingRequest does not parse");
  if (!options_.answersPings) return;
  PingResponse response;
  response.set_timestamp(request->timestamp());
  send(0, MESSAGE_PING_RESPONSE, response);
}

void PhoneLink::sendPing(std::int64_t timestamp, std::optional<bool> bugReport) {
  PingRequest request;
  request.set_timestamp(timestamp);
  if (bugReport) request.set_bug_report(*bugReport);
  send(0, MESSAGE_PING_REQUEST, request);
}

void PhoneLink::requestAudioFocus(AudioFocusRequestType request) {
  AudioFocusRequestNotification record;
  record.set_request(request);
  send(0, MESSAGE_AUDIO_FOCUS_REQUEST_NOTIFICATION, record);
}

void PhoneLink::requestNavFocus(NavFocusType focus) {
  NavFocusRequestNotification record;
  record.set_focus_type(focus);
  send(0, MESSAGE_NAV_FOCUS_REQUEST_NOTIFICATION, record);
}

void PhoneLink::sendVoiceSession(VoiceSessionStatus status) {
  VoiceSessionNotification record;
  record.set_status(status);
  send(0, MESSAGE_VOICE_SESSION_NOTIFICATION, record);
}

void PhoneLink::sayByeBye(ByeByeReason reason) {
  ByeByeRequest record;
  record.set_reason(reason);
  // A head unit may leave at the good-bye: what was said before has to stand before it.
  outbox_.settleAll();
  send(0, MESSAGE_BYE_BYE_REQUEST, record);
  if (!end_) enter(LinkState::leaving);
}

void PhoneLink::onByeByeRequest(const Message& message) {
  if (!message.as<ByeByeRequest>()) return violation("a ByeByeRequest does not parse");
  if (!options_.answersByeBye) return;
  send(0, MESSAGE_BYE_BYE_RESPONSE, ByeByeResponse());
  finish({true, Side::headUnit, "said good-bye", ""});
}

void PhoneLink::onByeByeResponse(const Message&) {
  if (state_ == LinkState::leaving) finish({true, Side::phone, "said good-bye, and was answered", ""});
}

// ---- Channels ----

void PhoneLink::openChannel(std::uint8_t channel, int serviceId, ChannelHandler* handler, int priority) {
  Channel& entry = channels_[channel];
  if (entry.state != ChannelState::open) {
    reassembler_.forget(channel);
    entry = {ChannelState::opening, handler};
  }
  ChannelOpenRequest request;
  request.set_priority(priority);
  request.set_service_id(serviceId);
  send(channel, MESSAGE_CHANNEL_OPEN_REQUEST, request, flagControl | flagEncrypted);
}

void PhoneLink::onChannelOpenResponse(const Message& message) {
  const auto answer = message.as<ChannelOpenResponse>();
  if (!answer) return violation("a ChannelOpenResponse does not parse");
  Channel& channel = channels_[message.channel];
  if (channel.state == ChannelState::open && answer->status() != STATUS_SUCCESS) return;
  if (channel.state != ChannelState::opening) return violation("a ChannelOpenResponse that nobody asked for");

  if (answer->status() == STATUS_SUCCESS) {
    channel.state = ChannelState::open;
    if (channel.handler != nullptr) channel.handler->onOpened();
  } else {
    channel.state = ChannelState::refused;
    ChannelHandler* handler = std::exchange(channel.handler, nullptr);
    if (handler != nullptr) handler->onRefused(answer->status());
  }
}

void PhoneLink::closeChannel(std::uint8_t channel) {
  send(channel, MESSAGE_CHANNEL_CLOSE_NOTIFICATION, ChannelCloseNotification(), flagControl | flagEncrypted);
  channels_[channel] = {ChannelState::closed, nullptr};
}

void PhoneLink::onChannelCloseNotification(const Message& message) {
  Channel& channel = channels_[message.channel];
  if (channel.state != ChannelState::open) return;
  channel.state = ChannelState::closed;
  ChannelHandler* handler = std::exchange(channel.handler, nullptr);
  if (handler != nullptr) handler->onClosed();
}

}  // namespace phone
