#include "phone/SoundPlayer.h"

#include <algorithm>
#include <utility>

namespace phone {

namespace {

constexpr int blockMilliseconds = 20;
// Sound is sent so long before it is to be heard, since a gap in it is noticed and a picture that comes late
// is not.
constexpr Micros lead = 100'000;

class SoundFeed : public MediaFeed {
 public:
  explicit SoundFeed(std::unique_ptr<PcmSource> source) : source_(std::move(source)) {}

  Bytes codecConfig() override { return {}; }

  Pull next(MediaUnit* unit) override {
    PcmBlock block;
    if (!source_->next(blockMilliseconds, &block)) return Pull::end;
    *unit = {std::move(block.data), block.timestampUs, std::max<Micros>(0, block.timestampUs - lead)};
    return Pull::unit;
  }

  std::string problem() const override { return source_->problem(); }

 private:
  std::unique_ptr<PcmSource> source_;
};

}  // namespace

MediaStream::Opener soundOpener(const MediaSinkService& sink, SoundFactory make) {
  return [sink, make = std::move(make)](const std::vector<std::uint32_t>& allowed, std::uint32_t* index,
                                        LinkEnd* problem) -> std::unique_ptr<MediaFeed> {
    const std::optional<std::uint32_t> chosen = chooseAudio(sink, allowed);
    if (!chosen) {
      *problem = {false, Side::headUnit, "its Config allows no format of 16 bits that it offers",
                  "it must allow at least one"};
      return nullptr;
    }
    *index = *chosen;
    std::string error;
    const AudioConfiguration& format = sink.audio_configs(static_cast<int>(*chosen));
    auto source = make(sink.audio_type(), static_cast<int>(format.sampling_rate()),
                       static_cast<int>(format.number_of_channels()), &error);
    if (source) return std::make_unique<SoundFeed>(std::move(source));
    *problem = {false, Side::phone, error, "choose another sound"};
    return nullptr;
  };
}

void SoundPlayer::start(const ServiceDiscoveryResponse& services, const std::vector<AudioStreamType>& wanted,
                        const SoundFactory& make) {
  for (const Service* service : findAudioSinks(services)) {
    const AudioStreamType type = service->media_sink_service().audio_type();
    if (std::find(wanted.begin(), wanted.end(), type) != wanted.end()) play(*service, make);
  }
}

void SoundPlayer::play(const Service& service, const SoundFactory& make) {
  const MediaSinkService& sink = service.media_sink_service();
  const std::uint8_t channel = link_->unusedChannel();
  StreamOptions options;
  options.codec = sink.available_type();
  options.sessionId = channel;
  options.paced = paced_;
  options.clock = clock_;

  voices_.push_back(std::make_unique<Voice>());
  Voice* const voice = voices_.back().get();
  voice->type = sink.audio_type();
  voice->stream = std::make_unique<MediaStream>(link_, timers_, options, soundOpener(sink, make),
                                                [this, voice](const LinkEnd& end) {
                                                  voice->end = end;
                                                  if (!end.clean && problem_) problem_(voice->type, end);
                                                });
  if (!paced_) voice->stream->follow(0);
  voice->stream->start(channel, service.id());
}

void SoundPlayer::onPictureSent(Micros time) {
  if (paced_) return;
  for (const auto& voice : voices_) voice->stream->follow(time);
}

void SoundPlayer::stop() {
  for (const auto& voice : voices_) voice->stream->stop();
}

}  // namespace phone
