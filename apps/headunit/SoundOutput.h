#pragma once

#include <memory>
#include <string>

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

  /// After finish: whether all of it has got where it was to go. If not, that has been logged.
  virtual bool isWhole() const { return true; }
};

/// Takes the mix at the pace of the clock, as a sound device would.
class ClockedSound : public PacedTask {
 public:
  /// `file` may be null; the sound is then thrown away. What comes before the first sound is not written.
  ClockedSound(Mixer* mixer, std::unique_ptr<WavWriter> file) : mixer_(mixer), file_(std::move(file)) {}

  TimePoint act(TimePoint now) override;

  /// Closes the file. Returns whether all sound is in it; if not, that has been logged.
  bool finish();

 private:
  void playPeriod();
  void giveUp(const std::string& error);

  Mixer* const mixer_;
  std::unique_ptr<WavWriter> file_;
  bool isWhole_ = true;
  TimePoint next_;
};

/// A ClockedSound on a thread of its own: sound into a file, or into nothing.
class ClockedOutput : public SoundOutput {
 public:
  ClockedOutput(Mixer* mixer, std::unique_ptr<WavWriter> file);
  void finish(milliseconds limit) override;
  bool isWhole() const override { return isWhole_; }

 private:
  Mixer* const mixer_;
  ClockedSound sound_;
  PacedThread thread_;
  bool isWhole_ = true;
};

/// Returns once the mixer is quiet, or the limit is over.
void waitForQuiet(const Mixer& mixer, milliseconds limit);

}  // namespace headunit
