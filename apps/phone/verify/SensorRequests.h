#ifndef PHONE_VERIFY_SENSORREQUESTS_H
#define PHONE_VERIFY_SENSORREQUESTS_H

#include "phone/Message.h"

namespace phone::verify {

/// A whole SensorRequest message; the type need be none.
Bytes sensorRequest(int type, std::int64_t minUpdatePeriod);

}  // namespace phone::verify

#endif
