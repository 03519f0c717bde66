#ifndef PHONE_VERIFY_MEDIAEXCHANGE_H
#define PHONE_VERIFY_MEDIAEXCHANGE_H

#include "phone/verify/Probe.h"

namespace phone::verify {

bool isVideo(const Service& service);
bool isAudio(const Service& service);

/// One unit of a stream, as it goes into one message.
struct Unit {
  Bytes data;
  std::uint64_t timestamp = 0;
};

/// A media data message around a unit.
Bytes mediaMessage(const Unit& unit);
/// The body of a Setup, Start or Ack.
Bytes setupMessage(int codec);
Bytes startMessage(int session, std::uint32_t configuration);

/// Sends Setup for the service's own codec, waits for the Config.
Config setUp(Probe& probe, std::uint8_t channel, const Service& service);

/// Sends `units` within what `config` allows, and waits until all of them are acknowledged, each once and in
/// `session`.
void expectAcknowledged(Probe& probe, std::uint8_t channel, const Config& config, int session,
                        const std::vector<Unit>& units);

/// A few pictures, the codec's configuration first, in the size that configuration `index` tells.
struct Pictures {
  Bytes codecConfig;
  std::vector<Unit> units;
};
Pictures pictures(const MediaSinkService& sink, std::uint32_t index, int count);

/// A few blocks of 20 ms of a quiet tone.
std::vector<Unit> sound(const AudioConfiguration& format, int count);

}  // namespace phone::verify

#endif
