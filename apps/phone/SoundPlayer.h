#ifndef PHONE_SOUNDPLAYER_H
#define PHONE_SOUNDPLAYER_H

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "phone/Discovery.h"
#include "phone/MediaStream.h"
#include "phone/media/PcmSource.h"

namespace phone {

/// Makes a stream's sound once its format is settled. Null on failure, with a sentence in `error`.
using SoundFactory = std::function<std::unique_ptr<PcmSource>(AudioStreamType type, int sampleRate,
                                                              int channels, std::string* error)>;

/// What a MediaStream to the audio sink `sink` needs: chooses the format and `make`s its source.
MediaStream::Opener soundOpener(const MediaSinkService& sink, SoundFactory make);

/// One stream of sound on its way to the car.
struct Voice {
  AudioStreamType type = AUDIO_STREAM_MEDIA;
  std::unique_ptr<MediaStream> stream;
  std::optional<LinkEnd> end;  ///< How it ended, once it has.
};

/// Plays sound to the audio sinks that the head unit offers, all at once. A stream that fails leaves the
/// others alone.
class SoundPlayer {
 public:
  /// Called when a stream has failed: which one, and why.
  using Problem = std::function<void(AudioStreamType type, const LinkEnd& end)>;

  /// All outlive the player. Not `paced`, it follows the picture.
  SoundPlayer(PhoneLink* link, Timers* timers, MediaClock* clock, bool paced)
      : link_(link), timers_(timers), clock_(clock), paced_(paced) {}

  void onProblem(Problem call) { problem_ = std::move(call); }
  /// Opens every audio sink of `services` whose type is `wanted`.
  void start(const ServiceDiscoveryResponse& services, const std::vector<AudioStreamType>& wanted,
             const SoundFactory& make);
  /// The picture has come to `time`; sound that is not paced may come so far too.
  void onPictureSent(Micros time);
  void stop();

  const std::vector<std::unique_ptr<Voice>>& voices() const { return voices_; }

 private:
  void play(const Service& service, const SoundFactory& make);

  PhoneLink* link_;
  Timers* timers_;
  MediaClock* clock_;
  bool paced_;
  Problem problem_;
  std::vector<std::unique_ptr<Voice>> voices_;
};

}  // namespace phone

#endif
