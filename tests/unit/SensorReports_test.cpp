#include <functional>

#include "FailingCalls.h"
#include "SensorTest.h"

// What each report makes of its arguments on the wire, live and parked.

namespace test {
namespace {

struct Report {
  const char* name;
  int type;
  std::function<int(SensorSource*)> make;
  Bytes body;  // of the SensorBatch
};

void PrintTo(const Report& report, std::ostream* out) { *out << report.name; }

struct SensorReportsTest : SensorTest, testing::WithParamInterface<Report> {};

/// Every field of every record, with values that tell signed from unsigned and one field from another.
const std::vector<Report> EVERY_FIELD = {
    {"Location", 1,
     [](SensorSource* to) {
       return to->reportLocationData(0x8000000000000000, -1, 300, true, -1, true, -2, true, 13889, true, 150);
     },
     bytes("0A 30"                             // location_data
           "08 80 80 80 80 80 80 80 80 80 01"  // timestamp 2^63
           "10 FF FF FF FF FF FF FF FF FF 01"  // latitude_e7 -1
           "18 AC 02"                          // longitude_e7 300
           "20 FF FF FF FF 0F"                 // accuracy_e3, unsigned
           "28 FE FF FF FF FF FF FF FF FF 01"  // altitude_e2 -2
           "30 C1 6C"                          // speed_e3 13889
           "38 96 01")},                       // bearing_e6 150
    {"Compass3D", 2, [](SensorSource* to) { return to->reportCompassData3D(150, true, -1, true, 300); },
     bytes("12 11"                             // compass_data
           "08 96 01"                          // bearing_e6 150
           "10 FF FF FF FF FF FF FF FF FF 01"  // pitch_e6 -1
           "18 AC 02")},                       // roll_e6 300
    {"Compass", 2, [](SensorSource* to) { return to->reportCompassData(300); },
     bytes("12 03"        // compass_data
           "08 AC 02")},  // bearing_e6 300
    {"Speed", 3, [](SensorSource* to) { return to->reportSpeedData(13889); },
     bytes("1A 03"        // speed_data
           "08 C1 6C")},  // speed_e3 13889
    {"SpeedInReverse", 3, [](SensorSource* to) { return to->reportSpeedData(-1); },
     bytes("1A 0B 08 FF FF FF FF FF FF FF FF FF 01")},
    {"Rpm", 4, [](SensorSource* to) { return to->reportRpmData(900000); },
     bytes("22 04"           // rpm_data
           "08 A0 F7 36")},  // rpm_e3 900000
    {"Odometer", 5, [](SensorSource* to) { return to->reportOdometerData(1234567); },
     bytes("2A 04"           // odometer_data
           "08 87 AD 4B")},  // kms_e1 1234567
    {"Fuel", 6, [](SensorSource* to) { return to->reportFuelData(true, 80, true, 450, true, true); },
     bytes("32 07"     // fuel_data
           "08 50"     // fuel_level 80
           "10 C2 03"  // range 450
           "18 01")},  // low_fuel_warning
    {"ParkingBrakeOn", 7, [](SensorSource* to) { return to->reportParkingBrakeData(true); },
     bytes("3A 02"     // parking_brake_data
           "08 01")},  // parking_brake
    {"ParkingBrakeOff", 7, [](SensorSource* to) { return to->reportParkingBrakeData(false); },
     bytes("3A 02 08 00")},
    {"Gear", 8, [](SensorSource* to) { return to->reportGearData(101); },
     bytes("42 02"     // gear_data
           "08 65")},  // gear 101
    {"Diagnostics", 9,
     [](SensorSource* to) {
       unsigned char codes[] = {0x00, 0xFF, 0x80, 0x00};
       return to->reportDiagnosticsData(codes, sizeof codes);
     },
     bytes("4A 06"                 // diagnostics_data
           "0A 04 00 FF 80 00")},  // dtc, as bytes
    {"NoDiagnostics", 9, [](SensorSource* to) { return to->reportDiagnosticsData(nullptr, 0); },
     bytes("4A 02 0A 00")},
    {"Night", 10, [](SensorSource* to) { return to->reportNightModeData(true); },
     bytes("52 02"     // night_mode_data
           "08 01")},  // night_mode
    {"Day", 10, [](SensorSource* to) { return to->reportNightModeData(false); }, bytes("52 02 08 00")},
    {"Environment", 11, [](SensorSource* to) { return to->reportEnvironmentData(true, -1, true, 101325); },
     bytes("5A 0F"                             // environment_data
           "08 FF FF FF FF FF FF FF FF FF 01"  // temperature_e3 -1
           "10 CD 97 06")},                    // pressure_e3 101325
    {"Hvac", 12, [](SensorSource* to) { return to->reportHvacData(true, 21500, true, 300); },
     bytes("62 07"        // hvac_data
           "08 FC A7 01"  // target_temperature_e3 21500
           "10 AC 02")},  // current_temperature_e3 300
    {"DrivingStatus", 13, [](SensorSource* to) { return to->reportDrivingStatusData(31); },
     bytes("6A 02"     // driving_status_data
           "08 1F")},  // status 31
    {"DrivingStatusThatDoesNotExist", 13, [](SensorSource* to) { return to->reportDrivingStatusData(-1); },
     bytes("6A 0B 08 FF FF FF FF FF FF FF FF FF 01")},
    {"DeadReckoning", 14,
     [](SensorSource* to) {
       const int speeds[] = {1, 300, -1, 0};
       return to->reportDeadReckoningData(true, -1, speeds, 4);
     },
     bytes("72 1D"                             // dead_reckoning_data
           "08 FF FF FF FF FF FF FF FF FF 01"  // steering_angle_e1 -1
           "10 01"                             // wheel_speed_e3, unpacked, in the host's order
           "10 AC 02"
           "10 FF FF FF FF FF FF FF FF FF 01"
           "10 00")},
    {"Passenger", 15, [](SensorSource* to) { return to->reportPassengerData(true); },
     bytes("7A 02"     // passenger_data
           "08 01")},  // passenger_present
    {"Door", 16,
     [](SensorSource* to) {
       const bool doors[] = {true, false, false, true};
       return to->reportDoorData(true, true, true, false, doors, 4);
     },
     bytes("82 01 0C"                    // door_data
           "08 01"                       // hood_open
           "10 00"                       // trunk_open
           "18 01 18 00 18 00 18 01")},  // door_open, unpacked
    {"Light", 17, [](SensorSource* to) { return to->reportLightData(true, 3, true, 2, true, false); },
     bytes("8A 01 06"  // light_data
           "08 03"     // head_light_state 3
           "10 02"     // turn_indicator_state 2
           "18 00")},  // hazard_lights_on
    {"TirePressure", 18,
     [](SensorSource* to) {
       const int pressures[] = {250, 300, -1};
       return to->reportTirePressureData(pressures, 3);
     },
     bytes("92 01 11"  // tire_pressure_data
           "08 FA 01"  // tire_pressures_e2, unpacked
           "08 AC 02"
           "08 FF FF FF FF FF FF FF FF FF 01")},
    {"Accelerometer", 19,
     [](SensorSource* to) { return to->reportAccelerometerData(true, 1, true, -1, true, 9807); },
     bytes("9A 01 10"                          // accelerometer_data
           "08 01"                             // acceleration_x_e3 1
           "10 FF FF FF FF FF FF FF FF FF 01"  // acceleration_y_e3 -1
           "18 CF 4C")},                       // acceleration_z_e3 9807
    {"Gyroscope", 20, [](SensorSource* to) { return to->reportGyroscopeData(true, -1, true, 300, true, 0); },
     bytes("A2 01 10"                          // gyroscope_data
           "08 FF FF FF FF FF FF FF FF FF 01"  // rotation_speed_x_e3 -1
           "10 AC 02"                          // rotation_speed_y_e3 300
           "18 00")},                          // rotation_speed_z_e3 0
    {"GpsSatellite", 21,
     [](SensorSource* to) {
       const int prns[] = {7, 12}, snrs[] = {300, 0}, azimuths[] = {90000, 0}, elevations[] = {-1, 45000};
       const bool used[] = {true, false};
       return to->reportGpsSatelliteData(1, true, 2, prns, snrs, used, azimuths, elevations);
     },
     bytes("AA 01 2A"                          // gps_satellite_data
           "08 01"                             // number_in_use 1
           "10 02"                             // number_in_view 2
           "1A 16"                             // satellites
           "08 07"                             // prn 7
           "10 AC 02"                          // snr_e3 300
           "18 01"                             // used_in_fix
           "20 90 BF 05"                       // azimuth_e3 90000
           "28 FF FF FF FF FF FF FF FF FF 01"  // elevation_e3 -1
           "1A 0C"                             // satellites
           "08 0C"                             // prn 12
           "10 00"                             // snr_e3 0
           "18 00"                             // used_in_fix
           "20 00"                             // azimuth_e3 0
           "28 C8 DF 02")},                    // elevation_e3 45000
};

/// With every flag false, and a value behind each that would show.
const std::vector<Report> NO_OPTIONAL_FIELD = {
    {"Location", 1,
     [](SensorSource* to) { return to->reportLocationData(1, 2, 3, false, 4, false, 5, false, 6, false, 7); },
     bytes("0A 06 08 01 10 02 18 03")},
    {"Compass3D", 2, [](SensorSource* to) { return to->reportCompassData3D(0, false, 1, false, 2); },
     bytes("12 02 08 00")},
    {"Fuel", 6, [](SensorSource* to) { return to->reportFuelData(false, 1, false, 2, false, true); },
     bytes("32 00")},
    {"FuelWithRangeOnly", 6,
     [](SensorSource* to) { return to->reportFuelData(false, 1, true, 2, false, true); },
     bytes("32 02 10 02")},
    {"Environment", 11, [](SensorSource* to) { return to->reportEnvironmentData(false, 1, false, 2); },
     bytes("5A 00")},
    {"Hvac", 12, [](SensorSource* to) { return to->reportHvacData(false, 1, false, 2); }, bytes("62 00")},
    {"DeadReckoning", 14, [](SensorSource* to) { return to->reportDeadReckoningData(false, 1, nullptr, 4); },
     bytes("72 00")},
    {"Door", 16, [](SensorSource* to) { return to->reportDoorData(false, true, false, true, nullptr, 4); },
     bytes("82 01 00")},
    {"LightOfStatesThatDoNotExist", 17,
     [](SensorSource* to) { return to->reportLightData(false, 99, false, 99, false, true); },
     bytes("8A 01 00")},
    {"LightWithIndicatorOnly", 17,
     [](SensorSource* to) { return to->reportLightData(false, 99, true, 3, false, true); },
     bytes("8A 01 02 10 03")},
    {"TirePressureOfNoArray", 18, [](SensorSource* to) { return to->reportTirePressureData(nullptr, 4); },
     bytes("92 01 00")},
    {"TirePressureOfNoTires", 18,
     [](SensorSource* to) {
       const int pressures[] = {250};
       return to->reportTirePressureData(pressures, 0);
     },
     bytes("92 01 00")},
    {"TirePressureOfFewerThanNoTires", 18,
     [](SensorSource* to) {
       const int pressures[] = {250};
       return to->reportTirePressureData(pressures, -1);
     },
     bytes("92 01 00")},
    {"Accelerometer", 19,
     [](SensorSource* to) { return to->reportAccelerometerData(false, 1, false, 2, false, 3); },
     bytes("9A 01 00")},
    {"AccelerometerWithYOnly", 19,
     [](SensorSource* to) { return to->reportAccelerometerData(false, 1, true, 2, false, 3); },
     bytes("9A 01 02 10 02")},
    {"Gyroscope", 20, [](SensorSource* to) { return to->reportGyroscopeData(false, 1, false, 2, false, 3); },
     bytes("A2 01 00")},
    {"GyroscopeWithZOnly", 20,
     [](SensorSource* to) { return to->reportGyroscopeData(false, 1, false, 2, true, 3); },
     bytes("A2 01 02 18 03")},
    {"GpsSatelliteWithArraysButNoNumberInView", 21,
     [](SensorSource* to) {
       const int numbers[] = {1, 2};
       const bool used[] = {true, true};
       return to->reportGpsSatelliteData(0, false, 2, numbers, numbers, used, numbers, numbers);
     },
     bytes("AA 01 02 08 00")},
    {"GpsSatelliteWithoutArrays", 21,
     [](SensorSource* to) {
       return to->reportGpsSatelliteData(3, true, 2, nullptr, nullptr, nullptr, nullptr, nullptr);
     },
     bytes("AA 01 04 08 03 10 02")},
};

std::string nameOf(const testing::TestParamInfo<Report>& report) { return report.param.name; }

INSTANTIATE_TEST_SUITE_P(EveryField, SensorReportsTest, testing::ValuesIn(EVERY_FIELD), nameOf);
INSTANTIATE_TEST_SUITE_P(NoOptionalField, SensorReportsTest, testing::ValuesIn(NO_OPTIONAL_FIELD), nameOf);

TEST_P(SensorReportsTest, GoesOutAtOnceWhileTheSensorIsLive) {
  makeLive(GetParam().type);
  EXPECT_EQ(GetParam().make(&sensors), STATUS_SUCCESS);
  const std::vector<Bytes> messages = sent();
  ASSERT_FALSE(messages.empty());
  EXPECT_EQ(messages.back(), batch(GetParam().body));
  EXPECT_EQ(messages.size(), GetParam().type == SENSOR_HVAC ? 2U : 1U);
}

TEST_P(SensorReportsTest, GoesOutBehindTheAnswerToTheRequestThatFindsItParked) {
  EXPECT_EQ(GetParam().make(&sensors), STATUS_SUCCESS);
  EXPECT_THAT(sent(), IsEmpty());
  sends(request(GetParam().type, 0));
  EXPECT_THAT(sent(), ElementsAre(granted(), batch(GetParam().body)));
}

TEST_P(SensorReportsTest, IsDroppedWhileTheSensorIsLiveAndTheChannelClosed) {
  makeLive(GetParam().type);
  close();
  EXPECT_EQ(GetParam().make(&sensors), STATUS_SUCCESS);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
  link.opens(CHANNEL, SERVICE);
  sends(request(GetParam().type, 0));
  EXPECT_THAT(sent(), ElementsAre(granted()));  // nor was it parked
}

TEST_P(SensorReportsTest, MakesAMessageOfItsOwnEachTime) {
  makeLive(GetParam().type);
  GetParam().make(&sensors);
  const std::vector<Bytes> once = sent();
  GetParam().make(&sensors);
  GetParam().make(&sensors);
  std::vector<Bytes> twice = once;
  twice.insert(twice.end(), once.begin(), once.end());
  EXPECT_EQ(sent(), twice);
}

struct SensorValuesTest : SensorTest {};

TEST_F(SensorValuesTest, PassEveryGearThatExists) {
  makeLive(SENSOR_GEAR);
  for (const int gear : {0, 1, 2, 3, 4, 5, 6, 100, 101, 102}) {
    sensors.reportGearData(gear);
    EXPECT_THAT(sent(), ElementsAre(batch(bytes("42 02 08") + filled(1, static_cast<std::uint8_t>(gear)))));
  }
}

TEST_F(SensorValuesTest, EndTheProcessForAGearThatDoesNotExistLiveAndParked) {
  for (const int gear : {-1, 7, 99, 103})
    EXPECT_DEATH(sensors.reportGearData(gear), "::Gear_IsValid\\(value\\)");
  makeLive(SENSOR_GEAR);
  for (const int gear : {-1, 7, 99, 103})
    EXPECT_DEATH(sensors.reportGearData(gear), "::Gear_IsValid\\(value\\)");
}

TEST_F(SensorValuesTest, EndTheProcessForAHeadLightStateThatDoesNotExistLiveAndParked) {
  const auto report = [this](int state) { sensors.reportLightData(true, state, false, 0, false, false); };
  for (const int state : {-1, 0, 4}) EXPECT_DEATH(report(state), "::HeadLightState_IsValid\\(value\\)");
  makeLive(SENSOR_LIGHT);
  for (const int state : {-1, 0, 4}) EXPECT_DEATH(report(state), "::HeadLightState_IsValid\\(value\\)");
}

TEST_F(SensorValuesTest, EndTheProcessForATurnIndicatorStateThatDoesNotExistLiveAndParked) {
  const auto report = [this](int state) { sensors.reportLightData(false, 0, true, state, false, false); };
  for (const int state : {-1, 0, 4}) EXPECT_DEATH(report(state), "::TurnIndicatorState_IsValid\\(value\\)");
  makeLive(SENSOR_LIGHT);
  for (const int state : {-1, 0, 4}) EXPECT_DEATH(report(state), "::TurnIndicatorState_IsValid\\(value\\)");
}

TEST_F(SensorValuesTest, OfTheClimateGoOutBehindAnEmptyBatch) {
  makeLive(SENSOR_HVAC);
  sensors.reportHvacData(true, 1, false, 0);
  sensors.reportHvacData(true, 2, false, 0);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 03"), bytes("80 03 62 02 08 01"),  //
                                  bytes("80 03"), bytes("80 03 62 02 08 02")));
}

TEST_F(SensorValuesTest, OfSatellitesHaveNeitherAzimuthNorElevationUnlessBothAreGiven) {
  makeLive(SENSOR_GPS_SATELLITE);
  const int numbers[] = {5};
  const bool used[] = {true};
  sensors.reportGpsSatelliteData(1, true, 1, numbers, numbers, used, nullptr, numbers);
  sensors.reportGpsSatelliteData(1, true, 1, numbers, numbers, used, numbers, nullptr);
  const Bytes without =
      batch(bytes("AA 01 0C 08 01 10 01 1A 06"
                  "08 05 10 05 18 01"));  // prn, snr_e3, used_in_fix
  EXPECT_THAT(sent(), ElementsAre(without, without));
}

TEST_F(SensorValuesTest, HoldNoSatelliteUnlessAllThreeRequiredArraysAreGiven) {
  makeLive(SENSOR_GPS_SATELLITE);
  const int numbers[] = {5};
  const bool used[] = {true};
  sensors.reportGpsSatelliteData(1, true, 1, nullptr, numbers, used, numbers, numbers);
  sensors.reportGpsSatelliteData(1, true, 1, numbers, nullptr, used, numbers, numbers);
  sensors.reportGpsSatelliteData(1, true, 1, numbers, numbers, nullptr, numbers, numbers);
  const Bytes none = batch(bytes("AA 01 04 08 01 10 01"));
  EXPECT_THAT(sent(), ElementsAre(none, none, none));
}

TEST_F(SensorValuesTest, HoldNoSatelliteIfFewerThanOneIsInView) {
  makeLive(SENSOR_GPS_SATELLITE);
  const int numbers[] = {5};
  const bool used[] = {true};
  sensors.reportGpsSatelliteData(0, true, 0, numbers, numbers, used, numbers, numbers);
  sensors.reportGpsSatelliteData(0, true, -1, numbers, numbers, used, numbers, numbers);
  EXPECT_THAT(sent(), ElementsAre(batch(bytes("AA 01 04 08 00 10 00")),
                                  batch(bytes("AA 01 0D 08 00 10 FF FF FF FF FF FF FF FF FF 01"))));
}

// ---- Reports that the phone's request overtakes ----

/// For these two sensors a report asks twice whether the sensor is live: for where the value goes, and for
/// whether a batch is sent.
struct OvertakenReportTest : SensorTest {
  void reportFuel() { sensors.reportFuelData(true, 80, false, 0, false, false); }
};

TEST_F(OvertakenReportTest, SendsAnEmptyBatchIfTheSensorIsStartedInBetweenAndParksTheValue) {
  {
    const EventAt parking("pthread_mutex_lock", [this] { sends(request(SENSOR_FUEL, 0)); });
    reportFuel();
  }
  EXPECT_THAT(sent(), ElementsAre(granted(), bytes("80 03")));
  sends(request(SENSOR_FUEL, 0));
  EXPECT_THAT(sent(), ElementsAre(granted(), bytes("80 03 32 02 08 50")));
}

TEST_F(OvertakenReportTest, SendsNothingIfTheSensorIsStoppedInBetweenAndParksNothing) {
  makeLive(SENSOR_FUEL);
  {
    const EventAt adding(
        "operator new", [this] { sends(request(SENSOR_FUEL, -1)); }, sizeof(FuelData));
    reportFuel();
  }
  EXPECT_THAT(sent(), ElementsAre(granted()));
  sends(request(SENSOR_FUEL, 0));
  EXPECT_THAT(sent(), ElementsAre(granted()));
}

}  // namespace
}  // namespace test
