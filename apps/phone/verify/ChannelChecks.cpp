// The life of channels.
#include "phone/verify/Probe.h"

namespace phone::verify {

namespace {

constexpr std::uint8_t controlFlags = flagControl | flagEncrypted;

ChannelOpenRequest request(int serviceId, int priority = 0) {
  ChannelOpenRequest record;
  record.set_priority(priority);
  record.set_service_id(serviceId);
  return record;
}

Service any(Probe& probe) { return probe.services().back(); }

Service talking(Probe& probe) {
  return probe.find([](const Service& one) { return !one.has_vendor_extension_service(); },
                    "a service that refuses messages");
}

// Sends an open request that must get no answer.
void expectNoAnswer(Probe& probe, std::uint8_t channel, const Bytes& body, const std::string& what) {
  PhoneLink& link = probe.link();
  link.send(channel, MESSAGE_CHANNEL_OPEN_REQUEST, body, controlFlags);
  probe.settle();
  Probe::expect(probe.count(channel, MESSAGE_CHANNEL_OPEN_RESPONSE) == 0, "no answer at all to " + what,
                probe.cameOn(channel));
  probe.expectAlive();
}

Bytes bodyOf(const ChannelOpenRequest& record) {
  const Bytes message = messageBytes(0, record);
  return Bytes(message.begin() + 2, message.end());
}

int awaitStatus(Probe& probe, std::uint8_t channel, const std::string& what) {
  return probe.await<ChannelOpenResponse>(channel, MESSAGE_CHANNEL_OPEN_RESPONSE, what).status();
}

void opens(Probe& probe) {
  const Service service = any(probe);
  const std::uint8_t channel = probe.open(service);
  const Message answer = probe.await(channel, MESSAGE_CHANNEL_OPEN_RESPONSE, "a ChannelOpenResponse");
  Probe::expect(answer.control, "the answer in a control frame", "an ordinary one");
  Probe::expect(answer.encrypted, "the answer encrypted", "in the clear");
  Probe::expect(answer.as<ChannelOpenResponse>()->status() == STATUS_SUCCESS, "status 0", "another");
  probe.close(channel);
}

void opensAll(Probe& probe) {
  probe.freshUpLink();
  for (const Service& service : std::vector<Service>(probe.services())) probe.channelOf(service);
  probe.expectAlive();
}

void refusesTakenChannel(Probe& probe) {
  const Service service = any(probe);
  const std::uint8_t channel = probe.open(service);
  probe.await(channel, MESSAGE_CHANNEL_OPEN_RESPONSE, "a ChannelOpenResponse");
  probe.link().openChannel(channel, service.id());
  const int status = awaitStatus(probe, channel, "an answer to a second open of the same channel");
  Probe::expect(status == STATUS_INVALID_CHANNEL, "status -5", std::to_string(status));
  probe.close(channel);
}

void refusesChannel0(Probe& probe) {
  probe.link().send(0, MESSAGE_CHANNEL_OPEN_REQUEST, request(any(probe).id()), controlFlags);
  const int status = awaitStatus(probe, 0, "an answer to an open of channel 0");
  Probe::expect(status == STATUS_INVALID_CHANNEL, "status -5", std::to_string(status));
}

void keepsOneChannelPerService(Probe& probe) {
  const Service service = any(probe);
  const std::uint8_t first = probe.open(service);
  expectNoAnswer(probe, 250, bodyOf(request(service.id())), "a second channel to one service");
  probe.close(first);
}

void ignoresUnknownServices(Probe& probe) {
  int unknown = 0;
  for (const Service& service : probe.services()) unknown = std::max(unknown, service.id() + 1);
  expectNoAnswer(probe, 250, bodyOf(request(unknown)), "an open of a service that is not offered");
  expectNoAnswer(probe, 251, bodyOf(request(255)), "an open of service 255");
  expectNoAnswer(probe, 252, bodyOf(request(511)), "an open of service 511");
}

void ignoresDamagedRequest(Probe& probe) {
  expectNoAnswer(probe, 250, Bytes{0x08, 0x02}, "a ChannelOpenRequest without a service_id");
  expectNoAnswer(probe, 250, Bytes{0x08}, "a ChannelOpenRequest cut short");
}

void takesLowByteOfService(Probe& probe) {
  const Service service = any(probe);
  const std::uint8_t channel = probe.link().unusedChannel();
  probe.link().openChannel(channel, service.id() + 256);
  const int status = awaitStatus(probe, channel, "an answer to an open of service id + 256");
  Probe::expect(status == STATUS_SUCCESS, "status 0", std::to_string(status));
  probe.close(channel);
}

void takesAnyPriority(Probe& probe) {
  const Service service = any(probe);
  for (const int priority : {-128, -1, 127, 300}) {
    const std::uint8_t channel = probe.link().unusedChannel();
    probe.link().openChannel(channel, service.id(), nullptr, priority);
    const int status = awaitStatus(probe, channel, "an answer to priority " + std::to_string(priority));
    Probe::expect(status == STATUS_SUCCESS, "status 0", std::to_string(status));
    probe.close(channel);
  }
}

void reopens(Probe& probe) {
  const Service service = any(probe);
  const std::uint8_t channel = probe.open(service);
  probe.await(channel, MESSAGE_CHANNEL_OPEN_RESPONSE, "a ChannelOpenResponse");
  probe.close(channel);
  probe.link().openChannel(channel, service.id());
  const int status = awaitStatus(probe, channel, "an answer to an open after a close");
  Probe::expect(status == STATUS_SUCCESS, "status 0", std::to_string(status));
  probe.close(channel);
}

void servesHighestChannel(Probe& probe) {
  const Service service = talking(probe);
  probe.freshUpLink();
  probe.link().openChannel(255, service.id());
  const int status = awaitStatus(probe, 255, "an answer on channel 255");
  Probe::expect(status == STATUS_SUCCESS, "status 0", std::to_string(status));
  probe.expectRefused(255, messageBytes(0x7abc), "an unknown message on channel 255");
  probe.close(255);
}

void refusesUnknownControlFrames(Probe& probe) {
  const std::uint8_t channel = probe.open(any(probe));
  probe.link().send(channel, 0x7abc, Bytes(), controlFlags);
  const Message answer =
      probe.await(channel, MESSAGE_UNEXPECTED_MESSAGE, "the refusal of a control frame of unknown type");
  Probe::expect(!answer.control, "the refusal in an ordinary frame", "a control frame");
  probe.close(channel);
}

void closesInSilence(Probe& probe) {
  const std::uint8_t channel = probe.open(any(probe));
  probe.await(channel, MESSAGE_CHANNEL_OPEN_RESPONSE, "a ChannelOpenResponse");
  probe.settle();
  probe.close(channel);
  probe.settle();
  Probe::expect(probe.count(channel, MESSAGE_CHANNEL_CLOSE_NOTIFICATION) == 0, "a close taken in silence",
                probe.cameOn(channel));
  probe.expectAlive();
}

}  // namespace

Checks channelChecks() {
  return {
      {"channel.open", "An open request is answered on its channel, in an encrypted control frame.", opens},
      {"channel.open-all", "Every service that discovery lists opens, all at once.", opensAll},
      {"channel.taken", "A channel in use is refused with status -5.", refusesTakenChannel},
      {"channel.zero", "Channel 0 is in use from the start, and refused likewise.", refusesChannel0},
      {"channel.one-per-service", "A second channel to one service gets no answer.",
       keepsOneChannelPerService},
      {"channel.no-such-service", "A service that is not offered gets no answer.", ignoresUnknownServices},
      {"channel.damaged-open", "An open request that does not parse gets no answer, and the link lives.",
       ignoresDamagedRequest},
      {"channel.low-byte", "Only the low eight bits of a service id count.", takesLowByteOfService},
      {"channel.priority", "Any priority is taken, also one beyond eight bits.", takesAnyPriority},
      {"channel.close", "A close is taken in silence.", closesInSilence},
      {"channel.reopen", "A closed channel opens again, on the same number.", reopens},
      {"channel.255", "The highest channel number works like any other.", servesHighestChannel},
      {"channel.unknown-control", "A control frame of unknown type is refused, in an ordinary frame.",
       refusesUnknownControlFrames},
  };
}

}  // namespace phone::verify
