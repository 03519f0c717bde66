#include "phone/program/Sound.h"

#include <spdlog/spdlog.h>

#include <algorithm>

#include "phone/media/Wav.h"

namespace phone {

namespace {

Tone toneOf(AudioStreamType type) {
  switch (type) {
    case AUDIO_STREAM_GUIDANCE: return Tone::Guidance;
    case AUDIO_STREAM_SYSTEM_AUDIO: return Tone::System;
    case AUDIO_STREAM_TELEPHONY: return Tone::Telephony;
    case AUDIO_STREAM_MEDIA: break;
  }
  return Tone::Media;
}

}  // namespace

SoundFactory soundFactory(const Options& options) {
  return [file = options.audio, loop = options.loop](AudioStreamType type, int sampleRate, int channels,
                                                     std::string* error) {
    if (type != AUDIO_STREAM_MEDIA || file.empty()) return makeTone(toneOf(type), sampleRate, channels);
    return openAudioFile(file, sampleRate, channels, loop, error);
  };
}

bool prepareMicrophoneFile(const Options& options, std::string* error) {
  return options.microphone.empty() || WavWriter::create(options.microphone, 16000, 1, error) != nullptr;
}

PcmSinkFactory microphoneFile(const Options& options) {
  if (options.microphone.empty()) return nullptr;
  return [path = options.microphone](int sampleRate, int channels, std::string* error) -> PcmSink {
    const std::shared_ptr<WavWriter> writer = WavWriter::create(path, sampleRate, channels, error);
    if (!writer) return nullptr;
    return
        [writer](const std::uint8_t* samples, std::size_t length) { return writer->write(samples, length); };
  };
}

// A file that cannot be heard is told before there is a link. Of a video only the picture is a must.
bool settleSound(Options* options, std::string* error) {
  const auto media = std::find(options->sounds.begin(), options->sounds.end(), AUDIO_STREAM_MEDIA);
  const bool isOwn = options->audio.empty();
  if (isOwn) options->audio = options->video;
  if (media == options->sounds.end() || options->audio.empty()) return true;
  if (openAudioFile(options->audio, 48000, 2, options->loop, error)) return true;
  if (!isOwn) return false;
  spdlog::info("{} The picture is played without it.", *error);
  options->sounds.erase(media);
  return true;
}

}  // namespace phone
