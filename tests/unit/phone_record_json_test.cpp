#include "phone/RecordJson.h"

#include <gmock/gmock.h>

#include "Bytes.h"

namespace test {
namespace {

/// The JSON of a batch given by its bytes.
std::string batchJson(const std::string& hex) {
  const Bytes body = bytes(hex);
  SensorBatch batch;
  EXPECT_TRUE(batch.ParsePartialFromArray(body.data(), static_cast<int>(body.size())));
  return phone::toJson(batch).dump();
}

std::string reportJson(const std::string& hex) {
  const Bytes body = bytes(hex);
  InputReport report;
  EXPECT_TRUE(report.ParsePartialFromArray(body.data(), static_cast<int>(body.size())));
  return phone::toJson(report).dump();
}

TEST(PhoneRecordJson, TellsEachSensorsFieldsByName) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"0A 0E 08 01 10 02 18 03 20 04 28 05 30 06 38 07",
       R"({"location_data":[{"timestamp":1,"latitude_e7":2,"longitude_e7":3,"accuracy_e3":4,"altitude_e2":5,)"
       R"("speed_e3":6,"bearing_e6":7}]})"},
      {"12 06 08 01 10 02 18 03", R"({"compass_data":[{"bearing_e6":1,"pitch_e6":2,"roll_e6":3}]})"},
      {"1A 06 08 01 10 01 18 00",
       R"({"speed_data":[{"speed_e3":1,"cruise_engaged":true,"cruise_set_speed":false}]})"},
      {"22 02 08 01", R"({"rpm_data":[{"rpm_e3":1}]})"},
      {"2A 04 08 01 10 02", R"({"odometer_data":[{"kms_e1":1,"trip_kms_e1":2}]})"},
      {"32 06 08 01 10 02 18 01", R"({"fuel_data":[{"fuel_level":1,"range":2,"low_fuel_warning":true}]})"},
      {"3A 02 08 01", R"({"parking_brake_data":[{"parking_brake":true}]})"},
      {"42 02 08 65", R"({"gear_data":[{"gear":101}]})"},
      {"4A 05 0A 03 00 9F FF", R"({"diagnostics_data":[{"dtc":"009fff"}]})"},
      {"52 02 08 01", R"({"night_mode_data":[{"night_mode":true}]})"},
      {"5A 06 08 01 10 02 18 03", R"({"environment_data":[{"temperature_e3":1,"pressure_e3":2,"rain":3}]})"},
      {"62 04 08 01 10 02", R"({"hvac_data":[{"target_temperature_e3":1,"current_temperature_e3":2}]})"},
      {"6A 02 08 1F", R"({"driving_status_data":[{"status":31}]})"},
      {"72 06 08 01 10 02 10 03",
       R"({"dead_reckoning_data":[{"steering_angle_e1":1,"wheel_speed_e3":[2,3]}]})"},
      {"7A 02 08 00", R"({"passenger_data":[{"passenger_present":false}]})"},
      {"82 01 08 08 01 10 00 18 01 18 00",
       R"({"door_data":[{"hood_open":true,"trunk_open":false,"door_open":[true,false]}]})"},
      {"8A 01 06 08 02 10 03 18 01",
       R"({"light_data":[{"head_light_state":2,"turn_indicator_state":3,"hazard_lights_on":true}]})"},
      {"92 01 04 08 01 08 02", R"({"tire_pressure_data":[{"tire_pressures_e2":[1,2]}]})"},
      {"9A 01 06 08 01 10 02 18 03",
       R"({"accelerometer_data":[{"acceleration_x_e3":1,"acceleration_y_e3":2,"acceleration_z_e3":3}]})"},
      {"A2 01 06 08 01 10 02 18 03",
       R"({"gyroscope_data":[{"rotation_speed_x_e3":1,"rotation_speed_y_e3":2,"rotation_speed_z_e3":3}]})"},
      {"AA 01 10 08 01 10 02 1A 0A 08 03 10 04 18 01 20 05 28 06",
       R"({"gps_satellite_data":[{"number_in_use":1,"number_in_view":2,"satellites":[{"prn":3,"snr_e3":4,)"
       R"("used_in_fix":true,"azimuth_e3":5,"elevation_e3":6}]}]})"},
  };
  ASSERT_EQ(cases.size(), 21U);
  for (const auto& [hex, json] : cases) EXPECT_EQ(batchJson(hex), json);
}

TEST(PhoneRecordJson, LeavesOutWhatIsNotSet) {
  EXPECT_EQ(batchJson(""), "{}");
  EXPECT_EQ(batchJson("8A 01 00"), R"({"light_data":[{}]})");
  EXPECT_EQ(batchJson("1A 02 08 05 1A 02 08 06"), R"({"speed_data":[{"speed_e3":5},{"speed_e3":6}]})");
}

TEST(PhoneRecordJson, KeepsNegativeAndLargeNumbers) {
  EXPECT_EQ(batchJson("1A 0B 08 FF FF FF FF FF FF FF FF FF 01"), R"({"speed_data":[{"speed_e3":-1}]})");
  EXPECT_EQ(reportJson("08 FF FF FF FF FF FF FF FF FF 01"), R"({"timestamp":18446744073709551615})");
}

TEST(PhoneRecordJson, TellsTouches) {
  EXPECT_EQ(
      reportJson("08 07 10 02 1A 0C 0A 06 08 64 10 32 18 01 10 00 18 05"),
      R"({"timestamp":7,"disp_channel_id":2,"touch_event":{"pointer_data":[{"x":100,"y":50,"pointer_id":1}],)"
      R"("action_index":0,"action":5}})");
  EXPECT_EQ(reportJson("08 07 3A 02 18 01"), R"({"timestamp":7,"touchpad_event":{"action":1}})");
}

TEST(PhoneRecordJson, TellsKeysAndKnobs) {
  EXPECT_EQ(
      reportJson("08 01 22 0A 0A 08 08 03 10 01 18 02 20 00"),
      R"({"timestamp":1,"key_event":{"keys":[{"keycode":3,"down":true,"metastate":2,"longpress":false}]}})");
  EXPECT_EQ(reportJson("08 02 2A 06 0A 04 08 04 10 09"),
            R"({"timestamp":2,"absolute_event":{"data":[{"keycode":4,"value":9}]}})");
  EXPECT_EQ(reportJson("08 03 32 08 0A 06 08 80 80 04 10 01"),
            R"({"timestamp":3,"relative_event":{"data":[{"keycode":65536,"delta":1}]}})");
}

}  // namespace
}  // namespace test
