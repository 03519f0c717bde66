#include "headunit/AudioStream.h"

#include <algorithm>

namespace headunit {
namespace {

constexpr microseconds ENOUGH_AT_FIRST(60'000);
constexpr microseconds ENOUGH_AT_MOST(240'000);
constexpr std::size_t LIMIT_FACTOR = 4;  // a phone that keeps to its limit stays far below this many blocks
// A few bytes can announce hours of sound, so it is not the blocks alone that count.
constexpr std::size_t MOST_SECONDS_WAITING = 5;
constexpr std::size_t SECONDS_AFTER_THE_LINK = 1;

std::int16_t sampleAt(const unsigned char* bytes) {
  return static_cast<std::int16_t>(static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8));
}

}  // namespace

AudioStream::AudioStream(std::string name, AudioFormat format, std::size_t maxUnacked,
                         Acknowledge acknowledge)
    : name_(std::move(name)),
      format_(format),
      maxUnacked_(maxUnacked),
      acknowledge_(std::move(acknowledge)),
      enough_(ENOUGH_AT_FIRST) {}

void AudioStream::start() {
  const std::lock_guard lock(mutex_);
  ending_ = false;
}

void AudioStream::receive(AudioBlock block) {
  const int session = block.session;
  {
    const std::lock_guard lock(mutex_);
    ++totals_.blocks;
    totals_.bytes += block.length;
    if (blocks_.size() < maxUnacked_ * LIMIT_FACTOR &&
        waiting_ + block.length <= bytesIn(MOST_SECONDS_WAITING)) {
      if (state_ == State::idle) state_ = State::filling;
      block.length -=
          block.length % static_cast<unsigned int>(bytesPerFrame());  // half a frame cannot be played
      waiting_ += block.length;
      blocks_.push_back(std::move(block));
      return;
    }
    ++totals_.refused;
  }
  const std::lock_guard lock(acknowledging_);
  if (acknowledge_) acknowledge_(session, 1);
}

void AudioStream::stop() {
  const std::lock_guard lock(mutex_);
  ending_ = true;
}

void AudioStream::detach() {
  {
    const std::lock_guard lock(acknowledging_);
    acknowledge_ = nullptr;
  }
  const std::lock_guard lock(mutex_);
  ending_ = true;
  detached_ = true;
  shortenTo(bytesIn(SECONDS_AFTER_THE_LINK));
}

// From the end, so that what is being played goes on.
void AudioStream::shortenTo(std::size_t bytes) {
  while (waiting_ > bytes) {
    AudioBlock& last = blocks_.back();
    const std::size_t unplayed = last.length - (blocks_.size() == 1 ? played_ : 0);
    const std::size_t cut = std::min(waiting_ - bytes, unplayed);
    last.length -= static_cast<unsigned int>(cut);
    waiting_ -= cut;
    if (cut == unplayed) blocks_.pop_back();
  }
}

bool AudioStream::addTo(std::int32_t* mix, std::size_t frames) {
  bool heard = false;
  {
    const std::lock_guard lock(mutex_);
    if (state_ == State::filling && mayBegin()) state_ = State::playing;
    if (state_ == State::playing) play(mix, frames, Clock::now());
    heard = state_ != State::idle;
  }
  if (!done_.empty()) {
    const std::lock_guard lock(acknowledging_);
    for (const int session : done_) {
      if (acknowledge_) acknowledge_(session, 1);
    }
    done_.clear();
  }
  return heard;
}

bool AudioStream::mayBegin() const {
  return ending_ || blocks_.size() >= maxUnacked_ || gathered() >= enough_;
}

microseconds AudioStream::gathered() const { return microseconds(waiting_ * 1'000'000 / bytesIn(1)); }

std::size_t AudioStream::bytesIn(std::size_t seconds) const {
  const std::size_t rate = format_ == AudioFormat::stereo48k ? MIX_RATE : MIX_RATE / Upsampler::FACTOR;
  return seconds * rate * bytesPerFrame();
}

void AudioStream::play(std::int32_t* mix, std::size_t frames, TimePoint now) {
  for (std::size_t frame = 0; frame < frames; ++frame) {
    std::int32_t left = 0;
    std::int32_t right = 0;
    if (!nextFrame(&left, &right, now)) {
      state_ = ending_ ? State::idle : State::filling;
      if (!ending_) {
        ++totals_.underruns;
        enough_ = std::min(enough_ * 3 / 2, ENOUGH_AT_MOST);
      }
      return;
    }
    mix[MIX_CHANNELS * frame] += left;
    mix[MIX_CHANNELS * frame + 1] += right;
  }
}

bool AudioStream::nextFrame(std::int32_t* left, std::int32_t* right, TimePoint now) {
  std::int16_t samples[2];
  if (format_ == AudioFormat::stereo48k) {
    if (!nextSource(samples, now)) return false;
    *left = samples[0];
    *right = samples[1];
    return true;
  }
  if (phase_ == 0) {
    if (!nextSource(samples, now)) return false;
    upsampler_.push(samples[0]);
  }
  *left = *right = upsampler_.at(phase_);
  phase_ = (phase_ + 1) % Upsampler::FACTOR;
  return true;
}

bool AudioStream::nextSource(std::int16_t* samples, TimePoint now) {
  while (!blocks_.empty() && played_ == blocks_.front().length) finishBlock();
  if (blocks_.empty()) return false;
  const AudioBlock& block = blocks_.front();
  if (played_ == 0) waited_.add(between(block.received, now));
  const std::size_t size = bytesPerFrame();
  for (std::size_t i = 0; i < size / 2; ++i) samples[i] = sampleAt(block.data + played_ + 2 * i);
  played_ += size;
  waiting_ -= size;
  if (played_ == block.length) finishBlock();  // at once, so that the next one is already on its way
  return true;
}

void AudioStream::finishBlock() {
  done_.push_back(blocks_.front().session);
  blocks_.pop_front();
  played_ = 0;
}

bool AudioStream::isDetached() const {
  const std::lock_guard lock(mutex_);
  return detached_;
}

AudioTotals AudioStream::totals() const {
  const std::lock_guard lock(mutex_);
  AudioTotals totals = totals_;
  totals.waitedP50 = waited_.percentile(50);
  totals.waitedP99 = waited_.percentile(99);
  return totals;
}

}  // namespace headunit
