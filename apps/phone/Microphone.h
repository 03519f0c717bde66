#ifndef PHONE_MICROPHONE_H
#define PHONE_MICROPHONE_H

#include <functional>
#include <memory>
#include <string>

#include "phone/Discovery.h"
#include "phone/PhoneLink.h"

namespace phone {

/// Takes sound: signed 16-bit little-endian samples, channels interleaved. False if it cannot take more.
using PcmSink = std::function<bool(const std::uint8_t* samples, std::size_t length)>;
/// Makes the place that the car's microphone goes to. Empty on failure, with a sentence in `error`.
using PcmSinkFactory = std::function<PcmSink(int sampleRate, int channels, std::string* error)>;

struct MicrophoneStats {
  std::uint64_t messages = 0;
  std::uint64_t bytes = 0;    ///< Of sound.
  std::uint64_t damaged = 0;  ///< Messages that were refused: too short, or with half a sample.
};

/// Listens to the car's microphone: opens it, acknowledges every message of its sound and hands it on.
class Microphone : public ChannelHandler {
 public:
  /// Called once: why nothing, or nothing more, is heard.
  using Problem = std::function<void(const LinkEnd& end)>;

  /// `link` outlives the microphone.
  Microphone(PhoneLink* link, int maxUnacked, PcmSinkFactory make, Problem problem = {});
  ~Microphone() override;
  Microphone(const Microphone&) = delete;
  Microphone& operator=(const Microphone&) = delete;

  /// Opens the microphone that `service` is, on `channel`. Once.
  void open(std::uint8_t channel, const Service& service);
  /// Tells the head unit to close the microphone; what is on its way is still taken.
  void close();

  bool isOpen() const { return state_ == State::open; }
  const MicrophoneStats& stats() const { return stats_; }

  void onOpened() override;
  void onRefused(MessageStatus status) override;
  void onMessage(const Message& message) override;
  void onClosed() override;

 private:
  enum class State { idle, opening, open, closing, over };

  void onResponse(const Message& message);
  void onSound(const Message& message);
  void acknowledge();
  void fail(Side side, const std::string& what, const std::string& advice);

  PhoneLink* link_;
  int maxUnacked_;
  PcmSinkFactory make_;
  Problem problem_;
  State state_ = State::idle;
  std::uint8_t channel_ = 0;
  AudioConfiguration format_;
  int sessionId_ = 0;
  PcmSink sink_;
  MicrophoneStats stats_;
};

}  // namespace phone

#endif
