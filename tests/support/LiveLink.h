#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

#include "Bytes.h"
#include "MemoryTransport.h"
#include "TestCredentials.h"
#include "VantryReceiver.h"
#include "VideoSink.h"
#include "phone/PhoneLink.h"

namespace test {

/// What a host notes of a whole link, on the reader thread, for the test to read on its own.
class HostJournal {
 public:
  void note(const std::string& event);
  /// Runs with each event, inside the callback that it comes from. Before the link starts.
  void listens(std::function<void(const std::string& event)> call) { listener = std::move(call); }
  std::vector<std::string> events() const;
  bool has(const std::string& event) const;

 private:
  mutable std::mutex lock;  // guards notes
  std::vector<std::string> notes;
  std::function<void(const std::string& event)> listener;
};

/// A head unit with its two threads and a video sink, and the phone on the other end of a byte stream in
/// memory. The test's thread is the phone's: what it does goes over with `pumpUntil`.
///
///     LiveLink link;
///     link.start();
///     link.comesUp();
///     link.opensVideo();
///     link.sendsFrame(pattern(40000));
class LiveLink {
 public:
  static constexpr int VIDEO_SERVICE = 1;
  static constexpr std::uint8_t VIDEO_CHANNEL = 3;
  static constexpr int SESSION = 17;

  /// The head unit trusts `root` and shows `own`; the phone shows `identity`.
  explicit LiveLink(const Identity& identity = credentials().phone,
                    const std::string& root = credentials().root,
                    const Identity& own = credentials().headUnit);
  /// Stops the link if the test has not.
  ~LiveLink();
  LiveLink(const LiveLink&) = delete;
  LiveLink& operator=(const LiveLink&) = delete;

  void start();
  /// Requests the stop, waits for the threads and shuts down.
  void stop();
  /// The link has stopped or is stopping by itself: waits for the threads and shuts down.
  void joins();

  /// Moves bytes both ways until `done`; false if the link ended before.
  bool pumpUntil(const std::function<bool()>& done);
  bool comesUp();
  /// Opens the video channel, sets it up and starts the stream.
  bool opensVideo();
  /// Sends one media message of `content` and pumps until it has been acknowledged.
  bool sendsFrame(const Bytes& content);
  /// Acknowledgements that the phone has received.
  std::size_t acknowledged() const;
  /// Contents of the media messages that reached the host.
  std::vector<Bytes> delivered() const;

  phone::PhoneLink& phone() { return *phone_; }
  VantryReceiver& receiver() { return receiver_; }
  MemoryTransport& transport() { return *transport_; }
  VideoSink& video() { return *video_; }
  HostJournal& host() { return *journal_; }

  /// Runs on the reader thread with each media message, before it is acknowledged. Before `start`.
  std::function<void()> onFrame;
  /// Runs inside unrecoverableError. Before `start`; without it the host requests the stop.
  std::function<void()> onUnrecoverable;

 private:
  class Control;
  class Picture;

  std::shared_ptr<HostJournal> journal_;
  VantryReceiver receiver_;
  std::unique_ptr<MemoryTransport> transport_;
  Picture* picture_;  // owned by the sink
  std::unique_ptr<VideoSink> video_;
  std::unique_ptr<phone::PhoneLink> phone_;
  bool started_ = false;
  bool finished_ = false;
};

}  // namespace test
