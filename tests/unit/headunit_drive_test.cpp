#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "SensorTest.h"
#include "headunit/DriveScript.h"
#include "headunit/VehicleSensors.h"

namespace headunit {
namespace {

using std::chrono::seconds;
using test::bytes;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

// ---- What is wrong with a file, and where ----

std::string problemOf(const std::string& text) {
  std::string error;
  EXPECT_FALSE(parseDrive(text, &error)) << text;
  return error;
}

/// The problem of a drive whose only step has this member, in line 3.
std::string problemOfValue(const std::string& member) {
  return problemOf("{\"steps\": [\n{\"t_s\": 0,\n" + member + "}]}");
}

TEST(HeadunitDriveFile, TellsTheLineOfWhatIsNotJson) {
  EXPECT_THAT(problemOf("{\n\"steps\": [\n{\"t_s\": 0,}\n]}"), HasSubstr("line 3: this is not JSON"));
  EXPECT_THAT(problemOf("{\"steps\": []} x"), HasSubstr("line 1: this is not JSON"));
  EXPECT_THAT(problemOf("{\"steps\": []}\n7"), HasSubstr("line 2: this is not JSON"));
}

TEST(HeadunitDriveFile, TellsThatItEndsTooSoonWhereverItIsCut) {
  const std::string whole = "{\"loop\": true,\n\"steps\": [{\"t_s\": 12.5e0, \"gear\": \"park\"}]\n}";
  for (std::size_t length = 0; length < whole.size(); ++length) {
    const std::string part = whole.substr(0, length);
    EXPECT_THAT(problemOf(part), EndsWith(": the file ends too soon")) << part;
  }
  EXPECT_EQ(problemOf("{\n\"steps\": [\n{\"t_s\": 0\n"), "line 3: the file ends too soon");
}

TEST(HeadunitDriveFile, TellsOfNumbersThatNoNumberCanHold) {
  EXPECT_EQ(problemOfValue("\"rpm\": 1e999"), "line 3: the number 1e999 is too large");
}

TEST(HeadunitDriveFile, IsNotNestedWithoutEnd) {
  EXPECT_THAT(problemOf("{\"steps\":\n" + std::string(1'000'000, '[')),
              HasSubstr("line 2: lists and objects are nested too deeply"));
}

TEST(HeadunitDriveFile, IsComplainedAboutInOneLineOfATerminal) {
  EXPECT_THAT(problemOfValue("\"\\u001b[2J\\u0007\\u009b\": 1"),
              HasSubstr("there is no \"?[2J??\" in a step"));
  EXPECT_THAT(problemOfValue("\"\\u001b\": 1, \"\\u001b\": 1"), HasSubstr("\"?\" stands twice in a step"));
  const std::string endless(100'000, 'x');
  EXPECT_LT(problemOfValue("\"" + endless + "\": 1").size(), 1000U);
  EXPECT_LT(problemOfValue("\"" + endless + "\": 1, \"" + endless + "\": 1").size(), 1000U);
  EXPECT_LT(problemOf("\"" + endless + "\" 1").size(), 1000U);
  EXPECT_THAT(problemOf("[\"\xC2\x9B\" 1]"), Not(HasSubstr("\xC2\x9B")));
}

TEST(HeadunitDriveFile, TellsTheLineOfANumberThatIsOutOfRange) {
  EXPECT_EQ(
      problemOf("{\"steps\": [\n{\"t_s\": 0, \"speed_kmh\": 50},\n{\"t_s\": 1,\n\"speed_kmh\":\n 1000\n}]}"),
      "line 5: \"speed_kmh\" is 1000, and must be from -200 to 600 km/h");
}

TEST(HeadunitDriveFile, TellsOfMembersThatDoNotExist) {
  EXPECT_THAT(problemOf("{\"steps\": [{\"t_s\": 0}],\n\"lop\": true}"),
              HasSubstr("line 2: there is no \"lop\" in a drive; it may have: length_s, loop, steps"));
  EXPECT_THAT(problemOfValue("\"sped\": 1"), HasSubstr("line 3: there is no \"sped\" in a step"));
  EXPECT_THAT(problemOfValue("\"fuel\": {\"level\": 1}"), HasSubstr("there is no \"level\" in fuel"));
}

TEST(HeadunitDriveFile, TellsOfMembersThatStandTwice) {
  EXPECT_EQ(problemOfValue("\"rpm\": 1,\n\"rpm\": 2"), "line 4: \"rpm\" stands twice in a step");
}

TEST(HeadunitDriveFile, TellsOfMembersThatAreMissing) {
  EXPECT_THAT(problemOf("{}"), HasSubstr("a drive needs \"steps\""));
  EXPECT_EQ(problemOf("{\n\"steps\": []\n}"), "line 2: a drive needs \"steps\", one at least");
  EXPECT_THAT(problemOf("{\"steps\": [\n{\"rpm\": 1}]}"), HasSubstr("line 2: a step needs \"t_s\""));
  EXPECT_THAT(problemOfValue("\"location\": {\"latitude_deg\": 1}"),
              HasSubstr("location needs \"longitude_deg\""));
}

TEST(HeadunitDriveFile, TellsOfValuesOfTheWrongKind) {
  EXPECT_THAT(problemOf("[]"), HasSubstr("\"a drive\" must be an object"));
  EXPECT_THAT(problemOfValue("\"rpm\": \"fast\""), HasSubstr("line 3: \"rpm\" must be a number"));
  EXPECT_THAT(problemOfValue("\"night_mode\": 1"), HasSubstr("\"night_mode\" must be true or false"));
  EXPECT_THAT(problemOfValue("\"tires_kpa\": 240"), HasSubstr("\"tires_kpa\" must be a list"));
  EXPECT_THAT(problemOfValue("\"compass\": 90"), HasSubstr("\"compass\" must be an object"));
  EXPECT_THAT(problemOfValue("\"gear\": \"7\""), HasSubstr("\"gear\" must be one of \"neutral\", \"1\","));
  EXPECT_THAT(problemOfValue("\"satellites\": {}"), HasSubstr("\"satellites\" must be a list"));
}

TEST(HeadunitDriveFile, TellsOfTimesThatGoBack) {
  EXPECT_EQ(problemOf("{\"steps\": [{\"t_s\": 2},\n{\"t_s\": 1}]}"),
            "line 2: this step is earlier than the one before it");
}

TEST(HeadunitDriveFile, TellsTheLineOfALengthThatIsTooShort) {
  const std::string words = "\"length_s\" must be 0.01 at least, and not before the last step";
  EXPECT_EQ(problemOf("{\"steps\": [{\"t_s\": 2}],\n\n\"length_s\": 1\n}"), "line 3: " + words);
  EXPECT_EQ(problemOf("{\"steps\": [{\"t_s\": 0}],\n\"length_s\": 0}"), "line 2: " + words);
}

// ---- How much it may tell ----

/// A drive that begins anew after a second, and each of whose steps, one a line, has so many entries.
std::string driveOf(const std::vector<std::pair<double, int>>& steps) {
  std::ostringstream text;
  text << "{\"length_s\": 1, \"steps\": [";
  for (const auto& [time, entries] : steps) {
    text << (&time == &steps[0].first ? "\n" : ",\n") << "{\"t_s\": " << time << ", \"tires_kpa\": [240";
    for (int i = 1; i < entries; ++i) text << ", 240";
    text << "]}";
  }
  return text.str() + "]}";
}

testing::Matcher<std::string> tooMuchInLine(int line) {
  return AllOf(StartsWith("line " + std::to_string(line) + ": "), HasSubstr("more than 2000 numbers"));
}

bool isPlayed(const std::string& text) {
  std::string error;
  return parseDrive(text, &error).has_value();
}

TEST(HeadunitDriveFile, TellsTwoThousandEntriesASecondAtMost) {
  EXPECT_TRUE(isPlayed(driveOf({{0, 1000}, {0.5, 1000}})));
  EXPECT_THAT(problemOf(driveOf({{0, 1000}, {0.5, 1000}, {0.5, 1}})), tooMuchInLine(4));
  EXPECT_THAT(problemOf(driveOf({{0.25, 2001}})), tooMuchInLine(2));
}

TEST(HeadunitDriveFile, TellsNoMoreInTheSecondOfItsNewBeginning) {
  const auto drive = [](const char* length, int entries, const char* rest) {
    std::string bytes = "1";
    for (int i = 1; i < entries; ++i) bytes += ",1";
    return std::string(
               "{\"steps\": [\n{\"t_s\": 0.4, \"satellites\": []},\n{\"t_s\": 9, \"diagnostics\": [") +
           bytes + "]}], \"length_s\": " + length + rest + "}";
  };
  EXPECT_TRUE(isPlayed(drive("9.5", 1999, "")));
  EXPECT_THAT(problemOf(drive("9.5", 2000, "")), tooMuchInLine(2));
  EXPECT_TRUE(isPlayed(drive("9.6", 2000, ""))) << "a second lies between";
  EXPECT_TRUE(isPlayed(drive("9.5", 2000, ", \"loop\": false")));
}

TEST(HeadunitDriveFile, MayBeginAnewManyTimesASecondWithinThat) {
  std::string steps;
  for (int i = 0; i < 20; ++i) steps += std::string(i > 0 ? "," : "") + "\n{\"t_s\": 0, \"rpm\": 800}";
  EXPECT_TRUE(isPlayed("{\"length_s\": 0.01, \"steps\": [" + steps + "]}"));
  EXPECT_THAT(problemOf("{\"length_s\": 0.01, \"steps\": [" + steps + ",\n{\"t_s\": 0, \"rpm\": 800}]}"),
              HasSubstr("more than 2000 numbers"));
}

TEST(HeadunitDriveFile, IsNamedIfItCannotBeRead) {
  std::string error;
  EXPECT_FALSE(loadDrive("/nonexistent/drive.json", &error));
  EXPECT_EQ(error, "/nonexistent/drive.json: No such file or directory");
  const std::string folder = std::filesystem::temp_directory_path().string();
  EXPECT_FALSE(loadDrive(folder, &error));
  EXPECT_EQ(error, folder + ": Is a directory");
}

TEST(HeadunitDriveFile, IsNotTakenIntoMemoryIfItIsHuge) {
  std::string path = (std::filesystem::temp_directory_path() / "headunit-XXXXXX").string();
  ::close(::mkstemp(path.data()));
  std::filesystem::resize_file(path, std::uintmax_t{1} << 40);
  std::string error;
  EXPECT_FALSE(loadDrive(path, &error));
  std::filesystem::remove(path);
  EXPECT_EQ(error, path + ": it has more than 16 MiB");
  EXPECT_FALSE(loadDrive("/dev/zero", &error));
  EXPECT_EQ(error, "/dev/zero: it has more than 16 MiB, if it ends at all");
}

TEST(HeadunitDriveFile, MayNotBeEmpty) {
  std::string path = (std::filesystem::temp_directory_path() / "headunit-XXXXXX").string();
  ::close(::mkstemp(path.data()));
  std::string error;
  EXPECT_FALSE(loadDrive(path, &error));
  std::filesystem::remove(path);
  EXPECT_EQ(error, path + ", line 1: the file ends too soon");
}

TEST(HeadunitDriveFile, MayBeShort) {
  std::string error;
  const auto drive = parseDrive("{\"steps\": [{\"t_s\": 2.5, \"rpm\": 800}]}", &error);
  ASSERT_TRUE(drive) << error;
  EXPECT_TRUE(drive->loops);
  EXPECT_EQ(drive->length, microseconds(3'500'000));
  EXPECT_THAT(drive->sensors, ElementsAre(SENSOR_RPM));
}

TEST(HeadunitDriveFile, IsBuiltInWithEverySensor) {
  std::string error;
  const auto drive = parseDrive(builtInDrive(), &error);
  ASSERT_TRUE(drive) << error;
  EXPECT_THAT(drive->sensors, SizeIs(21));
}

TEST(HeadunitDriveFile, KnowsEverySensorOnce) {
  std::set<int> types;
  for (const VehicleSensor& sensor : vehicleSensors()) types.insert(sensor.type);
  EXPECT_THAT(types, SizeIs(21));
  EXPECT_THAT(vehicleSensors(), SizeIs(21));
}

// ---- What becomes of the values ----

/// Plays drives to a phone that has requested every sensor.
struct HeadunitDrive : test::SensorTest {
  std::optional<DriveScript> drive;
  const TimePoint start = TimePoint(seconds(1000));

  HeadunitDrive() {
    for (int type = 1; type <= 21; ++type) makeLive(type);
  }

  /// What a step with this member makes the phone hear; all batches in one record.
  SensorBatch heard(const std::string& member) {
    load("{\"steps\": [{\"t_s\": 0, " + member + "}]}");
    DrivePlayer player(&*drive, &sensors);
    player.act(start);
    return takeBatches();
  }

  void load(const std::string& text) {
    std::string error;
    drive = parseDrive(text, &error);
    ASSERT_TRUE(drive) << error;
  }

  SensorBatch takeBatches() {
    SensorBatch all;
    for (const test::Bytes& message : sent()) {
      SensorBatch batch;
      EXPECT_TRUE(batch.ParseFromArray(message.data() + 2, static_cast<int>(message.size()) - 2));
      all.MergeFrom(batch);
    }
    return all;
  }

  std::vector<int> speeds() {
    std::vector<int> values;
    const SensorBatch batches = takeBatches();
    for (const SpeedData& speed : batches.speed_data()) values.push_back(speed.speed_e3());
    return values;
  }
};

TEST_F(HeadunitDrive, ConvertsALocation) {
  const SensorBatch batch = heard(
      "\"location\": {\"latitude_deg\": 48.1234567, \"longitude_deg\": -179.9999999, \"accuracy_m\": 4.5, "
      "\"altitude_m\": -12.34, \"speed_kmh\": 36, \"bearing_deg\": 359.999999}");
  ASSERT_EQ(batch.location_data_size(), 1);
  const LocationData& location = batch.location_data(0);
  EXPECT_EQ(location.latitude_e7(), 481234567);
  EXPECT_EQ(location.longitude_e7(), -1799999999);
  EXPECT_EQ(location.accuracy_e3(), 4500U);
  EXPECT_EQ(location.altitude_e2(), -1234);
  EXPECT_EQ(location.speed_e3(), 10000);
  EXPECT_EQ(location.bearing_e6(), 359999999);
  EXPECT_GT(location.timestamp(), 0U);
}

TEST_F(HeadunitDrive, LeavesOutWhatALocationDoesNotTell) {
  const SensorBatch batch = heard("\"location\": {\"latitude_deg\": 1, \"longitude_deg\": 2}");
  EXPECT_FALSE(batch.location_data(0).has_accuracy_e3());
  EXPECT_FALSE(batch.location_data(0).has_altitude_e2());
  EXPECT_FALSE(batch.location_data(0).has_speed_e3());
  EXPECT_FALSE(batch.location_data(0).has_bearing_e6());
}

TEST_F(HeadunitDrive, ConvertsSpeedRevolutionsAndDistance) {
  EXPECT_EQ(heard("\"speed_kmh\": 50").speed_data(0).speed_e3(), 13889);  // metres a second
  EXPECT_EQ(heard("\"speed_kmh\": -3.6").speed_data(0).speed_e3(), -1000);
  EXPECT_EQ(heard("\"rpm\": 2100.5").rpm_data(0).rpm_e3(), 2100500);
  EXPECT_EQ(heard("\"odometer_km\": 12345.6").odometer_data(0).kms_e1(), 123456);
}

TEST_F(HeadunitDrive, ConvertsTheCompass) {
  const SensorBatch batch =
      heard("\"compass\": {\"bearing_deg\": 90.5, \"pitch_deg\": -1.25, \"roll_deg\": 2}");
  EXPECT_EQ(batch.compass_data(0).bearing_e6(), 90'500'000);
  EXPECT_EQ(batch.compass_data(0).pitch_e6(), -1'250'000);
  EXPECT_EQ(batch.compass_data(0).roll_e6(), 2'000'000);
}

TEST_F(HeadunitDrive, ConvertsFuelAndSwitches) {
  const SensorBatch batch = heard(
      "\"fuel\": {\"level_percent\": 63, \"range_km\": 410, \"low\": true}, \"parking_brake\": true, "
      "\"night_mode\": true, \"passenger\": true, \"driving_status\": 5");
  EXPECT_EQ(batch.fuel_data(0).fuel_level(), 63);
  EXPECT_EQ(batch.fuel_data(0).range(), 410);
  EXPECT_TRUE(batch.fuel_data(0).low_fuel_warning());
  EXPECT_TRUE(batch.parking_brake_data(0).parking_brake());
  EXPECT_TRUE(batch.night_mode_data(0).night_mode());
  EXPECT_TRUE(batch.passenger_data(0).passenger_present());
  EXPECT_EQ(batch.driving_status_data(0).status(), 5);
}

TEST_F(HeadunitDrive, ConvertsGears) {
  EXPECT_EQ(heard("\"gear\": \"neutral\"").gear_data(0).gear(), GEAR_0);
  EXPECT_EQ(heard("\"gear\": \"1\"").gear_data(0).gear(), GEAR_1);
  EXPECT_EQ(heard("\"gear\": \"6\"").gear_data(0).gear(), GEAR_6);
  EXPECT_EQ(heard("\"gear\": \"drive\"").gear_data(0).gear(), GEAR_100);
  EXPECT_EQ(heard("\"gear\": \"park\"").gear_data(0).gear(), GEAR_101);
  EXPECT_EQ(heard("\"gear\": \"reverse\"").gear_data(0).gear(), GEAR_102);
}

TEST_F(HeadunitDrive, ConvertsTheClimate) {
  const SensorBatch batch = heard(
      "\"environment\": {\"temperature_c\": -7.5, \"pressure_kpa\": 95.2}, \"hvac\": {\"target_c\": 21, "
      "\"current_c\": 19.5}");
  EXPECT_EQ(batch.environment_data(0).temperature_e3(), -7500);
  EXPECT_EQ(batch.environment_data(0).pressure_e3(), 95200);
  EXPECT_EQ(batch.hvac_data(0).target_temperature_e3(), 21000);
  EXPECT_EQ(batch.hvac_data(0).current_temperature_e3(), 19500);
}

TEST_F(HeadunitDrive, ConvertsWheelsDoorsLightsAndTires) {
  const SensorBatch batch = heard(
      "\"dead_reckoning\": {\"steering_angle_deg\": -14.5, \"wheel_speeds_kmh\": [36, 18]}, "
      "\"doors\": {\"hood\": false, \"trunk\": true, \"open\": [true, false, true]}, "
      "\"lights\": {\"head\": \"high\", \"indicator\": \"left\", \"hazard\": true}, \"tires_kpa\": [240, "
      "250.5]");
  EXPECT_EQ(batch.dead_reckoning_data(0).steering_angle_e1(), -145);
  EXPECT_THAT(batch.dead_reckoning_data(0).wheel_speed_e3(), ElementsAre(10000, 5000));
  EXPECT_FALSE(batch.door_data(0).hood_open());
  EXPECT_TRUE(batch.door_data(0).trunk_open());
  EXPECT_THAT(batch.door_data(0).door_open(), ElementsAre(true, false, true));
  EXPECT_EQ(batch.light_data(0).head_light_state(), HEAD_LIGHT_STATE_3);
  EXPECT_EQ(batch.light_data(0).turn_indicator_state(), TURN_INDICATOR_STATE_2);
  EXPECT_TRUE(batch.light_data(0).hazard_lights_on());
  EXPECT_THAT(batch.tire_pressure_data(0).tire_pressures_e2(), ElementsAre(24000, 25050));
}

TEST_F(HeadunitDrive, ConvertsMotionAndDiagnostics) {
  const SensorBatch batch = heard(
      "\"accelerometer_mps2\": {\"x\": 0.1, \"y\": -3.4, \"z\": 9.81}, \"gyroscope_radps\": {\"z\": 0.12}, "
      "\"diagnostics\": [1, 255]");
  EXPECT_EQ(batch.accelerometer_data(0).acceleration_x_e3(), 100);
  EXPECT_EQ(batch.accelerometer_data(0).acceleration_y_e3(), -3400);
  EXPECT_EQ(batch.accelerometer_data(0).acceleration_z_e3(), 9810);
  EXPECT_FALSE(batch.gyroscope_data(0).has_rotation_speed_x_e3());
  EXPECT_EQ(batch.gyroscope_data(0).rotation_speed_z_e3(), 120);
  EXPECT_EQ(batch.diagnostics_data(0).dtc(), "\x01\xff");
}

TEST_F(HeadunitDrive, ConvertsSatellites) {
  const SensorBatch batch = heard(
      "\"satellites\": [{\"prn\": 3, \"snr_db\": 41.5, \"used\": true, \"azimuth_deg\": 120, "
      "\"elevation_deg\": 55.25}, "
      "{\"prn\": 22, \"snr_db\": 12, \"azimuth_deg\": 10, \"elevation_deg\": -1}]");
  const GpsSatelliteData& data = batch.gps_satellite_data(0);
  EXPECT_EQ(data.number_in_use(), 1);
  EXPECT_EQ(data.number_in_view(), 2);
  ASSERT_EQ(data.satellites_size(), 2);
  EXPECT_EQ(data.satellites(0).prn(), 3);
  EXPECT_EQ(data.satellites(0).snr_e3(), 41500);
  EXPECT_TRUE(data.satellites(0).used_in_fix());
  EXPECT_EQ(data.satellites(0).azimuth_e3(), 120000);
  EXPECT_EQ(data.satellites(0).elevation_e3(), 55250);
  EXPECT_FALSE(data.satellites(1).used_in_fix());
  EXPECT_EQ(data.satellites(1).elevation_e3(), -1000);
}

// ---- When they are told ----

TEST_F(HeadunitDrive, PlaysEachStepAtItsTimeAndBeginsAnew) {
  load("{\"length_s\": 5, \"steps\": [{\"t_s\": 0, \"speed_kmh\": 0}, {\"t_s\": 2, \"speed_kmh\": 3.6}]}");
  DrivePlayer player(&*drive, &sensors);
  EXPECT_EQ(player.act(start), start + seconds(2));
  EXPECT_THAT(speeds(), ElementsAre(0));
  EXPECT_EQ(player.act(start + seconds(1)), start + seconds(2));
  EXPECT_THAT(speeds(), IsEmpty());
  EXPECT_EQ(player.act(start + seconds(2)), start + seconds(5));
  EXPECT_THAT(speeds(), ElementsAre(1000));
  EXPECT_EQ(player.act(start + seconds(5)), start + seconds(7));
  EXPECT_THAT(speeds(), ElementsAre(0));
  EXPECT_EQ(player.reports(), 3U);
}

TEST_F(HeadunitDrive, StopsAtItsEndIfItDoesNotLoop) {
  load("{\"loop\": false, \"steps\": [{\"t_s\": 0, \"speed_kmh\": 0}]}");
  DrivePlayer player(&*drive, &sensors);
  EXPECT_EQ(player.act(start), TimePoint::max());
}

TEST_F(HeadunitDrive, WaitsForThePhoneToOpenTheSensors) {
  load("{\"steps\": [{\"t_s\": 0, \"speed_kmh\": 3.6}]}");
  SensorSource closed(99, link.router());
  DrivePlayer player(&*drive, &closed);
  EXPECT_GT(player.act(start), start);
  EXPECT_EQ(player.reports(), 0U);
}

TEST_F(HeadunitDrive, TellsOfSatellitesAHundredTimesAtMost) {
  load("{\"length_s\": 1, \"steps\": [{\"t_s\": 0, \"satellites\": []}]}");
  DrivePlayer player(&*drive, &sensors);
  player.act(start);
  player.act(start + seconds(500));
  EXPECT_EQ(player.reports(), 100U);
}

}  // namespace
}  // namespace headunit
