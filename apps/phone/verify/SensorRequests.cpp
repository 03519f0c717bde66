#include "phone/verify/SensorRequests.h"

#include <protos.pb.h>

namespace phone::verify {

// By hand, because the record takes no type that is no sensor's.
Bytes sensorRequest(int type, std::int64_t minUpdatePeriod) {
  Bytes body = {0x08};
  appendVarint(&body, static_cast<std::uint64_t>(type));
  body.push_back(0x10);
  appendVarint(&body, static_cast<std::uint64_t>(minUpdatePeriod));
  return messageBytes(MESSAGE_SENSOR_REQUEST, body);
}

}  // namespace phone::verify
