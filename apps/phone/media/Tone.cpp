#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "phone/media/PcmClock.h"
#include "phone/media/PcmSource.h"

namespace phone {
namespace {

constexpr double TURN = 6.283185307179586;

struct Note {
  double pitch;  // in hertz; 0 for a rest
  int milliseconds;
};

// No pitch stands in two melodies, nor an octave of it.
std::vector<Note> melodyOf(Tone tone) {
  switch (tone) {
    case Tone::Media:
      return {{261.63, 400}, {329.63, 400}, {392.00, 400}, {523.25, 400},
              {493.88, 400}, {392.00, 400}, {329.63, 400}, {392.00, 400}};
    case Tone::Guidance: return {{698.46, 250}, {880.00, 350}, {0, 600}};
    case Tone::System: return {{1174.66, 120}, {0, 380}};
    case Tone::Telephony: return {{466.16, 200}, {554.37, 200}, {466.16, 200}, {554.37, 200}, {0, 800}};
  }
  return {};
}

// A plucked string: a quick start, a slow decay, a few overtones; silent at both ends so that nothing clicks.
double pluck(double pitch, double time, double length) {
  const double phase = TURN * pitch * time;
  const double wave = std::sin(phase) + 0.35 * std::sin(2 * phase) + 0.12 * std::sin(3 * phase);
  const double swell = std::min({1.0, time / 0.008, (length - time) / 0.03});
  return 0.3 * wave * swell * std::exp(-2.2 * time);
}

class ToneSource final : public PcmSource {
 public:
  ToneSource(Tone tone, int sampleRate, int channels, std::int64_t milliseconds)
      : melody_(melodyOf(tone)),
        clock_(sampleRate),
        sampleRate_(sampleRate),
        channels_(channels),
        end_(milliseconds * sampleRate / 1000) {}

  int sampleRate() const override { return sampleRate_; }
  int channels() const override { return channels_; }

  bool next(int milliseconds, PcmBlock* block) override {
    std::int64_t count = clock_.startBlock(std::max(milliseconds, 1));
    if (end_ > 0) count = std::min(count, end_ - clock_.blockStart());
    if (count <= 0) return false;
    block->timestampUs = clock_.blockStartUs();
    block->data.clear();
    for (std::int64_t i = 0; i < count; ++i) appendSample(clock_.blockStart() + i, &block->data);
    return true;
  }

 private:
  std::int64_t framesOf(const Note& note) const {
    return static_cast<std::int64_t>(note.milliseconds) * sampleRate_ / 1000;
  }

  void appendSample(std::int64_t position, std::vector<std::uint8_t>* data) const {
    std::int64_t melodyLength = 0;
    for (const Note& note : melody_) melodyLength += framesOf(note);
    std::int64_t within = position % melodyLength;
    std::size_t index = 0;
    while (within >= framesOf(melody_[index])) within -= framesOf(melody_[index++]);

    const Note& note = melody_[index];
    const double value = note.pitch > 0 ? pluck(note.pitch, static_cast<double>(within) / sampleRate_,
                                                note.milliseconds / 1000.0)
                                        : 0.0;
    for (int channel = 0; channel < channels_; ++channel) {
      // The notes wander from one side to the other, so that swapped channels are noticed.
      const double side = (index + static_cast<std::size_t>(channel)) % 2 == 0 ? 1.0 : 0.6;
      const auto sample = static_cast<std::uint16_t>(std::lround(value * side * 32767));
      data->push_back(static_cast<std::uint8_t>(sample & 0xff));
      data->push_back(static_cast<std::uint8_t>(sample >> 8));
    }
  }

  std::vector<Note> melody_;
  PcmClock clock_;
  int sampleRate_;
  int channels_;
  std::int64_t end_;
};

}  // namespace

std::unique_ptr<PcmSource> makeTone(Tone tone, int sampleRate, int channels, std::int64_t milliseconds) {
  return std::make_unique<ToneSource>(tone, sampleRate, channels, milliseconds);
}

std::vector<double> tonePitches(Tone tone) {
  std::vector<double> pitches;
  for (const Note& note : melodyOf(tone)) {
    if (note.pitch > 0) pitches.push_back(note.pitch);
  }
  std::sort(pitches.begin(), pitches.end());
  pitches.erase(std::unique(pitches.begin(), pitches.end()), pitches.end());
  return pitches;
}

}  // namespace phone
