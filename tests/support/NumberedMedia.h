#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "AudioSource.h"
#include "IAudioSinkCallbacks.h"
#include "IAudioSourceCallbacks.h"
#include "IVideoSinkCallbacks.h"
#include "MediaSinkBase.h"
#include "Numbered.h"
#include "phone/MediaStream.h"

namespace test {

/// The host behind a sink of pictures or sound: plays numbered messages on a thread of its own, as a decoder
/// does, and acknowledges all that it took in one go at once.
class NumberedPlayer : public IVideoSinkCallbacks, public IAudioSinkCallbacks {
 public:
  ~NumberedPlayer() override { ends(); }

  /// Before the link starts: `sink`, which outlives the thread, allows `limit` unacknowledged messages.
  void plays(MediaSinkBase* sink, unsigned int limit);
  /// Stops the thread. What has not been played is left.
  void ends();

  const Arrivals& played() const { return arrivals; }
  /// The phone has sent more than the limit allows.
  bool overrun() const;
  /// How often playback was started and stopped.
  int starts() const { return startCount; }
  int stops() const { return stopCount; }

  void dataAvailable(int session, unsigned long long timestamp, shared_ptr<IoBuffer> const& buffer,
                     void* data, unsigned int length) override;
  void codecConfig(void*, unsigned int) override {}
  int setup(int) override { return 0; }
  void playbackStart(int) override { ++startCount; }
  void playbackStop(int) override { ++stopCount; }
  void mediaConfiguration(int) override {}
  void videoFocusRequest(int, int) override {}

 private:
  struct Unit {
    unsigned long long timestamp;
    shared_ptr<IoBuffer> buffer;  // keeps the content
    void* content;
    unsigned int length;
  };
  bool waitsForUnits(std::vector<Unit>* units);
  void play(MediaSinkBase* sink);

  Arrivals arrivals;  // the player's thread
  std::atomic<int> startCount{0};
  std::atomic<int> stopCount{0};
  std::thread thread;
  mutable std::mutex lock;  // guards the rest
  std::condition_variable changed;
  std::vector<Unit> waiting;
  unsigned int limit = 0;
  unsigned int unacknowledged = 0;
  int session = 0;
  bool tooMany = false;
  bool over = false;
};

/// The host behind the microphone.
class NumberedMicrophone : public IAudioSourceCallbacks {
 public:
  static constexpr int SESSION = 40;

  /// Host thread: says numbered messages up to `end`, each as soon as the limit of the phone allows. False if
  /// the phone stops acknowledging.
  bool speaks(AudioSource* source, std::uint64_t end);

  std::uint64_t acknowledged() const;
  /// The phone acknowledged what it never got, or for another session.
  bool miscounted() const;

  void ackReceived(int session, unsigned int ack) override;
  int microphoneRequest(bool open, bool ancEnabled, bool ecEnabled, int maxUnacked) override;

 private:
  mutable std::mutex lock;  // guards the rest
  std::condition_variable changed;
  std::uint64_t sent = 0;
  std::uint64_t acknowledgedCount = 0;
  std::uint64_t limit = 0;
  bool wrongAck = false;
};

/// The phone's end of a stream to a NumberedPlayer.
class NumberedStream {
 public:
  /// Both outlive the stream. Opens a channel to a FullHeadUnit's sink and starts.
  NumberedStream(phone::PhoneLink* link, phone::Timers* timers, int serviceId);

  /// Lets messages up to number `end` go, as quickly as the acknowledgements allow.
  void goesOnTo(std::uint64_t end);
  /// Stops playback.
  void stops() { stream.stop(); }

  bool runs() const { return stream.state() == phone::MediaStream::State::streaming; }
  const phone::StreamStats& stats() const { return stream.stats(); }
  std::uint32_t limit() const { return stream.maxUnacked(); }

 private:
  struct Progress {
    std::uint64_t next = 0;
    std::uint64_t end = 0;
  };
  class Feed;
  std::shared_ptr<Progress> progress = std::make_shared<Progress>();
  phone::MediaStream stream;
};

}  // namespace test
