#pragma once

#include <array>
#include <functional>

#include "FullHeadUnit.h"
#include "MemoryTransport.h"
#include "NumberedSensors.h"
#include "phone/CarServices.h"

namespace test {

/// What the phone hears of the car, and whether it was what was due.
class CarArrivals : public phone::CarListener {
 public:
  static constexpr int MICROPHONE_LIMIT = 6;  // unacknowledged messages that the phone allows

  const Arrivals& ofSensor(int type) const { return sensors_[static_cast<std::size_t>(type)]; }
  /// Batches of no sensor; one goes ahead of each report of the climate.
  const Arrivals& empty() const { return sensors_[0]; }
  const Arrivals& touches() const { return touches_; }
  const Arrivals& keys() const { return keys_; }
  const Arrivals& speech() const { return speech_; }

  void onSensorBatch(const SensorBatch& batch) override;
  void onInputReport(const InputReport& report) override;
  /// For the services that tell it; this outlives them.
  phone::CarOptions options();

 private:
  std::array<Arrivals, SENSOR_TYPES + 1> sensors_;
  Arrivals touches_;
  Arrivals keys_;
  Arrivals speech_;
};

/// A phone that takes turns among its channels and does not keep what it gets.
phone::LinkOptions quietPhone();

/// A FullHeadUnit and a phone on the two ends of a byte stream in memory. The test's thread is the phone's.
class FullLink {
 public:
  FullLink();
  ~FullLink() { headUnit_.ends(); }
  FullLink(const FullLink&) = delete;
  FullLink& operator=(const FullLink&) = delete;

  /// Brings the link up and opens the sensors, the input and the microphone. False if any of it fails.
  bool comesUp();
  /// Moves bytes both ways until `done`; false if the link ended before.
  bool pumpUntil(const std::function<bool()>& done);
  /// Until the head unit has heard all that the phone has said.
  bool settles();

  FullHeadUnit& headUnit() { return headUnit_; }
  phone::PhoneLink& phone() { return *phone_; }
  phone::Timers& timers() { return timers_; }
  const CarArrivals& car() const { return heard_; }
  std::uint8_t sensorChannel() const { return sensorChannel_; }
  std::uint8_t inputChannel() const { return inputChannel_; }
  const phone::CarServices& services() const { return *car_; }

 private:
  FullHeadUnit headUnit_;
  MemoryTransport transport_{&headUnit_.receiver};
  phone::Timers timers_;  // never wound: no limit of time runs out
  CarArrivals heard_;
  std::unique_ptr<phone::PhoneLink> phone_;
  std::unique_ptr<phone::CarServices> car_;
  std::uint8_t sensorChannel_ = 0;
  std::uint8_t inputChannel_ = 0;
};

}  // namespace test
