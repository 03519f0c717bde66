// usage: sound_check HEARD.wav tone|SENT.wav SECONDS
// HEARD begins with at least SECONDS of what was sent, sample by sample: SENT, or the phone's tone for its
// media stream. Where sound came late there may be silence in between, but nothing may be missing or changed.
// Prints how many seconds are the same.
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "phone/media/PcmSource.h"
#include "phone/media/Wav.h"

namespace {

using phone::WavAudio;

WavAudio makeMediaTone(const WavAudio& like) {
  WavAudio tone{like.sampleRate, like.channels, {}};
  const auto source = phone::makeTone(phone::Tone::Media, like.sampleRate, like.channels);
  phone::PcmBlock block;
  while (tone.samples.size() < like.samples.size() && source->next(1000, &block)) {
    for (std::size_t i = 0; i + 1 < block.data.size(); i += 2) {
      tone.samples.push_back(static_cast<std::int16_t>(block.data[i] | block.data[i + 1] << 8));
    }
  }
  return tone;
}

// Frames of `heard` that are those of `sent` in order; nothing if another sound stands between them.
std::optional<std::size_t> matchingFrames(const WavAudio& heard, const WavAudio& sent) {
  const auto channels = static_cast<std::size_t>(heard.channels);
  const auto frameIs = [&](std::size_t frame, auto&& sampleAt) {
    for (std::size_t i = 0; i < channels; ++i) {
      if (heard.samples[frame * channels + i] != sampleAt(i)) return false;
    }
    return true;
  };
  std::size_t matching = 0;
  for (std::size_t frame = 0; (frame + 1) * channels <= heard.samples.size(); ++frame) {
    const bool isNext = (matching + 1) * channels <= sent.samples.size() &&
                        frameIs(frame, [&](std::size_t i) { return sent.samples[matching * channels + i]; });
    if (isNext) {
      ++matching;
    } else if (!frameIs(frame, [](std::size_t) { return 0; })) {
      std::fprintf(stderr, "after %zu frames that were sent, frame %zu is another sound\n", matching, frame);
      return std::nullopt;
    }
  }
  return matching;
}

int fail(const std::string& why) {
  std::fprintf(stderr, "%s\n", why.c_str());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return fail("usage: sound_check HEARD.wav tone|SENT.wav SECONDS");
  std::string error;
  const auto heard = phone::readWav(argv[1], &error);
  if (!heard) return fail(error);
  const auto sent = argv[2] == std::string("tone") ? makeMediaTone(*heard) : phone::readWav(argv[2], &error);
  if (!sent) return fail(error);
  if (sent->sampleRate != heard->sampleRate || sent->channels != heard->channels) {
    return fail("the two have different formats");
  }
  const auto matching = matchingFrames(*heard, *sent);
  if (!matching) return 1;
  const double seconds = static_cast<double>(*matching) / heard->sampleRate;
  std::printf("%.2f\n", seconds);
  return seconds >= std::atof(argv[3]) ? 0 : fail("that is too little");
}
