#include "phone/verify/SensorTypes.h"

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

std::set<int> typesIn(const SensorBatch& batch) {
  const int sizes[] = {batch.location_data_size(),       batch.compass_data_size(),
                       batch.speed_data_size(),          batch.rpm_data_size(),
                       batch.odometer_data_size(),       batch.fuel_data_size(),
                       batch.parking_brake_data_size(),  batch.gear_data_size(),
                       batch.diagnostics_data_size(),    batch.night_mode_data_size(),
                       batch.environment_data_size(),    batch.hvac_data_size(),
                       batch.driving_status_data_size(), batch.dead_reckoning_data_size(),
                       batch.passenger_data_size(),      batch.door_data_size(),
                       batch.light_data_size(),          batch.tire_pressure_data_size(),
                       batch.accelerometer_data_size(),  batch.gyroscope_data_size(),
                       batch.gps_satellite_data_size()};
  std::set<int> types;
  int type = SENSOR_LOCATION;
  for (const int size : sizes) {
    if (size > 0) types.insert(type);
    ++type;
  }
  return types;
}

}  // namespace phone::verify
