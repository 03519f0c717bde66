#ifndef PHONE_PHONESESSION_H
#define PHONE_PHONESESSION_H

#include <memory>
#include <optional>

#include "phone/CarServices.h"
#include "phone/PhoneLink.h"
#include "phone/SoundPlayer.h"
#include "phone/VideoPlayer.h"

namespace phone {

struct SessionOptions {
  VideoWish wish;
  StreamOptions stream;
  std::vector<AudioStreamType> sounds;  ///< Which streams of sound are played, if the head unit takes them.
  SoundFactory makeSound;               ///< Needed where `sounds` are.
  CarOptions car;
  Micros bringUpLimit = 3'500'000;   ///< From start() until the services are known.
  Micros silenceLimit = 4'000'000;   ///< A head unit that says nothing for so long, pings included, is gone.
  Micros farewellLimit = 1'000'000;  ///< How long good-bye waits for its answer.
};

/// What the program does with a link: brings it up, plays one picture stream, says good-bye; and watches that
/// none of it takes forever. `link` and `timers` outlive the session.
class PhoneSession : public LinkObserver {
 public:
  PhoneSession(PhoneLink* link, Timers* timers, SessionOptions options, VideoFactory video);
  PhoneSession(const PhoneSession&) = delete;
  PhoneSession& operator=(const PhoneSession&) = delete;

  /// The connection stands; the head unit speaks first. Once.
  void start();
  /// The user wants to end: says good-bye where that is possible. A second call ends the link on the spot.
  void interrupt();

  /// How it went, once the link has ended. Not always the link's own end: a stream that fails is a failure,
  /// though the link then ends in good order.
  LinkEnd outcome() const;
  /// From the accepted version until the head unit's consent; empty if it never came to that.
  std::optional<Micros> handshakeTime() const { return handshakeTime_; }
  /// Null until the head unit's services are known.
  const MediaStream* video() const { return video_.get(); }
  /// Of the last picture sent, since the first one.
  Micros pictureTime() const { return pictureTime_; }
  const SoundPlayer& sounds() const { return sounds_; }
  const CarServices& car() const { return car_; }
  /// What went wrong beside the link, in words. Of it only a picture that breaks off ends the link.
  const std::vector<std::string>& troubles() const { return troubles_; }
  /// Called at each of them.
  void onTrouble(std::function<void(const std::string& what)> call) { trouble_ = std::move(call); }

  /// How often the head unit broke a rule without ending the link.
  std::uint64_t violations() const { return violations_; }

  void onState(LinkState state) override;
  void onMessage(const Message& message) override;
  void onViolation(const std::string& what) override;

 private:
  void playVideo();
  void onPictureSent(Micros time);
  void playSound();
  void addTrouble(const std::string& what, const LinkEnd& end);
  void onVideoDone(const LinkEnd& end);
  void leave();
  void watch();
  void cancelLimit();

  PhoneLink* link_;
  Timers* timers_;
  SessionOptions options_;
  VideoFactory makeVideo_;
  MediaClock clock_;
  CarServices car_;
  SoundPlayer sounds_;
  std::unique_ptr<MediaStream> video_;
  std::vector<std::string> troubles_;
  std::function<void(const std::string&)> trouble_;
  std::optional<LinkEnd> problem_;
  std::optional<Timers::Id> limit_;
  std::optional<Timers::Id> watch_;
  std::uint64_t violations_ = 0;
  Micros handshakeBegan_ = 0;
  Micros lastHeard_ = 0;
  Micros pictureTime_ = 0;
  std::optional<Micros> handshakeTime_;
};

}  // namespace phone

#endif
