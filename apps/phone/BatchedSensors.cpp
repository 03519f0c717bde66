#include "phone/BatchedSensors.h"

namespace phone {

std::set<int> sensorsIn(const SensorBatch& batch) {
  // In the order of the types.
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

}  // namespace phone
