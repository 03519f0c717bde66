#include "phone/verify/SensorRequests.h"

#include <protos.pb.h>

namespace phone::verify {

namespace {

void appendVarint(Bytes* to, std::uint64_t value) {
  for (; value > 0x7f; value >>= 7) to->push_back(static_cast<std::uint8_t>(value | 0x80));
  to->push_back(static_cast<std::uint8_t>(value));
}

}  // namespace

// By hand, because the record takes no type that is no sensor's.
Bytes sensorRequest(int type, std::int64_t minUpdatePeriod) {
  Bytes body = {0x08};
  appendVarint(&body, static_cast<std::uint64_t>(type));
  body.push_back(0x10);
  appendVarint(&body, static_cast<std::uint64_t>(minUpdatePeriod));
  return messageBytes(MESSAGE_SENSOR_REQUEST, body);
}

}  // namespace phone::verify
