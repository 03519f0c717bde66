#ifndef PHONE_MEDIASTREAM_H
#define PHONE_MEDIASTREAM_H

#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "phone/MediaClock.h"
#include "phone/MediaFeed.h"
#include "phone/PhoneLink.h"
#include "phone/Timers.h"

namespace phone {

struct StreamOptions {
  MediaCodecType codec = MEDIA_CODEC_VIDEO;
  int sessionId = 1;
  bool paced = true;               ///< False: as quick as the acknowledgements allow.
  MediaClock* clock = nullptr;     ///< Shared with other streams; null for one of its own.
  std::uint64_t unitLimit = 0;     ///< Stop after so many units; 0 for no limit.
  Micros answerLimit = 3'500'000;  ///< How long the head unit may take to open, to configure, to acknowledge.
  Micros drainLimit = 1'000'000;   ///< How long Stop waits at the end for the last acknowledgements.
};

struct StreamStats {
  std::uint64_t units = 0;
  std::uint64_t bytes = 0;  ///< Of the units' data.
  std::uint64_t acknowledged = 0;
  std::uint64_t surplusAcks = 0;  ///< Acknowledged without having been sent: the head unit miscounts.
  std::size_t mostUnacknowledged = 0;
  std::vector<Micros>
      ackLatencies;  ///< From handing over to acknowledgement, one for each acknowledged unit.
  Micros started = 0;
  Micros finished = 0;
};

/// Plays one feed to one media sink of the head unit, sound or picture:
/// channel open, Setup, Config, Start, codec configuration, units, Stop.
class MediaStream : public ChannelHandler {
 public:
  enum class State { idle, opening, settingUp, streaming, draining, stopped, failed };

  /// Picks one of the `allowed` configurations of Config into `index` and opens the feed for it. Null, with
  /// `problem` set, if there is none to its liking.
  using Opener = std::function<std::unique_ptr<MediaFeed>(const std::vector<std::uint32_t>& allowed,
                                                          std::uint32_t* index, LinkEnd* problem)>;
  /// Called once, from inside the link or a timer: how the stream ended.
  using Done = std::function<void(const LinkEnd&)>;

  /// `link` and `timers` outlive the stream.
  MediaStream(PhoneLink* link, Timers* timers, StreamOptions options, Opener opener, Done done = {});
  ~MediaStream() override;
  MediaStream(const MediaStream&) = delete;
  MediaStream& operator=(const MediaStream&) = delete;

  /// Opens `channel` to the sink and goes on from there by itself. Once.
  void start(std::uint8_t channel, int serviceId);
  /// Sends Stop now if the stream runs. `done` is called as at a clean end.
  void stop();
  /// Sends what is due up to `time` of the stream and then waits for the next such call, whatever the clock
  /// says.
  void follow(Micros time);
  /// The feed that said `later` has something.
  void resume() { pump(); }

  State state() const { return state_; }
  const StreamStats& stats() const { return stats_; }
  std::size_t unacknowledged() const { return sentAt_.size(); }
  std::uint32_t maxUnacked() const { return maxUnacked_; }

  void onOpened() override;
  void onRefused(MessageStatus status) override;
  void onMessage(const Message& message) override;
  void onClosed() override;

 private:
  void onConfig(const Message& message);
  void onAck(const Message& message);
  void begin(std::uint32_t index);
  void pump();
  bool hasRoom();
  void pumpAt(Micros due);
  bool fetch();
  bool waitsUntil(Micros time);
  Micros dueAt(Micros time);
  void sendUnit();
  bool drain();
  void finishPlayed();
  void finish(const LinkEnd& end);
  void fail(const std::string& what, const std::string& advice);
  bool isOver() const { return state_ == State::stopped || state_ == State::failed; }
  void limit(const char* awaited);
  void cancelLimit();
  void cancelTimers();

  PhoneLink* link_;
  Timers* timers_;
  StreamOptions options_;
  Opener opener_;
  Done done_;

  State state_ = State::idle;
  std::uint8_t channel_ = 0;
  std::uint32_t maxUnacked_ = 0;
  std::unique_ptr<MediaFeed> feed_;
  std::optional<MediaUnit> next_;
  MediaClock ownClock_;
  Micros origin_ = 0;              ///< The clock's time at the stream's time 0.
  std::optional<Micros> horizon_;  ///< See follow().
  std::deque<Micros> sentAt_;      ///< When the units that are still unacknowledged left.
  std::optional<Timers::Id> pace_;
  std::optional<Timers::Id> limit_;
  StreamStats stats_;
};

}  // namespace phone

#endif
