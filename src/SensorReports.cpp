#include "SensorSlots.h"
#include "SensorSource.h"

// The host's side of SensorSource: one report for each sensor. Each fills a record, and the record's way, to
// the phone or to the parked values, is the same for all.

namespace {

/// The value that is parked, or a new one in its place.
template <class Value>
Value* parkedValue(google::protobuf::RepeatedPtrField<Value>* values) {
  return values->empty() ? values->Add() : values->Mutable(0);
}

template <class Element>
void replaceList(google::protobuf::RepeatedField<Element>* list, const Element* elements, int count) {
  if (count > 0 && elements != nullptr) list->Assign(elements, elements + count);
}

}  // namespace

template <int type, class Fill>
int SensorSource::report(const Fill& fill) {
  return isLive(type) ? sendValue<type>(fill) : parkValue<type>(fill);
}

template <int type, class Fill>
int SensorSource::sendValue(const Fill& fill) {
  SensorBatch batch;
  fill(sensorSlot<type>().in(&batch)->Add());
  sendSensorBatch(batch);
  return STATUS_SUCCESS;
}

template <int type, class Fill>
int SensorSource::parkValue(const Fill& fill) {
  Autolock guard(&lock);
  fill(parkedValue(sensorSlot<type>().in(&lastValues)));
  return STATUS_SUCCESS;
}

/// For the sensors whose parked value each report replaces. Whether to send is decided anew at the end: a
/// phone that starts the sensor in between gets an empty batch, and one that stops it gets nothing, and
/// nothing is parked.
template <int type, class Fill>
int SensorSource::reportWhole(const Fill& fill) {
  SensorBatch batch;
  if (isLive(type)) {
    fill(sensorSlot<type>().in(&batch)->Add());
  } else {
    Autolock guard(&lock);
    auto* const values = sensorSlot<type>().in(&lastValues);
    values->Clear();
    fill(values->Add());
  }
  if (isLive(type)) sendSensorBatch(batch);
  return STATUS_SUCCESS;
}

int SensorSource::reportLocationData(unsigned long long timestamp, int latitudeE7, int longitudeE7,
                                     bool hasAccuracy, int accuracyE3, bool hasAltitude, int altitudeE2,
                                     bool hasSpeed, int speedE3, bool hasBearing, int bearingE6) {
  return reportWhole<SENSOR_LOCATION>([=](LocationData* data) {
    data->set_timestamp(timestamp);
    data->set_latitude_e7(latitudeE7);
    data->set_longitude_e7(longitudeE7);
    if (hasAccuracy) data->set_accuracy_e3(static_cast<unsigned int>(accuracyE3));
    if (hasAltitude) data->set_altitude_e2(altitudeE2);
    if (hasSpeed) data->set_speed_e3(speedE3);
    if (hasBearing) data->set_bearing_e6(bearingE6);
  });
}

int SensorSource::reportCompassData3D(int bearingE6, bool hasPitch, int pitchE6, bool hasRoll, int rollE6) {
  return report<SENSOR_COMPASS>([=](CompassData* data) {
    data->set_bearing_e6(bearingE6);
    if (hasPitch) data->set_pitch_e6(pitchE6);
    if (hasRoll) data->set_roll_e6(rollE6);
  });
}

int SensorSource::reportCompassData(int bearingE6) {
  return reportCompassData3D(bearingE6, false, 0, false, 0);
}

int SensorSource::reportSpeedData(int speedE3) {
  return report<SENSOR_SPEED>([=](SpeedData* data) { data->set_speed_e3(speedE3); });
}

int SensorSource::reportRpmData(int rpmE3) {
  return report<SENSOR_RPM>([=](RpmData* data) { data->set_rpm_e3(rpmE3); });
}

int SensorSource::reportOdometerData(int kmsE1) {
  return report<SENSOR_ODOMETER>([=](OdometerData* data) { data->set_kms_e1(kmsE1); });
}

int SensorSource::reportFuelData(bool hasFuelLevel, int fuelLevel, bool hasRange, int range,
                                 bool hasLowFuelWarning, bool lowFuelWarning) {
  return reportWhole<SENSOR_FUEL>([=](FuelData* data) {
    populateFuelData(data, hasFuelLevel, fuelLevel, hasRange, range, hasLowFuelWarning, lowFuelWarning);
  });
}

void SensorSource::populateFuelData(FuelData* data, bool hasFuelLevel, int fuelLevel, bool hasRange,
                                    int range, bool hasLowFuelWarning, bool lowFuelWarning) {
  if (hasFuelLevel) data->set_fuel_level(fuelLevel);
  if (hasRange) data->set_range(range);
  if (hasLowFuelWarning) data->set_low_fuel_warning(lowFuelWarning);
}

int SensorSource::reportParkingBrakeData(bool parkingBrake) {
  return report<SENSOR_PARKING_BRAKE>([=](ParkingBrakeData* data) { data->set_parking_brake(parkingBrake); });
}

int SensorSource::reportGearData(int gear) {
  return report<SENSOR_GEAR>([=](GearData* data) { data->set_gear(static_cast<Gear>(gear)); });
}

int SensorSource::reportDiagnosticsData(unsigned char* codes, unsigned int length) {
  return report<SENSOR_DIAGNOSTICS>([=](DiagnosticsData* data) { data->set_dtc(codes, length); });
}

int SensorSource::reportNightModeData(bool nightMode) {
  return report<SENSOR_NIGHT_MODE>([=](NightModeData* data) { data->set_night_mode(nightMode); });
}

int SensorSource::reportEnvironmentData(bool hasTemperature, int temperatureE3, bool hasPressure,
                                        int pressureE3) {
  return report<SENSOR_ENVIRONMENT>([=](EnvironmentData* data) {
    if (hasTemperature) data->set_temperature_e3(temperatureE3);
    if (hasPressure) data->set_pressure_e3(pressureE3);
  });
}

int SensorSource::reportHvacData(bool hasTargetTemperature, int targetTemperatureE3,
                                 bool hasCurrentTemperature, int currentTemperatureE3) {
  const auto fill = [=](HvacData* data) {
    if (hasTargetTemperature) data->set_target_temperature_e3(targetTemperatureE3);
    if (hasCurrentTemperature) data->set_current_temperature_e3(currentTemperatureE3);
  };
  if (!isLive(SENSOR_HVAC)) return parkValue<SENSOR_HVAC>(fill);
  sendSensorBatch(SensorBatch());  // phones expect an empty batch ahead of each of these
  return sendValue<SENSOR_HVAC>(fill);
}

int SensorSource::reportDrivingStatusData(int status) {
  return report<SENSOR_DRIVING_STATUS>([=](DrivingStatusData* data) { data->set_status(status); });
}

int SensorSource::reportDeadReckoningData(bool hasSteeringAngle, int steeringAngleE1,
                                          const int* wheelSpeedsE3, int wheelCount) {
  return report<SENSOR_DEAD_RECKONING>([=](DeadReckoningData* data) {
    if (hasSteeringAngle) data->set_steering_angle_e1(steeringAngleE1);
    replaceList(data->mutable_wheel_speed_e3(), wheelSpeedsE3, wheelCount);
  });
}

int SensorSource::reportPassengerData(bool passengerPresent) {
  return report<SENSOR_PASSENGER>(
      [=](PassengerData* data) { data->set_passenger_present(passengerPresent); });
}

int SensorSource::reportDoorData(bool hasHood, bool hoodOpen, bool hasTrunk, bool trunkOpen,
                                 const bool* doorsOpen, int doorCount) {
  return report<SENSOR_DOOR>([=](DoorData* data) {
    if (hasHood) data->set_hood_open(hoodOpen);
    if (hasTrunk) data->set_trunk_open(trunkOpen);
    replaceList(data->mutable_door_open(), doorsOpen, doorCount);
  });
}

int SensorSource::reportLightData(bool hasHeadLightState, int headLightState, bool hasTurnIndicatorState,
                                  int turnIndicatorState, bool hasHazardLights, bool hazardLightsOn) {
  return report<SENSOR_LIGHT>([=](LightData* data) {
    if (hasHeadLightState) data->set_head_light_state(static_cast<HeadLightState>(headLightState));
    if (hasTurnIndicatorState)
      data->set_turn_indicator_state(static_cast<TurnIndicatorState>(turnIndicatorState));
    if (hasHazardLights) data->set_hazard_lights_on(hazardLightsOn);
  });
}

int SensorSource::reportTirePressureData(const int* pressuresE2, int tireCount) {
  return report<SENSOR_TIRE_PRESSURE>([=](TirePressureData* data) {
    replaceList(data->mutable_tire_pressures_e2(), pressuresE2, tireCount);
  });
}

int SensorSource::reportAccelerometerData(bool hasX, int accelerationXE3, bool hasY, int accelerationYE3,
                                          bool hasZ, int accelerationZE3) {
  return report<SENSOR_ACCELEROMETER>([=](AccelerometerData* data) {
    if (hasX) data->set_acceleration_x_e3(accelerationXE3);
    if (hasY) data->set_acceleration_y_e3(accelerationYE3);
    if (hasZ) data->set_acceleration_z_e3(accelerationZE3);
  });
}

int SensorSource::reportGyroscopeData(bool hasX, int rotationSpeedXE3, bool hasY, int rotationSpeedYE3,
                                      bool hasZ, int rotationSpeedZE3) {
  return report<SENSOR_GYROSCOPE>([=](GyroscopeData* data) {
    if (hasX) data->set_rotation_speed_x_e3(rotationSpeedXE3);
    if (hasY) data->set_rotation_speed_y_e3(rotationSpeedYE3);
    if (hasZ) data->set_rotation_speed_z_e3(rotationSpeedZE3);
  });
}

int SensorSource::reportGpsSatelliteData(int numberInUse, bool hasNumberInView, int numberInView,
                                         const int* prns, const int* snrsE3, const bool* usedInFix,
                                         const int* azimuthsE3, const int* elevationsE3) {
  return report<SENSOR_GPS_SATELLITE>([=](GpsSatelliteData* data) {
    data->set_number_in_use(numberInUse);
    if (!hasNumberInView) return;
    data->set_number_in_view(numberInView);
    if (prns == nullptr || snrsE3 == nullptr || usedInFix == nullptr) return;
    for (int i = 0; i < numberInView; ++i) {
      GpsSatellite* const satellite = data->add_satellites();
      satellite->set_prn(prns[i]);
      satellite->set_snr_e3(snrsE3[i]);
      satellite->set_used_in_fix(usedInFix[i]);
      if (azimuthsE3 == nullptr || elevationsE3 == nullptr) continue;
      satellite->set_azimuth_e3(azimuthsE3[i]);
      satellite->set_elevation_e3(elevationsE3[i]);
    }
  });
}
