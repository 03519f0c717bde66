#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace phone {

/// A run of sound: signed 16-bit little-endian samples, the channels interleaved.
struct PcmBlock {
  std::vector<std::uint8_t> data;
  std::int64_t timestampUs = 0;  // of its first sample, in microseconds since the source's start
};

/// Sound in blocks. Not thread-safe: one thread calls it.
class PcmSource {
 public:
  virtual ~PcmSource() = default;

  virtual int sampleRate() const = 0;
  virtual int channels() const = 0;

  /// Fills `*block` with the next `milliseconds` (1 or more) of sound, less at the end of the source; false
  /// when nothing is left, and at every call after it. Where a millisecond is no whole number of samples,
  /// blocks differ by one sample so that the sum stays exact.
  virtual bool next(int milliseconds, PcmBlock* block) = 0;

  /// Why next() came to no end but broke off, as words for the user; empty if it did not.
  virtual std::string problem() const { return {}; }
};

/// Opens a local file of any kind that FFmpeg reads and brings its sound to `sampleRate` (8000 to 192000) and
/// `channels` (1 to 8). With `loop` it starts again at its end. Null on failure, with a whole sentence for
/// the user in `*error`.
std::unique_ptr<PcmSource> openAudioFile(const std::string& path, int sampleRate, int channels, bool loop,
                                         std::string* error);

/// Which of the generated sounds; each has notes that none of the others has, so that they can be told apart
/// where they are mixed or confused.
enum class Tone { Media, Guidance, System, Telephony };

/// A pleasant generated sound, `milliseconds` long (0: without end). The same arguments always give the same
/// samples, and how it is cut into blocks makes no difference.
std::unique_ptr<PcmSource> makeTone(Tone tone, int sampleRate, int channels, std::int64_t milliseconds = 0);

/// The pitches in hertz that the sound is made of.
std::vector<double> tonePitches(Tone tone);

}  // namespace phone
