#include "phone/CarServices.h"

#include <utility>

namespace phone {

CarServices::CarServices(PhoneLink* link, const Timers* timers, CarOptions options)
    : link_(link), options_(std::move(options)), touches_(timers) {}

void CarServices::open(const ServiceDiscoveryResponse& services) {
  if (const Service* service = findSensors(services)) {
    sensors_ = std::make_unique<SensorReader>(link_, options_.listener);
    sensors_->open(link_->unusedChannel(), *service);
  }
  if (const Service* service = findInput(services)) {
    input_ = std::make_unique<InputReader>(link_, &touches_, options_.listener);
    input_->open(link_->unusedChannel(), *service);
  }
  if (options_.recordMicrophone) openMicrophone(findMicrophone(services));
}

void CarServices::openMicrophone(const Service* service) {
  if (service == nullptr) {
    if (problem_) problem_({false, Side::headUnit, "offers no microphone", "leave out --microphone"});
    return;
  }
  microphone_ =
      std::make_unique<Microphone>(link_, options_.microphoneMaxUnacked, options_.recordMicrophone, problem_);
  microphone_->open(link_->unusedChannel(), *service);
}

void CarServices::close() {
  if (microphone_) microphone_->close();
}

}  // namespace phone
