#pragma once

#include <memory>

#include "phone/CarServices.h"
#include "phone/PhoneLink.h"
#include "phone/SoundPlayer.h"
#include "phone/VideoPlayer.h"

/// The phone simulator on a link without TLS. Once it is told what the head unit offers, it opens the screen,
/// every sound, the microphone, the sensors and the input, and reads what they say.
class PhoneInMemory : private phone::LinkObserver, private phone::CarListener {
 public:
  PhoneInMemory();
  ~PhoneInMemory() override;

  /// Bytes from the head unit, in small pieces; a millisecond passes with each.
  void feed(const unsigned char* data, std::size_t size);
  void discover() { link_.sendServiceDiscoveryRequest(); }
  /// What it has sent since the last call.
  phone::Bytes takeOutput() { return link_.takeOutput(); }

 private:
  void onMessage(const phone::Message& message) override;
  void onSensorBatch(const SensorBatch& batch) override;
  void onInputReport(const InputReport& report) override;
  void openEverything();

  phone::PhoneLink link_{phone::LinkOptions()};
  phone::Timers timers_;
  phone::Micros time_ = 0;
  phone::MediaClock clock_;
  phone::CarServices car_;
  phone::SoundPlayer sounds_;
  std::unique_ptr<phone::MediaStream> video_;
  bool opened_ = false;
};
