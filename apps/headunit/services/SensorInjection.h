#pragma once

#include <SensorSource.h>

namespace headunit {

/// Reports all that a batch holds, as if the vehicle had: to the phone where it asked for the sensor, and
/// kept until it does where it has not. Any thread.
void reportAll(const SensorBatch& batch, SensorSource* sensors);

}  // namespace headunit
