#ifndef PHONE_CARSERVICES_H
#define PHONE_CARSERVICES_H

#include <memory>

#include "phone/InputReader.h"
#include "phone/Microphone.h"
#include "phone/SensorReader.h"
#include "phone/TouchScreen.h"

namespace phone {

struct CarOptions {
  CarListener* listener = nullptr;
  PcmSinkFactory recordMicrophone;  ///< Empty: the microphone is left alone.
  int microphoneMaxUnacked = 8;
};

/// The services by which the car tells something: its sensors, its keys and touches, its microphone.
class CarServices {
 public:
  /// All outlive this.
  CarServices(PhoneLink* link, const Timers* timers, CarOptions options);

  /// Called at most once: why nothing, or nothing more, is heard of the microphone.
  void onProblem(Microphone::Problem call) { problem_ = std::move(call); }

  /// Opens what `services` list, each on a channel of its own. Once.
  void open(const ServiceDiscoveryResponse& services);
  /// Closes what stays open until it is told otherwise.
  void close();

  TouchScreen& touches() { return touches_; }
  const TouchScreen& touches() const { return touches_; }
  // Each is null until the head unit is known to have it.
  const SensorReader* sensors() const { return sensors_.get(); }
  const InputReader* input() const { return input_.get(); }
  const Microphone* microphone() const { return microphone_.get(); }

 private:
  void openMicrophone(const Service* service);

  PhoneLink* link_;
  CarOptions options_;
  Microphone::Problem problem_;
  TouchScreen touches_;
  std::unique_ptr<SensorReader> sensors_;
  std::unique_ptr<InputReader> input_;
  std::unique_ptr<Microphone> microphone_;
};

}  // namespace phone

#endif
