#pragma once

#include "SensorSource.h"

namespace test {

constexpr int SENSOR_TYPES = 21;

/// Reports value `number` of sensor `type`, 1 to 21.
void reportSensor(SensorSource* sensors, int type, int number);

/// What the phone has to get for it.
SensorBatch sensorReport(int type, int number);

/// The sensor that a batch of one report is about; 0 for an empty one.
int sensorTypeOf(const SensorBatch& batch);

}  // namespace test
