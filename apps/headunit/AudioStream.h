#pragma once

#include <IoBuffer.h>
#include <shared_ptr.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "headunit/Clock.h"
#include "headunit/LatencyHistogram.h"
#include "headunit/Upsampler.h"

namespace headunit {

/// What all sound is mixed to: 48000 frames a second, each a left and a right sample.
constexpr unsigned int MIX_RATE = 48000;
constexpr unsigned int MIX_CHANNELS = 2;

/// The two formats that a stream may have, both of signed 16-bit little-endian samples.
enum class AudioFormat { stereo48k, mono16k };

/// One media message of sound, in the buffer in which it came.
struct AudioBlock {
  ::shared_ptr<IoBuffer> buffer;
  const unsigned char* data = nullptr;
  unsigned int length = 0;
  int session = 0;
  TimePoint received;
};

struct AudioTotals {
  std::uint64_t blocks = 0;
  std::uint64_t bytes = 0;
  std::uint64_t underruns = 0;  ///< how often there was nothing to play in the middle of a stream
  std::uint64_t refused = 0;    ///< blocks beyond what may wait, thrown away
  microseconds waitedP50{0};    ///< from receipt to being played
  microseconds waitedP99{0};
};

/// One stream of sound between the reader thread, which brings blocks and never waits, and the thread that
/// plays. Playing begins when a little has gathered, so that blocks that come late leave no gap; a gap is
/// silence. Each block is acknowledged once it has been played whole.
class AudioStream {
 public:
  using Acknowledge = std::function<void(int session, unsigned int count)>;

  /// `maxUnacked`: what the phone has been told; so many blocks are always enough to begin with.
  AudioStream(std::string name, AudioFormat format, std::size_t maxUnacked, Acknowledge acknowledge);

  // Reader thread.
  void start();
  void receive(AudioBlock block);
  /// No more comes for now: what is there is still played.
  void stop();

  /// The link is over, as by stop, but no more than a second is played of what is there; and there is nobody
  /// left to acknowledge to: `acknowledge` is not called again once this has returned.
  void detach();

  /// Playing thread: adds `frames` frames to `mix`, less at a gap. Returns whether anything is or will soon
  /// be heard.
  bool addTo(std::int32_t* mix, std::size_t frames);

  bool isDetached() const;
  const std::string& name() const { return name_; }
  AudioTotals totals() const;

 private:
  enum class State { idle, filling, playing };

  bool mayBegin() const;
  void play(std::int32_t* mix, std::size_t frames, TimePoint now);
  bool nextFrame(std::int32_t* left, std::int32_t* right, TimePoint now);
  bool nextSource(std::int16_t* samples, TimePoint now);
  void finishBlock();
  void shortenTo(std::size_t bytes);
  microseconds gathered() const;
  std::size_t bytesIn(std::size_t seconds) const;
  std::size_t bytesPerFrame() const { return format_ == AudioFormat::stereo48k ? 4 : 2; }

  const std::string name_;
  const AudioFormat format_;
  const std::size_t maxUnacked_;

  mutable std::mutex mutex_;
  Acknowledge acknowledge_;
  State state_ = State::idle;
  bool ending_ = true;  // no more blocks are due: running dry is no underrun
  bool detached_ = false;
  std::deque<AudioBlock> blocks_;
  std::size_t waiting_ = 0;  // bytes in blocks_ that have not been played
  std::size_t played_ = 0;   // bytes of the first block
  microseconds enough_;
  Upsampler upsampler_;
  int phase_ = 0;
  AudioTotals totals_;
  LatencyHistogram waited_;

  std::mutex acknowledging_;  // held while acknowledge_ runs, so that detach can wait for it
  std::vector<int> done_;     // sessions of blocks that have been played; playing thread
};

}  // namespace headunit
