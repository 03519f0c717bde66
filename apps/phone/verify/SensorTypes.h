#ifndef PHONE_VERIFY_SENSORTYPES_H
#define PHONE_VERIFY_SENSORTYPES_H

#include <protos.pb.h>

#include <set>

#include "phone/Message.h"

namespace phone::verify {

/// A whole SensorRequest message; the type need be none.
Bytes sensorRequest(int type, std::int64_t minUpdatePeriod);
/// The sensors that a batch tells something of.
std::set<int> typesIn(const SensorBatch& batch);

}  // namespace phone::verify

#endif
