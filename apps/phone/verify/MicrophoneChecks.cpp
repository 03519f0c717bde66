// The one stream that comes from the car.
#include "phone/verify/MediaExchange.h"

namespace phone::verify {

namespace {

constexpr int limit = 3;

std::uint8_t openMicrophoneChannel(Probe& probe) {
  return probe.open(
      probe.find([](const Service& one) { return one.has_media_source_service(); }, "a microphone"));
}

MicrophoneResponse ask(Probe& probe, std::uint8_t channel, bool open) {
  MicrophoneRequest request;
  request.set_open(open);
  if (open) request.set_max_unacked(limit);
  probe.link().send(channel, MESSAGE_MICROPHONE_REQUEST, request);
  return probe.await<MicrophoneResponse>(channel, MESSAGE_MICROPHONE_RESPONSE, "a MicrophoneResponse");
}

void expectCoherent(const MicrophoneResponse& response) {
  Probe::expect(response.has_session_id() == (response.status() == 0), "a session exactly when status is 0",
                "status " + std::to_string(response.status()) +
                    (response.has_session_id() ? " with a session" : " without a session"));
}

int openMicrophone(Probe& probe, std::uint8_t channel) {
  const MicrophoneResponse response = ask(probe, channel, true);
  expectCoherent(response);
  if (response.status() != 0) throw NotOffered{"a microphone that is free"};
  return response.session_id();
}

void answersBoth(Probe& probe) {
  const std::uint8_t channel = openMicrophoneChannel(probe);
  expectCoherent(ask(probe, channel, true));
  expectCoherent(ask(probe, channel, false));
  probe.close(channel);
}

void sendsSound(Probe& probe) {
  const std::uint8_t channel = openMicrophoneChannel(probe);
  const int session = openMicrophone(probe, channel);
  std::uint64_t last = 0;
  for (int i = 0; i < 3 * limit; ++i) {
    const Message data =
        probe.await(channel, MESSAGE_MEDIA_DATA, "block " + std::to_string(i + 1) + " of sound");
    Probe::expect(data.bodySize() > 8, "a timestamp and sound", std::to_string(data.bodySize()) + " bytes");
    const auto timestamp = readBigEndian<std::uint64_t>(data.body());
    Probe::expect(i == 0 || timestamp > last, "timestamps that rise",
                  std::to_string(timestamp) + " after " + std::to_string(last));
    last = timestamp;
    Ack ack;
    ack.set_session_id(session);
    ack.set_ack(1);
    probe.link().send(channel, MESSAGE_ACK, ack);
  }
  ask(probe, channel, false);
  probe.close(channel);
}

void honoursTheLimit(Probe& probe) {
  const std::uint8_t channel = openMicrophoneChannel(probe);
  openMicrophone(probe, channel);
  probe.runUntil([&] { return probe.count(channel, MESSAGE_MEDIA_DATA) > limit; }, 300'000);
  const std::size_t came = probe.count(channel, MESSAGE_MEDIA_DATA);
  Probe::expect(came <= limit, "at most " + std::to_string(limit) + " blocks without an Ack",
                std::to_string(came));
  ask(probe, channel, false);
  probe.close(channel);
}

void fallsSilent(Probe& probe) {
  const std::uint8_t channel = openMicrophoneChannel(probe);
  const int session = openMicrophone(probe, channel);
  ask(probe, channel, false);
  probe.settle();
  const std::size_t before = probe.count(channel, MESSAGE_MEDIA_DATA);
  Ack ack;
  ack.set_session_id(session);
  ack.set_ack(limit);
  probe.link().send(channel, MESSAGE_ACK, ack);
  probe.runUntil([&] { return probe.count(channel, MESSAGE_MEDIA_DATA) > before; }, 150'000);
  Probe::expect(probe.count(channel, MESSAGE_MEDIA_DATA) == before, "no sound once the microphone is closed",
                "more of it");
  probe.close(channel);
}

void refusesSinkMessages(Probe& probe) {
  const std::uint8_t channel = openMicrophoneChannel(probe);
  probe.expectRefused(channel, setupMessage(MEDIA_CODEC_1), "a Setup on the microphone's channel");
  probe.expectRefused(channel, startMessage(1, 0), "a Start on the microphone's channel");
  probe.expectRefused(channel, messageBytes(MESSAGE_STOP), "a Stop on the microphone's channel");
  probe.expectRefused(channel, messageBytes(MESSAGE_MICROPHONE_REQUEST), "a MicrophoneRequest without open");
  probe.expectRefused(channel, messageBytes(MESSAGE_MICROPHONE_RESPONSE), "a MicrophoneResponse");
  probe.close(channel);
}

}  // namespace

Checks microphoneChecks() {
  return {
      {"microphone.answer", "Opening and closing are answered, with a session exactly on success.",
       answersBoth},
      {"microphone.sound", "An open microphone sends sound with rising timestamps.", sendsSound},
      {"microphone.limit", "It sends no more than the phone allows without an Ack.", honoursTheLimit},
      {"microphone.closed", "A closed microphone is silent.", fallsSilent},
      {"microphone.refused", "What only sinks understand is refused.", refusesSinkMessages},
  };
}

}  // namespace phone::verify
