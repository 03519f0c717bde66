#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "headunit/AudioStream.h"

namespace headunit {

/// All sound of the program in one signal. One for the whole run; the streams come and go with their links.
class Mixer {
 public:
  /// Any thread. The stream goes by itself once it is detached and has been played to its end.
  void add(std::shared_ptr<AudioStream> stream);

  /// Playing thread: fills `frames` frames of 48 kHz stereo, with silence where nothing is to be heard.
  /// Returns whether any stream is or will soon be heard.
  bool mix(std::int16_t* out, std::size_t frames);

  /// Any thread: whether the last mix was the end of all sound.
  bool isQuiet() const { return quiet_; }

 private:
  std::mutex mutex_;
  std::vector<std::shared_ptr<AudioStream>> streams_;
  std::vector<std::int32_t> sum_;  // playing thread
  std::atomic<bool> quiet_{true};
};

}  // namespace headunit
