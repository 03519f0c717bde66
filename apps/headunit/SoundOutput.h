#pragma once

#include <memory>

#include "headunit/Mixer.h"
#include "headunit/PacedThread.h"
#include "headunit/Wav.h"

namespace headunit {

/// Where the mix goes. It plays from its construction to its end; one for the whole run of the program.
class SoundOutput {
 public:
  virtual ~SoundOutput() = default;

  /// Waits until what has come has been played, but no longer than `limit`, and ends.
  virtual void finish(milliseconds limit) = 0;
};

/// Takes the mix at the pace of the clock, as a sound device would.
class ClockedSound : public PacedTask {
 public:
  /// `file` may be null; the sound is then thrown away. What comes before the first sound is not written.
  ClockedSound(Mixer* mixer, std::unique_ptr<WavWriter> file) : mixer_(mixer), file_(std::move(file)) {}

  TimePoint act(TimePoint now) override;

 private:
  void playPeriod();

  Mixer* const mixer_;
  std::unique_ptr<WavWriter> file_;
  TimePoint next_;
};

/// A ClockedSound on a thread of its own: sound into a file, or into nothing.
class ClockedOutput : public SoundOutput {
 public:
  ClockedOutput(Mixer* mixer, std::unique_ptr<WavWriter> file);
  void finish(milliseconds limit) override;

 private:
  Mixer* const mixer_;
  ClockedSound sound_;
  PacedThread thread_;
};

/// Returns once the mixer is quiet, or the limit is over.
void waitForQuiet(const Mixer& mixer, milliseconds limit);

}  // namespace headunit
