#pragma once

#include <memory>
#include <vector>

#include "HeapLayout.h"
#include "TlsPeer.h"
#include "VantryReceiver.h"
#include "VideoSink.h"

using Bytes = std::vector<unsigned char>;

/// Counts what reaches the video sink's callback.
class CountingSink : public IVideoSinkCallbacks {
 public:
  void dataAvailable(int, unsigned long long, shared_ptr<IoBuffer> const&, void*,
                     unsigned int length) override {
    ++messages;
    bytes += length;
  }
  void codecConfig(void*, unsigned int) override {}
  int setup(int) override { return 0; }
  void playbackStart(int) override {}
  void playbackStop(int) override {}
  void mediaConfiguration(int) override {}
  void videoFocusRequest(int, int) override {}

  unsigned long long messages = 0;
  unsigned long long bytes = 0;
};

/// A receiver with video sinks on channels 1 to `channels`, brought up by a phone of a few lines: frames in
/// and out, and no thread. Without TLS, frames that are flagged for encryption pass plain.
class BenchLink {
 public:
  enum class Security { tls, plain };
  BenchLink(Security security, int channels);
  ~BenchLink();

  /// The frame of a media data message of `size` bytes, type included, as it would arrive on `channel`.
  Bytes mediaFrame(unsigned char channel, std::size_t size);
  /// The same for the message `message`, into storage that is reused: a benchmark that makes its frames anew
  /// finds them where the last ones were.
  void mediaFrame(unsigned char channel, const Bytes& message, Bytes* frame);
  /// The frames of a message of `size` bytes that is cut into fragments.
  std::vector<Bytes> mediaFragments(unsigned char channel, std::size_t size);
  /// What a transport does with a frame that it has read.
  void receive(const Bytes& frame);
  /// One more service, which is not owned; the phone opens `channel` to it.
  void offer(ProtocolEndpointBase* endpoint, unsigned char channel);
  /// A whole message from the phone.
  void deliver(unsigned char channel, const Bytes& message);
  /// The next frame to the phone.
  Bytes takeFrame();

  VantryReceiver& receiver() { return receiver_; }
  unsigned long long delivered() const { return sink_->messages; }
  std::string cipher() const { return phone_.cipher(); }

 private:
  void bringUp();
  void openChannel(unsigned char channel, int service);
  void sendPlain(unsigned short type, const Bytes& body);
  Bytes frame(unsigned char channel, unsigned char flags, unsigned int total, const unsigned char* data,
              std::size_t size);
  void writeFrame(unsigned char channel, unsigned char flags, unsigned int total, const unsigned char* data,
                  std::size_t size, Bytes* bytes);

  HeapLayout before_;
  VantryReceiver receiver_;
  CountingSink* sink_ = new CountingSink();  // owned by callbacks_
  shared_ptr<IVideoSinkCallbacks> callbacks_{sink_};
  std::vector<std::unique_ptr<VideoSink>> sinks_;
  TlsPeer phone_{TlsPeer::Role::server};
  bool encrypts_ = false;
  HeapLayout behind_;
};
