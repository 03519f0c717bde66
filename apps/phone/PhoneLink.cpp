#include "phone/PhoneLink.h"

#include <stdexcept>
#include <utility>

namespace phone {

namespace {

bool isEmpty(const Credentials& credentials) {
  return credentials.root.empty() && credentials.certificate.empty() && credentials.key.empty();
}

std::unique_ptr<TlsServer> makeTls(const LinkOptions& options) {
  if (isEmpty(options.credentials)) return nullptr;
  std::string error;
  auto tls = TlsServer::create(options.credentials, options.tls, &error);
  if (!tls) throw std::invalid_argument(error);
  return tls;
}

}  // namespace

PhoneLink::PhoneLink(LinkOptions options)
    : options_(std::move(options)), tls_(makeTls(options_)), outbox_(options_.interleaves, tls_.get()) {
  channels_[0].state = ChannelState::open;
}

PhoneLink::~PhoneLink() = default;

// ---- Sending ----

Bytes PhoneLink::takeOutput(std::size_t enough) { return outbox_.take(enough); }

void PhoneLink::send(std::uint8_t channel, std::uint16_t type, const google::protobuf::MessageLite& record,
                     std::uint8_t flags) {
  sendMessage(channel, messageBytes(type, record), flags);
}

void PhoneLink::send(std::uint8_t channel, std::uint16_t type, const Bytes& body, std::uint8_t flags) {
  sendMessage(channel, messageBytes(type, body), flags);
}

void PhoneLink::sendMessage(std::uint8_t channel, const Bytes& message, std::uint8_t flags,
                            std::size_t fragment) {
  for (Frame& frame : cutMessage(channel, message, flags, fragment)) outbox_.add(std::move(frame), true);
}

void PhoneLink::sendFrame(Frame frame) { outbox_.add(std::move(frame), true); }
void PhoneLink::sendFrameAsIs(const Frame& frame) { outbox_.add(frame, false); }
void PhoneLink::sendBytes(const Bytes& bytes) { outbox_.addBytes(bytes); }
Bytes PhoneLink::encrypt(const Bytes& plain) { return tls_->encrypt(plain.data(), plain.size()); }

// ---- Receiving, from the bytes up ----

void PhoneLink::feed(const std::uint8_t* data, std::size_t size) {
  if (end_) return;
  hasHeard_ = hasHeard_ || size > 0;
  decoder_.feed(data, size);
  Frame frame;
  while (!end_ && decoder_.next(&frame)) takeFrame(std::move(frame));
}

void PhoneLink::takeFrame(Frame frame) {
  const std::size_t wireLength = frame.payload.size();
  bool wasEncrypted = false;
  if (!decipher(&frame, &wasEncrypted)) {
    return fail(Side::headUnit, "sent an encrypted frame that cannot be deciphered (" + tls_->error() + ")",
                "the bytes were damaged on the way, or its TLS records are out of step with its frames");
  }
  if (options_.records) {
    receivedFrames_.push_back(
        {frame.channel, frame.flags, wireLength, frame.payload.size(), frame.totalLength});
  }
  inspect(frame, wasEncrypted);
  takeFragment(frame, wasEncrypted);
}

bool PhoneLink::decipher(Frame* frame, bool* wasEncrypted) {
  if (!frame->has(flagEncrypted) || tls_ == nullptr || !tls_->established() || takesAsPlain(*frame))
    return true;
  Bytes plain;
  if (!tls_->decrypt(frame->payload, &plain)) return false;
  frame->payload = std::move(plain);
  *wasEncrypted = true;
  return true;
}

// Until the head unit has seen our last flight it still sends flagged frames in the clear, and such a frame
// may meet an established server here. A TLS record begins with 17 03 03, which is no message type.
bool PhoneLink::takesAsPlain(const Frame& frame) const {
  constexpr std::uint8_t applicationData = 0x17;
  return state_ <= LinkState::awaitingAuth && (frame.payload.empty() || frame.payload[0] != applicationData);
}

void PhoneLink::inspect(const Frame& frame, bool wasEncrypted) {
  const std::string where = "channel " + std::to_string(frame.channel);
  if ((frame.flags & 0xF0) != 0) violation("a frame on " + where + " has flag bits set that mean nothing");
  if (frame.payload.size() > maxFragment) violation("a frame on " + where + " carries more than 16128 bytes");
  if (frame.channel != 0 && !wasEncrypted) violation("a frame on " + where + " is not encrypted");
}

void PhoneLink::takeFragment(const Frame& frame, bool wasEncrypted) {
  Message message;
  message.channel = frame.channel;
  message.control = frame.has(flagControl);
  message.encrypted = wasEncrypted;
  const std::string where = " on channel " + std::to_string(frame.channel);
  if (message.control && frame.kind() != FrameKind::atomic) {
    return violation("a control frame" + where + " is only a piece of a message");
  }
  if (message.control) {
    message.bytes = frame.payload;
    message.frames = 1;
    return takeMessage(std::move(message));
  }
  const char* advice = "its fragmentation is broken";
  switch (reassembler_.add(frame, &message)) {
    case Reassembler::Verdict::incomplete: return;
    case Reassembler::Verdict::complete: return takeMessage(std::move(message));
    case Reassembler::Verdict::tooShort:
      violation("the fragments of a message" + where + " add up to less than it announced");
      return takeMessage(std::move(message));
    case Reassembler::Verdict::tooLong:
      return fail(Side::headUnit, "the fragments of a message" + where + " add up to more than it announced",
                  advice);
    case Reassembler::Verdict::outOfSequence:
      return fail(Side::headUnit, "sent a fragment out of sequence" + where, advice);
  }
}

void PhoneLink::takeMessage(Message message) {
  message.order = messages_++;
  if (options_.records) received_[message.channel].push_back(message);
  if (message.bytes.size() < 2) {
    return violation("a message on channel " + std::to_string(message.channel) +
                     " is too short for its type");
  }
  if (message.control) {
    takeChannelControl(message);
  } else if (message.channel == 0) {
    takeControlMessage(message);
  } else if (channels_[message.channel].state == ChannelState::free) {
    violation("a message came on channel " + std::to_string(message.channel) + ", which nobody opened");
  }
  deliver(message);
}

void PhoneLink::deliver(const Message& message) {
  ChannelHandler* handler = channels_[message.channel].handler;
  if (handler != nullptr && !message.control) handler->onMessage(message);
  for (LinkObserver* observer : observers_) observer->onMessage(message);
}

void PhoneLink::streamEnded(const std::string& problem) {
  if (end_) return;
  const bool plain = problem.empty() && decoder_.pending() == 0;
  if (plain && state_ == LinkState::leaving) {
    return finish({true, Side::headUnit, "closed the connection in answer to good-bye", ""});
  }
  std::string what = problem.empty() ? "closed the connection" : "went away (" + problem + ")";
  if (decoder_.pending() > 0) what += " in the middle of a frame";
  what += std::string(", with the link ") + nameOf(state_);
  finish({false, Side::headUnit, what, "look at the head unit's own messages for the reason"});
}

// ---- State ----

std::uint8_t PhoneLink::unusedChannel() const {
  for (std::size_t i = 1; i < channels_.size(); ++i) {
    if (channels_[i].state == ChannelState::free) return static_cast<std::uint8_t>(i);
  }
  return 0;
}

std::vector<Message> PhoneLink::received(std::uint8_t channel, std::uint16_t type) const {
  std::vector<Message> matching;
  for (const Message& message : received_[channel]) {
    if (message.type() == type) matching.push_back(message);
  }
  return matching;
}

void PhoneLink::fail(Side side, const std::string& what, const std::string& advice) {
  finish({false, side, what, advice});
}

void PhoneLink::enter(LinkState state) {
  state_ = state;
  for (LinkObserver* observer : observers_) observer->onState(state);
}

void PhoneLink::finish(LinkEnd end) {
  if (end_) return;
  end_ = std::move(end);
  for (std::size_t i = 1; i < channels_.size(); ++i) {
    ChannelHandler* handler = std::exchange(channels_[i].handler, nullptr);
    if (handler != nullptr) handler->onClosed();
  }
  enter(LinkState::ended);
  for (LinkObserver* observer : observers_) observer->onEnd(*end_);
}

void PhoneLink::violation(const std::string& what) {
  if (options_.records) violations_.push_back(what);
  for (LinkObserver* observer : observers_) observer->onViolation(what);
}

}  // namespace phone
