#include "headunit/services/SensorInjection.h"

#include <memory>
#include <string>
#include <vector>

namespace headunit {
namespace {

// How one value of each sensor is reported. The order is the batch's own.

void report(const LocationData& data, SensorSource* sensors) {
  sensors->reportLocationData(data.timestamp(), data.latitude_e7(), data.longitude_e7(),
                              data.has_accuracy_e3(), static_cast<int>(data.accuracy_e3()),
                              data.has_altitude_e2(), data.altitude_e2(), data.has_speed_e3(),
                              data.speed_e3(), data.has_bearing_e6(), data.bearing_e6());
}

void report(const CompassData& data, SensorSource* sensors) {
  sensors->reportCompassData3D(data.bearing_e6(), data.has_pitch_e6(), data.pitch_e6(), data.has_roll_e6(),
                               data.roll_e6());
}

void report(const SpeedData& data, SensorSource* sensors) { sensors->reportSpeedData(data.speed_e3()); }

void report(const RpmData& data, SensorSource* sensors) { sensors->reportRpmData(data.rpm_e3()); }

void report(const OdometerData& data, SensorSource* sensors) { sensors->reportOdometerData(data.kms_e1()); }

void report(const FuelData& data, SensorSource* sensors) {
  sensors->reportFuelData(data.has_fuel_level(), data.fuel_level(), data.has_range(), data.range(),
                          data.has_low_fuel_warning(), data.low_fuel_warning());
}

void report(const ParkingBrakeData& data, SensorSource* sensors) {
  sensors->reportParkingBrakeData(data.parking_brake());
}

void report(const GearData& data, SensorSource* sensors) { sensors->reportGearData(data.gear()); }

void report(const DiagnosticsData& data, SensorSource* sensors) {
  std::string codes = data.dtc();
  sensors->reportDiagnosticsData(reinterpret_cast<unsigned char*>(codes.data()),
                                 static_cast<unsigned int>(codes.size()));
}

void report(const NightModeData& data, SensorSource* sensors) {
  sensors->reportNightModeData(data.night_mode());
}

void report(const EnvironmentData& data, SensorSource* sensors) {
  sensors->reportEnvironmentData(data.has_temperature_e3(), data.temperature_e3(), data.has_pressure_e3(),
                                 data.pressure_e3());
}

void report(const HvacData& data, SensorSource* sensors) {
  sensors->reportHvacData(data.has_target_temperature_e3(), data.target_temperature_e3(),
                          data.has_current_temperature_e3(), data.current_temperature_e3());
}

void report(const DrivingStatusData& data, SensorSource* sensors) {
  sensors->reportDrivingStatusData(data.status());
}

void report(const DeadReckoningData& data, SensorSource* sensors) {
  sensors->reportDeadReckoningData(data.has_steering_angle_e1(), data.steering_angle_e1(),
                                   data.wheel_speed_e3().data(), data.wheel_speed_e3_size());
}

void report(const PassengerData& data, SensorSource* sensors) {
  sensors->reportPassengerData(data.passenger_present());
}

void report(const DoorData& data, SensorSource* sensors) {
  sensors->reportDoorData(data.has_hood_open(), data.hood_open(), data.has_trunk_open(), data.trunk_open(),
                          data.door_open().data(), data.door_open_size());
}

void report(const LightData& data, SensorSource* sensors) {
  sensors->reportLightData(data.has_head_light_state(), data.head_light_state(),
                           data.has_turn_indicator_state(), data.turn_indicator_state(),
                           data.has_hazard_lights_on(), data.hazard_lights_on());
}

void report(const TirePressureData& data, SensorSource* sensors) {
  sensors->reportTirePressureData(data.tire_pressures_e2().data(), data.tire_pressures_e2_size());
}

void report(const AccelerometerData& data, SensorSource* sensors) {
  sensors->reportAccelerometerData(data.has_acceleration_x_e3(), data.acceleration_x_e3(),
                                   data.has_acceleration_y_e3(), data.acceleration_y_e3(),
                                   data.has_acceleration_z_e3(), data.acceleration_z_e3());
}

void report(const GyroscopeData& data, SensorSource* sensors) {
  sensors->reportGyroscopeData(data.has_rotation_speed_x_e3(), data.rotation_speed_x_e3(),
                               data.has_rotation_speed_y_e3(), data.rotation_speed_y_e3(),
                               data.has_rotation_speed_z_e3(), data.rotation_speed_z_e3());
}

/// The satellites as the arrays that a report takes.
struct Satellites {
  explicit Satellites(const GpsSatelliteData& data)
      : used(new bool[static_cast<std::size_t>(data.satellites_size())]) {
    for (const GpsSatellite& one : data.satellites()) {
      used[prns.size()] = one.used_in_fix();
      prns.push_back(one.prn());
      snrs.push_back(one.snr_e3());
      azimuths.push_back(one.azimuth_e3());
      elevations.push_back(one.elevation_e3());
      placed = placed && one.has_azimuth_e3() && one.has_elevation_e3();
    }
  }

  std::vector<int> prns, snrs, azimuths, elevations;
  std::unique_ptr<bool[]> used;
  bool placed = true;  ///< each of them is known to stand somewhere in the sky
};

void report(const GpsSatelliteData& data, SensorSource* sensors) {
  const int count = data.satellites_size();
  if (count == 0) {
    sensors->reportGpsSatelliteData(data.number_in_use(), data.has_number_in_view(), data.number_in_view(),
                                    nullptr, nullptr, nullptr, nullptr, nullptr);
    return;
  }
  // A report tells as many satellites as it says are in view.
  const Satellites all(data);
  sensors->reportGpsSatelliteData(data.number_in_use(), true, count, all.prns.data(), all.snrs.data(),
                                  all.used.get(), all.placed ? all.azimuths.data() : nullptr,
                                  all.placed ? all.elevations.data() : nullptr);
}

template <class Values>
void reportEach(const Values& values, SensorSource* sensors) {
  for (const auto& value : values) report(value, sensors);
}

}  // namespace

void reportAll(const SensorBatch& batch, SensorSource* sensors) {
  reportEach(batch.location_data(), sensors);
  reportEach(batch.compass_data(), sensors);
  reportEach(batch.speed_data(), sensors);
  reportEach(batch.rpm_data(), sensors);
  reportEach(batch.odometer_data(), sensors);
  reportEach(batch.fuel_data(), sensors);
  reportEach(batch.parking_brake_data(), sensors);
  reportEach(batch.gear_data(), sensors);
  reportEach(batch.diagnostics_data(), sensors);
  reportEach(batch.night_mode_data(), sensors);
  reportEach(batch.environment_data(), sensors);
  reportEach(batch.hvac_data(), sensors);
  reportEach(batch.driving_status_data(), sensors);
  reportEach(batch.dead_reckoning_data(), sensors);
  reportEach(batch.passenger_data(), sensors);
  reportEach(batch.door_data(), sensors);
  reportEach(batch.light_data(), sensors);
  reportEach(batch.tire_pressure_data(), sensors);
  reportEach(batch.accelerometer_data(), sensors);
  reportEach(batch.gyroscope_data(), sensors);
  reportEach(batch.gps_satellite_data(), sensors);
}

}  // namespace headunit
