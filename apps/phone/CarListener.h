#ifndef PHONE_CARLISTENER_H
#define PHONE_CARLISTENER_H

#include <protos.pb.h>

namespace phone {

/// Hears what the car says of itself and of its driver. Called from inside PhoneLink::feed.
class CarListener {
 public:
  virtual ~CarListener() = default;
  virtual void onSensorBatch(const SensorBatch&) {}
  virtual void onInputReport(const InputReport&) {}
};

}  // namespace phone

#endif
