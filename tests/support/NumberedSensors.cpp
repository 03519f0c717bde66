#include "NumberedSensors.h"

#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/wire_format_lite.h>

#include "Numbered.h"

namespace test {
namespace {

// Every field that the head unit can fill, each from the number.
struct Sensor {
  void (*report)(SensorSource* sensors, int n);
  void (*fill)(SensorBatch* batch, int n);
};

int lastOf(int n, int count) { return n % count; }
bool isOdd(int n) { return n % 2 != 0; }

void reportSatellites(SensorSource* sensors, int n) {
  const int prns[] = {n, n + 1};
  const int ratios[] = {n + 2, n + 3};
  const bool used[] = {isOdd(n), !isOdd(n)};
  const int azimuths[] = {n + 4, n + 5};
  const int elevations[] = {n + 6, n + 7};
  sensors->reportGpsSatelliteData(n, true, 2, prns, ratios, used, azimuths, elevations);
}

void fillSatellites(SensorBatch* batch, int n) {
  GpsSatelliteData* const data = batch->add_gps_satellite_data();
  data->set_number_in_use(n);
  data->set_number_in_view(2);
  for (const int i : {0, 1}) {
    GpsSatellite* const satellite = data->add_satellites();
    satellite->set_prn(n + i);
    satellite->set_snr_e3(n + 2 + i);
    satellite->set_used_in_fix(isOdd(n + i));
    satellite->set_azimuth_e3(n + 4 + i);
    satellite->set_elevation_e3(n + 6 + i);
  }
}

void fillLocation(SensorBatch* batch, int n) {
  LocationData* const data = batch->add_location_data();
  data->set_timestamp(static_cast<std::uint64_t>(n));
  data->set_latitude_e7(n);
  data->set_longitude_e7(-n);
  data->set_accuracy_e3(static_cast<std::uint32_t>(n + 1));
  data->set_altitude_e2(n + 2);
  data->set_speed_e3(n + 3);
  data->set_bearing_e6(n + 4);
}

void reportDoors(SensorSource* sensors, int n) {
  const bool doors[] = {isOdd(n), isOdd(n / 2), isOdd(n / 4), isOdd(n / 8)};
  sensors->reportDoorData(true, isOdd(n), true, !isOdd(n), doors, 4);
}

void fillDoors(SensorBatch* batch, int n) {
  DoorData* const data = batch->add_door_data();
  data->set_hood_open(isOdd(n));
  data->set_trunk_open(!isOdd(n));
  for (const int i : {1, 2, 4, 8}) data->add_door_open(isOdd(n / i));
}

void fillLight(SensorBatch* batch, int n) {
  LightData* const data = batch->add_light_data();
  data->set_head_light_state(static_cast<HeadLightState>(1 + lastOf(n, 3)));
  data->set_turn_indicator_state(static_cast<TurnIndicatorState>(3 - lastOf(n, 3)));
  data->set_hazard_lights_on(isOdd(n));
}

void fillFuel(SensorBatch* batch, int n) {
  FuelData* const data = batch->add_fuel_data();
  data->set_fuel_level(lastOf(n, 100));
  data->set_range(n);
  data->set_low_fuel_warning(isOdd(n));
}

template <class Three>
void fillThree(Three* data, int n, void (Three::*x)(int), void (Three::*y)(int), void (Three::*z)(int)) {
  (data->*x)(n);
  (data->*y)(-n);
  (data->*z)(n + 1);
}

void fillCompass(SensorBatch* batch, int n) {
  using Data = CompassData;
  fillThree(batch->add_compass_data(), n, &Data::set_bearing_e6, &Data::set_pitch_e6, &Data::set_roll_e6);
}

void fillAccelerometer(SensorBatch* batch, int n) {
  using Data = AccelerometerData;
  fillThree(batch->add_accelerometer_data(), n, &Data::set_acceleration_x_e3, &Data::set_acceleration_y_e3,
            &Data::set_acceleration_z_e3);
}

void fillGyroscope(SensorBatch* batch, int n) {
  using Data = GyroscopeData;
  fillThree(batch->add_gyroscope_data(), n, &Data::set_rotation_speed_x_e3, &Data::set_rotation_speed_y_e3,
            &Data::set_rotation_speed_z_e3);
}

void reportTroubles(SensorSource* sensors, int n) {
  std::string codes = numberedText(static_cast<std::uint64_t>(n));
  sensors->reportDiagnosticsData(reinterpret_cast<unsigned char*>(codes.data()),
                                 static_cast<unsigned int>(codes.size()));
}

void fillTroubles(SensorBatch* batch, int n) {
  batch->add_diagnostics_data()->set_dtc(numberedText(static_cast<std::uint64_t>(n)));
}

void fillEnvironment(SensorBatch* batch, int n) {
  EnvironmentData* const data = batch->add_environment_data();
  data->set_temperature_e3(n);
  data->set_pressure_e3(-n);
}

void fillHvac(SensorBatch* batch, int n) {
  HvacData* const data = batch->add_hvac_data();
  data->set_target_temperature_e3(n);
  data->set_current_temperature_e3(-n);
}

void reportWheels(SensorSource* sensors, int n) {
  const int speeds[] = {n, n + 1, n + 2, n + 3};
  sensors->reportDeadReckoningData(true, -n, speeds, 4);
}

void fillWheels(SensorBatch* batch, int n) {
  DeadReckoningData* const data = batch->add_dead_reckoning_data();
  data->set_steering_angle_e1(-n);
  for (const int i : {0, 1, 2, 3}) data->add_wheel_speed_e3(n + i);
}

void reportTires(SensorSource* sensors, int n) {
  const int pressures[] = {n, n + 1, n + 2, n + 3};
  sensors->reportTirePressureData(pressures, 4);
}

void fillTires(SensorBatch* batch, int n) {
  TirePressureData* const data = batch->add_tire_pressure_data();
  for (const int i : {0, 1, 2, 3}) data->add_tire_pressures_e2(n + i);
}

using Source = SensorSource;
using Batch = SensorBatch;

// By type, less 1.
const Sensor SENSORS[SENSOR_TYPES] = {
    {[](Source* s, int n) {
       const auto time = static_cast<unsigned long long>(n);
       s->reportLocationData(time, n, -n, true, n + 1, true, n + 2, true, n + 3, true, n + 4);
     },
     fillLocation},
    {[](Source* s, int n) { s->reportCompassData3D(n, true, -n, true, n + 1); }, fillCompass},
    {[](Source* s, int n) { s->reportSpeedData(n); },
     [](Batch* b, int n) { b->add_speed_data()->set_speed_e3(n); }},
    {[](Source* s, int n) { s->reportRpmData(n); },
     [](Batch* b, int n) { b->add_rpm_data()->set_rpm_e3(n); }},
    {[](Source* s, int n) { s->reportOdometerData(n); },
     [](Batch* b, int n) { b->add_odometer_data()->set_kms_e1(n); }},
    {[](Source* s, int n) { s->reportFuelData(true, lastOf(n, 100), true, n, true, isOdd(n)); }, fillFuel},
    {[](Source* s, int n) { s->reportParkingBrakeData(isOdd(n)); },
     [](Batch* b, int n) { b->add_parking_brake_data()->set_parking_brake(isOdd(n)); }},
    {[](Source* s, int n) { s->reportGearData(lastOf(n, 7)); },
     [](Batch* b, int n) { b->add_gear_data()->set_gear(static_cast<Gear>(lastOf(n, 7))); }},
    {reportTroubles, fillTroubles},
    {[](Source* s, int n) { s->reportNightModeData(isOdd(n)); },
     [](Batch* b, int n) { b->add_night_mode_data()->set_night_mode(isOdd(n)); }},
    {[](Source* s, int n) { s->reportEnvironmentData(true, n, true, -n); }, fillEnvironment},
    {[](Source* s, int n) { s->reportHvacData(true, n, true, -n); }, fillHvac},
    {[](Source* s, int n) { s->reportDrivingStatusData(n); },
     [](Batch* b, int n) { b->add_driving_status_data()->set_status(n); }},
    {reportWheels, fillWheels},
    {[](Source* s, int n) { s->reportPassengerData(isOdd(n)); },
     [](Batch* b, int n) { b->add_passenger_data()->set_passenger_present(isOdd(n)); }},
    {reportDoors, fillDoors},
    {[](Source* s, int n) {
       s->reportLightData(true, 1 + lastOf(n, 3), true, 3 - lastOf(n, 3), true, isOdd(n));
     },
     fillLight},
    {reportTires, fillTires},
    {[](Source* s, int n) { s->reportAccelerometerData(true, n, true, -n, true, n + 1); }, fillAccelerometer},
    {[](Source* s, int n) { s->reportGyroscopeData(true, n, true, -n, true, n + 1); }, fillGyroscope},
    {reportSatellites, fillSatellites}};

}  // namespace

void reportSensor(SensorSource* sensors, int type, int number) { SENSORS[type - 1].report(sensors, number); }

SensorBatch sensorReport(int type, int number) {
  SensorBatch batch;
  SENSORS[type - 1].fill(&batch, number);
  return batch;
}

int sensorTypeOf(const SensorBatch& batch) {
  const std::string wire = batch.SerializePartialAsString();
  google::protobuf::io::CodedInputStream input(reinterpret_cast<const std::uint8_t*>(wire.data()),
                                               static_cast<int>(wire.size()));
  // A batch numbers its fields as the sensors are numbered.
  return google::protobuf::internal::WireFormatLite::GetTagFieldNumber(input.ReadTag());
}

}  // namespace test
