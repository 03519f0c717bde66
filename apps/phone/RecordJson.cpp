// The schema is built for the lite runtime, which knows no field names: this table is where they stand.
#include "phone/RecordJson.h"

namespace phone {

namespace {

using Json = nlohmann::ordered_json;

template <class Record>
Json allOf(const google::protobuf::RepeatedPtrField<Record>& records);

Json hexadecimal(const std::string& bytes) {
  constexpr char digits[] = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    text += digits[static_cast<unsigned char>(byte) >> 4];
    text += digits[static_cast<unsigned char>(byte) & 0x0f];
  }
  return text;
}

// The field's name must be what it is read by, which only the preprocessor can promise.
#define VALUE(name) \
  if (record.has_##name()) json[#name] = record.name()
#define RECORD(name) \
  if (record.has_##name()) json[#name] = fields(record.name())
#define VALUES(name) \
  if (record.name##_size() > 0) json[#name] = Json(record.name())
#define RECORDS(name) \
  if (record.name##_size() > 0) json[#name] = allOf(record.name())
#define FIELDS(Record, ...)                            \
  Json fields([[maybe_unused]] const Record& record) { \
    Json json = Json::object();                        \
    __VA_ARGS__;                                       \
    return json;                                       \
  }

FIELDS(GpsSatellite, VALUE(prn); VALUE(snr_e3); VALUE(used_in_fix); VALUE(azimuth_e3); VALUE(elevation_e3))
FIELDS(LocationData, VALUE(timestamp); VALUE(latitude_e7); VALUE(longitude_e7); VALUE(accuracy_e3);
       VALUE(altitude_e2); VALUE(speed_e3); VALUE(bearing_e6))
FIELDS(CompassData, VALUE(bearing_e6); VALUE(pitch_e6); VALUE(roll_e6))
FIELDS(SpeedData, VALUE(speed_e3); VALUE(cruise_engaged); VALUE(cruise_set_speed))
FIELDS(RpmData, VALUE(rpm_e3))
FIELDS(OdometerData, VALUE(kms_e1); VALUE(trip_kms_e1))
FIELDS(FuelData, VALUE(fuel_level); VALUE(range); VALUE(low_fuel_warning))
FIELDS(ParkingBrakeData, VALUE(parking_brake))
FIELDS(GearData, VALUE(gear))
FIELDS(DiagnosticsData, if (record.has_dtc()) json["dtc"] = hexadecimal(record.dtc()))
FIELDS(NightModeData, VALUE(night_mode))
FIELDS(EnvironmentData, VALUE(temperature_e3); VALUE(pressure_e3); VALUE(rain))
FIELDS(HvacData, VALUE(target_temperature_e3); VALUE(current_temperature_e3))
FIELDS(DrivingStatusData, VALUE(status))
FIELDS(DeadReckoningData, VALUE(steering_angle_e1); VALUES(wheel_speed_e3))
FIELDS(PassengerData, VALUE(passenger_present))
FIELDS(DoorData, VALUE(hood_open); VALUE(trunk_open); VALUES(door_open))
FIELDS(LightData, VALUE(head_light_state); VALUE(turn_indicator_state); VALUE(hazard_lights_on))
FIELDS(TirePressureData, VALUES(tire_pressures_e2))
FIELDS(AccelerometerData, VALUE(acceleration_x_e3); VALUE(acceleration_y_e3); VALUE(acceleration_z_e3))
FIELDS(GyroscopeData, VALUE(rotation_speed_x_e3); VALUE(rotation_speed_y_e3); VALUE(rotation_speed_z_e3))
FIELDS(GpsSatelliteData, VALUE(number_in_use); VALUE(number_in_view); RECORDS(satellites))

FIELDS(TouchEvent_Pointer, VALUE(x); VALUE(y); VALUE(pointer_id))
FIELDS(TouchEvent, RECORDS(pointer_data); VALUE(action_index); VALUE(action))
FIELDS(KeyEvent_Key, VALUE(keycode); VALUE(down); VALUE(metastate); VALUE(longpress))
FIELDS(KeyEvent, RECORDS(keys))
FIELDS(AbsoluteEvent_Abs, VALUE(keycode); VALUE(value))
FIELDS(AbsoluteEvent, RECORDS(data))
FIELDS(RelativeEvent_Rel, VALUE(keycode); VALUE(delta))
FIELDS(RelativeEvent, RECORDS(data))

FIELDS(SensorBatch, RECORDS(location_data); RECORDS(compass_data); RECORDS(speed_data); RECORDS(rpm_data);
       RECORDS(odometer_data); RECORDS(fuel_data); RECORDS(parking_brake_data); RECORDS(gear_data);
       RECORDS(diagnostics_data); RECORDS(night_mode_data); RECORDS(environment_data); RECORDS(hvac_data);
       RECORDS(driving_status_data); RECORDS(dead_reckoning_data); RECORDS(passenger_data);
       RECORDS(door_data); RECORDS(light_data); RECORDS(tire_pressure_data); RECORDS(accelerometer_data);
       RECORDS(gyroscope_data); RECORDS(gps_satellite_data))
FIELDS(InputReport, VALUE(timestamp); VALUE(disp_channel_id); RECORD(touch_event); RECORD(key_event);
       RECORD(absolute_event); RECORD(relative_event); RECORD(touchpad_event))

template <class Record>
Json allOf(const google::protobuf::RepeatedPtrField<Record>& records) {
  Json list = Json::array();
  for (const Record& record : records) list.push_back(fields(record));
  return list;
}

}  // namespace

Json toJson(const SensorBatch& batch) { return fields(batch); }
Json toJson(const InputReport& report) { return fields(report); }

}  // namespace phone
