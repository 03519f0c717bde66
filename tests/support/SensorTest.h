#pragma once

#include "SensorSource.h"
#include "ServiceTest.h"

namespace test {

/// The fixture for a head unit that has all 21 sensors, each of them parked, on an open channel.
class SensorTest : public ServiceTest {
 protected:
  SensorTest() {
    for (int type = 1; type <= 21; ++type) sensors.registerSensor(type);
    open(&sensors);
  }

  /// A SensorRequest; a period of -1 stops the sensor.
  static Bytes request(int type, long long period) {
    SensorRequest record;
    record.set_type(static_cast<SensorType>(type));
    record.set_min_update_period(period);
    return message(MESSAGE_SENSOR_REQUEST, record);
  }

  /// The phone requests a sensor, and what that makes the head unit send is set aside.
  void makeLive(int type) {
    sends(request(type, 1000));
    sent();
  }

  /// The answer to a request that is granted.
  static Bytes granted() { return bytes("80 02 08 00"); }

  /// A SensorBatch whose fields are `body`.
  static Bytes batch(const Bytes& body) { return message(MESSAGE_SENSOR_BATCH, body); }

  SensorSource sensors{SERVICE, link.router()};
};

}  // namespace test
