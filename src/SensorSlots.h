#pragma once

#include <tuple>

#include "protos.pb.h"

/// Where a SensorBatch holds the values of one sensor.
template <class Value>
struct SensorSlot {
  int type;
  google::protobuf::RepeatedPtrField<Value>* (SensorBatch::*values)();

  google::protobuf::RepeatedPtrField<Value>* in(SensorBatch* batch) const { return (batch->*values)(); }
};

/// Every sensor, in the order of the types.
inline constexpr std::tuple SENSOR_SLOTS{
    SensorSlot<LocationData>{SENSOR_LOCATION, &SensorBatch::mutable_location_data},
    SensorSlot<CompassData>{SENSOR_COMPASS, &SensorBatch::mutable_compass_data},
    SensorSlot<SpeedData>{SENSOR_SPEED, &SensorBatch::mutable_speed_data},
    SensorSlot<RpmData>{SENSOR_RPM, &SensorBatch::mutable_rpm_data},
    SensorSlot<OdometerData>{SENSOR_ODOMETER, &SensorBatch::mutable_odometer_data},
    SensorSlot<FuelData>{SENSOR_FUEL, &SensorBatch::mutable_fuel_data},
    SensorSlot<ParkingBrakeData>{SENSOR_PARKING_BRAKE, &SensorBatch::mutable_parking_brake_data},
    SensorSlot<GearData>{SENSOR_GEAR, &SensorBatch::mutable_gear_data},
    SensorSlot<DiagnosticsData>{SENSOR_DIAGNOSTICS, &SensorBatch::mutable_diagnostics_data},
    SensorSlot<NightModeData>{SENSOR_NIGHT_MODE, &SensorBatch::mutable_night_mode_data},
    SensorSlot<EnvironmentData>{SENSOR_ENVIRONMENT, &SensorBatch::mutable_environment_data},
    SensorSlot<HvacData>{SENSOR_HVAC, &SensorBatch::mutable_hvac_data},
    SensorSlot<DrivingStatusData>{SENSOR_DRIVING_STATUS, &SensorBatch::mutable_driving_status_data},
    SensorSlot<DeadReckoningData>{SENSOR_DEAD_RECKONING, &SensorBatch::mutable_dead_reckoning_data},
    SensorSlot<PassengerData>{SENSOR_PASSENGER, &SensorBatch::mutable_passenger_data},
    SensorSlot<DoorData>{SENSOR_DOOR, &SensorBatch::mutable_door_data},
    SensorSlot<LightData>{SENSOR_LIGHT, &SensorBatch::mutable_light_data},
    SensorSlot<TirePressureData>{SENSOR_TIRE_PRESSURE, &SensorBatch::mutable_tire_pressure_data},
    SensorSlot<AccelerometerData>{SENSOR_ACCELEROMETER, &SensorBatch::mutable_accelerometer_data},
    SensorSlot<GyroscopeData>{SENSOR_GYROSCOPE, &SensorBatch::mutable_gyroscope_data},
    SensorSlot<GpsSatelliteData>{SENSOR_GPS_SATELLITE, &SensorBatch::mutable_gps_satellite_data},
};

/// The slot of `type`, known when compiling: a report of the wrong record does not compile.
template <int type>
constexpr const auto& sensorSlot() {
  constexpr const auto& slot = std::get<type - 1>(SENSOR_SLOTS);
  static_assert(slot.type == type, "the slots stand in the order of the types");
  return slot;
}
