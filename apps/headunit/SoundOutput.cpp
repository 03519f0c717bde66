#include "headunit/SoundOutput.h"

#include <spdlog/spdlog.h>

#include <array>
#include <thread>

namespace headunit {
namespace {

constexpr milliseconds PERIOD(10);
constexpr std::size_t FRAMES = MIX_RATE * 10 / 1000;
// A thread that was held up longer than this does not make up for it: the sound has had its gap.
constexpr milliseconds CATCHES_UP(200);

}  // namespace

TimePoint ClockedSound::act(TimePoint now) {
  if (next_ + CATCHES_UP < now) next_ = now;
  while (next_ <= now) {
    playPeriod();
    next_ += PERIOD;
  }
  return next_;
}

void ClockedSound::playPeriod() {
  std::array<std::int16_t, FRAMES * MIX_CHANNELS> samples;
  if (!mixer_->mix(samples.data(), FRAMES) || !file_) return;
  std::string error;
  if (!file_->write(samples.data(), samples.size(), &error)) giveUp(error);
}

void ClockedSound::giveUp(const std::string& error) {
  spdlog::error("{}; the rest of the sound is left out: make room, or choose another file with --audio-out.",
                error);
  file_.reset();
  isWhole_ = false;
}

bool ClockedSound::finish() {
  std::string error;
  if (file_ && !file_->close(&error)) giveUp(error);
  file_.reset();
  return isWhole_;
}

ClockedOutput::ClockedOutput(Mixer* mixer, std::unique_ptr<WavWriter> file)
    : mixer_(mixer), sound_(mixer, std::move(file)) {
  thread_.add(&sound_);
  thread_.start();
}

void ClockedOutput::finish(milliseconds limit) {
  waitForQuiet(*mixer_, limit);
  thread_.stop();
  isWhole_ = sound_.finish();
}

void waitForQuiet(const Mixer& mixer, milliseconds limit) {
  const TimePoint deadline = Clock::now() + limit;
  while (!mixer.isQuiet() && Clock::now() < deadline) std::this_thread::sleep_for(PERIOD);
}

}  // namespace headunit
