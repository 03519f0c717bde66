#pragma once

#include <array>

#include "AudioSink.h"
#include "AudioSource.h"
#include "DataServices.h"
#include "InputSource.h"
#include "NumberedMedia.h"
#include "QuietHost.h"
#include "SensorSource.h"
#include "ServiceIds.h"
#include "Transport.h"
#include "VantryReceiver.h"
#include "VideoSink.h"

namespace test {

/// A head unit that has every service, each with a host that knows what is due next.
class FullHeadUnit {
 public:
  static constexpr int SINKS = 5;           // VIDEO to TELEPHONY
  static constexpr unsigned int LIMIT = 5;  // unacknowledged messages that each sink allows

  FullHeadUnit();
  ~FullHeadUnit() { ends(); }
  FullHeadUnit(const FullHeadUnit&) = delete;
  FullHeadUnit& operator=(const FullHeadUnit&) = delete;

  /// Starts the link over `transport`, which works for `receiver`.
  void starts(Transport* transport);
  /// Stops the link, if it was started, and waits for all threads.
  void ends();

  NumberedPlayer& playerOf(int sink) { return *players_[static_cast<std::size_t>(sink - VIDEO)]; }

 private:
  MessageRouter* router() { return receiver.messageRouter(); }
  void setUpSinks();
  void setUpCar();

  Transport* transport_ = nullptr;
  bool over_ = false;
  // Each is owned by the endpoint that gets it.
  std::array<NumberedPlayer*, SINKS> players_;

 public:
  QuietHost* const control = new QuietHost;
  NumberedMicrophone* const microphoneHost = new NumberedMicrophone;

  VantryReceiver receiver;
  VideoSink video;
  AudioSink media, guidance, system, telephony;
  AudioSource microphone{MICROPHONE, router(), shared_ptr<IAudioSourceCallbacks>(microphoneHost)};
  SensorSource sensors{SENSORS, router()};
  InputSource input{INPUT, router()};
  DataServices data{router()};
};

/// The keys that a FullHeadUnit has.
const std::set<int>& keysOfFullHeadUnit();
/// The driver presses or releases a key for the `number`th time.
void reportKey(InputSource* input, std::uint64_t number);
/// What the phone has to get for it.
InputReport keyReport(std::uint64_t number);

/// The driver touches the screen for the `number`th time.
void reportTouch(InputSource* input, std::uint64_t number);
/// What the phone has to get for it.
InputReport touchReport(std::uint64_t number);

}  // namespace test
