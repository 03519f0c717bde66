// Streams to the car: the picture's sink, and every sink of sound.
#include "phone/verify/MediaExchange.h"

namespace phone::verify {

namespace {

Service video(Probe& probe) { return probe.find(isVideo, "a picture"); }

std::vector<Service> sounds(Probe& probe) {
  std::vector<Service> found;
  for (const Service& service : probe.services()) {
    if (isAudio(service)) found.push_back(service);
  }
  if (found.empty()) throw NotOffered{"sound"};
  return found;
}

void expectGoodConfig(const Config& config, int offered) {
  Probe::expect(config.status() == Config_Status_STATUS_READY, "Config with status READY",
                "status " + std::to_string(config.status()));
  Probe::expect(config.has_max_unacked() && config.max_unacked() > 0, "max_unacked above 0",
                std::to_string(config.max_unacked()));
  for (const std::uint32_t index : config.configuration_indices()) {
    Probe::expect(index < static_cast<std::uint32_t>(offered),
                  "indices below " + std::to_string(offered) + ", the number of configurations offered",
                  std::to_string(index));
  }
  Probe::expect(config.configuration_indices_size() > 0, "at least one configuration to choose", "none");
}

// ---- The picture ----

void configuresVideo(Probe& probe) {
  const Service service = video(probe);
  const std::uint8_t channel = probe.open(service);
  expectGoodConfig(setUp(probe, channel, service), service.media_sink_service().video_configs_size());
  probe.close(channel);
}

void configuresBeforeFocus(Probe& probe) {
  const Service service = video(probe);
  const std::uint8_t channel = probe.open(service);
  setUp(probe, channel, service);
  probe.settle();
  bool configured = false;
  for (const Message& message : probe.link().received(channel)) {
    configured = configured || message.type() == MESSAGE_CONFIG;
    Probe::expect(configured || message.type() != MESSAGE_VIDEO_FOCUS_NOTIFICATION,
                  "Config ahead of VideoFocusNotification", "the other order");
  }
  probe.close(channel);
}

void answersEachSetup(Probe& probe) {
  const Service service = video(probe);
  const std::uint8_t channel = probe.open(service);
  const Config first = setUp(probe, channel, service);
  const Config second = setUp(probe, channel, service);
  Probe::expect(first.SerializeAsString() == second.SerializeAsString(), "the same Config to a second Setup",
                "another");
  probe.close(channel);
}

void ignoresOtherCodecs(Probe& probe) {
  const std::uint8_t channel = probe.open(video(probe));
  for (const int codec : {MEDIA_CODEC_1, MEDIA_CODEC_2, MEDIA_CODEC_4}) {
    probe.expectSilence(channel, setupMessage(codec), "a video Setup of codec " + std::to_string(codec));
  }
  probe.close(channel);
}

void acknowledgesPictures(Probe& probe) {
  const Service service = video(probe);
  const std::uint8_t channel = probe.open(service);
  const Config config = setUp(probe, channel, service);
  const std::uint32_t index = config.configuration_indices_size() > 0 ? config.configuration_indices(0) : 0;
  for (const int session : {7, 8}) {
    const Pictures made = pictures(service.media_sink_service(), index, 6);
    probe.expectTaken(channel, startMessage(session, index), "Start");
    probe.link().send(channel, MESSAGE_CODEC_CONFIG, made.codecConfig);
    expectAcknowledged(probe, channel, config, session, made.units);
    probe.expectTaken(channel, messageBytes(MESSAGE_STOP), "Stop");
  }
  probe.close(channel);
}

void answersVideoFocus(Probe& probe) {
  const Service service = video(probe);
  const std::uint8_t channel = probe.open(service);
  setUp(probe, channel, service);
  probe.settle();
  for (const VideoFocusMode mode : {VIDEO_FOCUS_MODE_2, VIDEO_FOCUS_MODE_1}) {
    const std::size_t before = probe.count(channel, MESSAGE_VIDEO_FOCUS_NOTIFICATION);
    VideoFocusRequestNotification request;
    request.set_mode(mode);
    probe.link().send(channel, MESSAGE_VIDEO_FOCUS_REQUEST_NOTIFICATION, request);
    const auto more = [&] { return probe.count(channel, MESSAGE_VIDEO_FOCUS_NOTIFICATION) > before; };
    Probe::expect(probe.runUntil(more), "a VideoFocusNotification in answer to mode " + std::to_string(mode),
                  probe.cameOn(channel));
  }
  for (const Message& message : probe.link().received(channel)) {
    if (message.type() != MESSAGE_VIDEO_FOCUS_NOTIFICATION) continue;
    const auto focus = message.as<VideoFocusNotification>();
    Probe::expect(focus && focus->has_focus() && focus->has_unsolicited(), "focus and unsolicited told",
                  "one of them is absent");
  }
  probe.close(channel);
}

void expectSinkRefusals(Probe& probe, std::uint8_t channel) {
  probe.expectRefused(channel, messageBytes(MESSAGE_SETUP), "a Setup without a codec");
  probe.expectRefused(channel, messageBytes(MESSAGE_START, Bytes{0x08, 0x01}),
                      "a Start without a configuration");
  for (const std::uint16_t type : std::initializer_list<std::uint16_t>{
           2, 0x7fff, MESSAGE_CONFIG, MESSAGE_ACK, MESSAGE_MICROPHONE_REQUEST,
           MESSAGE_VIDEO_FOCUS_NOTIFICATION, 0x8009}) {
    probe.expectRefused(channel, messageBytes(type), "type " + hex(type) + " on a sink's channel");
  }
}

void refusesOnVideo(Probe& probe) {
  const std::uint8_t channel = probe.open(video(probe));
  expectSinkRefusals(probe, channel);
  probe.close(channel);
}

void survivesShortData(Probe& probe) {
  const std::uint8_t channel = probe.open(video(probe));
  probe.link().send(channel, MESSAGE_MEDIA_DATA, Bytes(5, 0));
  probe.link().send(channel, MESSAGE_MEDIA_DATA, Bytes());
  probe.expectAlive();
  probe.close(channel);
}

void takesStopWithoutStart(Probe& probe) {
  const std::uint8_t channel = probe.open(video(probe));
  for (int i = 0; i < 2; ++i)
    probe.expectTaken(channel, messageBytes(MESSAGE_STOP), "a Stop without a Start");
  probe.close(channel);
}

// ---- Sound ----

void configuresAudio(Probe& probe) {
  for (const Service& service : sounds(probe)) {
    const std::uint8_t channel = probe.open(service);
    expectGoodConfig(setUp(probe, channel, service), service.media_sink_service().audio_configs_size());
    probe.close(channel);
  }
}

void acknowledgesSound(Probe& probe) {
  for (const Service& service : sounds(probe)) {
    const std::uint8_t channel = probe.open(service);
    const Config config = setUp(probe, channel, service);
    const std::uint32_t index = config.configuration_indices_size() > 0 ? config.configuration_indices(0) : 0;
    const auto& formats = service.media_sink_service().audio_configs();
    Probe::expect(static_cast<int>(index) < formats.size(), "a configuration that is offered",
                  std::to_string(index));
    const int session = 100 + service.id();
    probe.expectTaken(channel, startMessage(session, index), "Start");
    expectAcknowledged(probe, channel, config, session, sound(formats.Get(static_cast<int>(index)), 8));
    probe.expectTaken(channel, messageBytes(MESSAGE_STOP), "Stop");
    probe.close(channel);
  }
}

void refusesFocusOnSound(Probe& probe) {
  for (const Service& service : sounds(probe)) {
    const std::uint8_t channel = probe.open(service);
    probe.expectRefused(channel, messageBytes(MESSAGE_VIDEO_FOCUS_REQUEST_NOTIFICATION),
                        "a video focus request on a channel of sound");
    probe.close(channel);
  }
}

void refusesOnSound(Probe& probe) {
  const std::uint8_t channel = probe.open(sounds(probe).front());
  expectSinkRefusals(probe, channel);
  probe.close(channel);
}

}  // namespace

Checks videoChecks() {
  return {
      {"video.config", "Setup is answered by a READY Config with a limit and indices that exist.",
       configuresVideo},
      {"video.config-first", "Config comes ahead of any VideoFocusNotification.", configuresBeforeFocus},
      {"video.setup-again", "A second Setup is answered like the first.", answersEachSetup},
      {"video.other-codec", "Setup of another codec than video gets no answer.", ignoresOtherCodecs},
      {"video.acks", "Each picture is acknowledged once, in its session, also in a second session.",
       acknowledgesPictures},
      {"video.focus", "Video focus requests are answered, with both fields told.", answersVideoFocus},
      {"video.stop", "Stop without Start is taken in silence.", takesStopWithoutStart},
      {"video.refused", "Damaged and unknown messages on the picture's channel are refused.", refusesOnVideo},
      {"video.short-data", "Media data too short for its timestamp does not end the link.",
       survivesShortData},
  };
}

Checks audioChecks() {
  return {
      {"audio.config", "Each sink answers Setup with a READY Config.", configuresAudio},
      {"audio.acks", "Each block of sound is acknowledged once, in its session, on each sink.",
       acknowledgesSound},
      {"audio.no-focus", "A sink of sound refuses video focus requests.", refusesFocusOnSound},
      {"audio.refused", "Damaged and unknown messages on a channel of sound are refused.", refusesOnSound},
  };
}

}  // namespace phone::verify
