// Fragments, flags and what ends a link for good.
#include "phone/verify/Probe.h"

namespace phone::verify {

namespace {

constexpr std::int64_t mark = 0x11223344556677;

// A PingRequest that a field which nobody knows brings to any size.
Bytes paddedPing(std::int64_t timestamp, std::size_t padding) {
  PingRequest request;
  request.set_timestamp(timestamp);
  Bytes message = messageBytes(MESSAGE_PING_REQUEST, request);
  Bytes field = {0x7a};  // Field 15, length-delimited.
  for (std::size_t rest = padding;; rest >>= 7) {
    field.push_back(static_cast<std::uint8_t>((rest & 0x7f) | (rest > 0x7f ? 0x80 : 0)));
    if (rest <= 0x7f) break;
  }
  append(&message, field);
  message.insert(message.end(), padding, 0x55);
  return message;
}

void expectEcho(Probe& probe, std::int64_t timestamp) {
  const auto answer = probe.await<PingResponse>(0, MESSAGE_PING_RESPONSE, "a PingResponse");
  Probe::expect(answer.timestamp() == timestamp, "timestamp " + std::to_string(timestamp),
                std::to_string(answer.timestamp()));
}

void joinsFragments(Probe& probe) {
  PhoneLink& link = probe.link();
  for (const std::size_t fragment : {std::size_t{1}, std::size_t{3}, std::size_t{7}}) {
    link.sendMessage(0, paddedPing(mark, 9), flagEncrypted, fragment);
    expectEcho(probe, mark);
  }
}

void takesLongMessages(Probe& probe) {
  PhoneLink& link = probe.link();
  for (const std::size_t padding : {maxFragment - 30, maxFragment, 2 * maxFragment, std::size_t{100'000}}) {
    link.sendMessage(0, paddedPing(mark, padding));
    expectEcho(probe, mark);
  }
}

void keepsChannelsApart(Probe& probe) {
  const Service service = probe.services().front();
  const std::uint8_t channel = probe.channelOf(service);
  PhoneLink& link = probe.link();
  const auto ping = cutMessage(0, paddedPing(mark, 20), flagEncrypted, 8);
  const auto other = cutMessage(channel, messageBytes(0x7abc, Bytes(30, 1)), flagEncrypted, 8);
  for (std::size_t i = 0; i < std::max(ping.size(), other.size()); ++i) {
    if (i < ping.size()) link.sendFrame(ping[i]);
    if (i < other.size()) link.sendFrame(other[i]);
  }
  expectEcho(probe, mark);
  if (service.has_vendor_extension_service()) return;
  probe.await(channel, MESSAGE_UNEXPECTED_MESSAGE,
              "the refusal of a message that came between another's fragments");
}

void takesPlainFramesOnChannel0(Probe& probe) {
  PingRequest request;
  request.set_timestamp(mark);
  probe.link().send(0, MESSAGE_PING_REQUEST, request, 0);
  expectEcho(probe, mark);
}

void keepsItsOwnRules(Probe& probe) {
  probe.link();
  probe.settle();
  std::vector<std::string> broken = probe.violations();
  const auto& last = probe.link().violations();
  broken.insert(broken.end(), last.begin(), last.end());
  Probe::expect(
      broken.empty(), "frames that keep every rule, on every link so far",
      broken.empty() ? "" : std::to_string(broken.size()) + " times otherwise; first: " + broken.front());
}

// What a link must no longer do after its stream was broken.
void expectDeadAfter(Probe& probe, const Frame& frame) {
  PhoneLink& link = probe.link();
  link.sendFrame(frame);
  link.sendPing(mark);
  probe.runUntil([&] { return link.end() || probe.count(0, MESSAGE_PING_RESPONSE) > 0; }, 300'000);
  Probe::expect(probe.count(0, MESSAGE_PING_RESPONSE) == 0, "no further service once the stream is broken",
                "the ping behind it was answered");
}

Frame piece(std::uint8_t channel, std::uint8_t flags, Bytes payload, std::uint32_t total = 0) {
  Frame frame;
  frame.channel = channel;
  frame.flags = flags;
  frame.totalLength = total;
  frame.payload = std::move(payload);
  return frame;
}

void endsAtStrayMiddle(Probe& probe) {
  probe.freshUpLink();
  expectDeadAfter(probe, piece(0, flagEncrypted, {1, 2, 3}));
}

void endsAtStrayLast(Probe& probe) {
  probe.freshUpLink();
  expectDeadAfter(probe, piece(0, flagEncrypted | flagLast, {1, 2, 3}));
}

void endsAtSecondFirst(Probe& probe) {
  PhoneLink& link = probe.freshUpLink();
  link.sendFrame(piece(0, flagEncrypted | flagFirst, {0, MESSAGE_PING_REQUEST}, 10));
  expectDeadAfter(probe, piece(0, flagEncrypted | flagFirst, {0, MESSAGE_PING_REQUEST}, 10));
}

void endsAtTooMuch(Probe& probe) {
  PhoneLink& link = probe.freshUpLink();
  link.sendFrame(piece(0, flagEncrypted | flagFirst, {0, MESSAGE_PING_REQUEST}, 4));
  expectDeadAfter(probe, piece(0, flagEncrypted | flagLast, {8, 1, 8, 1, 8, 1}));
}

void endsAtUnknownChannel(Probe& probe) {
  probe.freshUpLink();
  expectDeadAfter(probe, piece(201, flagEncrypted | flagFirst | flagLast, {0x80, 1}));
}

void endsAtPlainServiceFrame(Probe& probe) {
  probe.freshUpLink();
  const std::uint8_t channel = probe.open(probe.services().front());
  expectDeadAfter(probe, piece(channel, flagFirst | flagLast, {0x80, 1}));
}

void endsAtDamagedRecord(Probe& probe) {
  PhoneLink& link = probe.freshUpLink();
  Bytes records = link.encrypt(messageBytes(MESSAGE_PING_RESPONSE));
  records.back() ^= 1;
  link.sendFrameAsIs(piece(0, flagEncrypted | flagFirst | flagLast, records));
  link.sendPing(mark);
  probe.runUntil([&] { return link.end() || probe.count(0, MESSAGE_PING_RESPONSE) > 0; }, 300'000);
  Probe::expect(probe.count(0, MESSAGE_PING_RESPONSE) == 0, "no further service after a damaged TLS record",
                "the ping behind it was answered");
}

void passesOverPieceOfControl(Probe& probe) {
  PhoneLink& link = probe.link();
  link.sendFrame(piece(0, flagEncrypted | flagControl | flagFirst, {0, 7, 0}, 20));
  probe.expectAlive();
}

}  // namespace

Checks frameChecks() {
  return {
      {"frames.joined", "A message cut into tiny fragments is understood.", joinsFragments},
      {"frames.long", "Messages of one, two and many full frames are understood.", takesLongMessages},
      {"frames.interleaved", "Fragments of two channels may take turns.", keepsChannelsApart},
      {"frames.plain-control", "Channel 0 takes plain frames also after the handshake.",
       takesPlainFramesOnChannel0},
      {"frames.control-piece", "A control frame that is only a piece is passed over, and the link lives.",
       passesOverPieceOfControl},
      {"frames.rules", "The head unit's own frames keep the rules: flags, sizes, order, encryption.",
       keepsItsOwnRules},
      {"framing.stray-middle", "A middle fragment without a first ends the link.", endsAtStrayMiddle},
      {"framing.stray-last", "A last fragment without a first ends the link.", endsAtStrayLast},
      {"framing.second-first", "A first fragment inside a message ends the link.", endsAtSecondFirst},
      {"framing.too-much", "Fragments that add up to more than announced end the link.", endsAtTooMuch},
      {"framing.unknown-channel", "A frame on a channel that was never opened ends the link.",
       endsAtUnknownChannel},
      {"framing.plain-service", "A plain frame on a service's channel ends the link.",
       endsAtPlainServiceFrame},
      {"framing.damaged-record", "A damaged TLS record ends the link.", endsAtDamagedRecord},
  };
}

}  // namespace phone::verify
