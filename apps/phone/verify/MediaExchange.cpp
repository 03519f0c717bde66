#include "phone/verify/MediaExchange.h"

#include <cmath>

#include "phone/Discovery.h"
#include "phone/media/VideoSource.h"

namespace phone::verify {

bool isVideo(const Service& service) { return service.media_sink_service().video_configs_size() > 0; }
bool isAudio(const Service& service) { return service.has_media_sink_service() && !isVideo(service); }

Bytes mediaMessage(const Unit& unit) {
  Bytes body;
  appendBigEndian(&body, unit.timestamp);
  append(&body, unit.data);
  return messageBytes(MESSAGE_MEDIA_DATA, body);
}

Bytes setupMessage(int codec) {
  Setup setup;
  setup.set_type(static_cast<MediaCodecType>(codec));
  return messageBytes(MESSAGE_SETUP, setup);
}

Bytes startMessage(int session, std::uint32_t configuration) {
  Start start;
  start.set_session_id(session);
  start.set_configuration_index(configuration);
  return messageBytes(MESSAGE_START, start);
}

Config setUp(Probe& probe, std::uint8_t channel, const Service& service) {
  const int codec = isVideo(service) ? MEDIA_CODEC_VIDEO : service.media_sink_service().available_type();
  probe.link().sendMessage(channel, setupMessage(codec));
  return probe.await<Config>(channel, MESSAGE_CONFIG, "a Config in answer to Setup");
}

namespace {

std::uint32_t takeAcks(Probe& probe, std::uint8_t channel, int session, Micros limit) {
  std::uint32_t total = 0;
  while (const auto message = probe.awaitMaybe(channel, MESSAGE_ACK, total == 0 ? limit : 0)) {
    const auto ack = message->as<Ack>();
    Probe::expect(ack.has_value(), "an Ack that parses", "one that does not");
    Probe::expect(ack->session_id() == session, "Acks of session " + std::to_string(session),
                  "one of session " + std::to_string(ack->session_id()));
    Probe::expect(ack->has_ack() && ack->ack() > 0, "Acks that count something", "one that counts nothing");
    total += ack->ack();
  }
  return total;
}

}  // namespace

void expectAcknowledged(Probe& probe, std::uint8_t channel, const Config& config, int session,
                        const std::vector<Unit>& units) {
  const std::uint32_t allowed = std::max(config.max_unacked(), 1U);
  std::uint32_t sent = 0;
  std::uint32_t acknowledged = 0;
  const auto all = static_cast<std::uint32_t>(units.size());
  while (acknowledged < all) {
    while (sent < all && sent - acknowledged < allowed)
      probe.link().sendMessage(channel, mediaMessage(units[sent++]));
    const std::uint32_t more = takeAcks(probe, channel, session, patience);
    Probe::expect(more > 0, "all " + std::to_string(sent) + " units acknowledged",
                  std::to_string(acknowledged) + " of them within 1.5 s");
    acknowledged += more;
    Probe::expect(acknowledged <= sent, "Acks for what was sent, " + std::to_string(sent) + " units",
                  "Acks for " + std::to_string(acknowledged));
  }
  probe.settle();
  const std::uint32_t late = takeAcks(probe, channel, session, 0);
  Probe::expect(late == 0, "each unit acknowledged once", std::to_string(late) + " Acks too many");
}

Pictures pictures(const MediaSinkService& sink, std::uint32_t index, int count) {
  const PictureSize size = sizeOf(sink.video_configs(static_cast<int>(index)).codec_resolution());
  VideoOptions options;
  options.width = size.width;
  options.height = size.height;
  options.frames = count;
  std::string error;
  const auto source = makeTestPicture(options, &error);
  Probe::expect(source != nullptr, "a picture to send", error);
  Pictures made;
  made.codecConfig = source->codecConfig();
  AccessUnit unit;
  while (source->next(&unit)) {
    made.units.push_back({unit.data, static_cast<std::uint64_t>(unit.timestampUs)});
  }
  return made;
}

std::vector<Unit> sound(const AudioConfiguration& format, int count) {
  const std::size_t frames = format.sampling_rate() / 50;
  std::vector<Unit> units;
  for (int i = 0; i < count; ++i) {
    Unit unit;
    unit.timestamp = static_cast<std::uint64_t>(i) * 20'000;
    for (std::size_t frame = 0; frame < frames * format.number_of_channels(); ++frame) {
      const double phase = static_cast<double>(frame / format.number_of_channels()) * 880.0 * 6.283 /
                           static_cast<double>(format.sampling_rate());
      const auto sample = static_cast<std::uint16_t>(static_cast<std::int16_t>(1000.0 * std::sin(phase)));
      unit.data.push_back(static_cast<std::uint8_t>(sample));
      if (format.number_of_bits() > 8) unit.data.push_back(static_cast<std::uint8_t>(sample / 256));
    }
    units.push_back(std::move(unit));
  }
  return units;
}

}  // namespace phone::verify
