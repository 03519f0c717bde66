#include <map>

#include "ManyThreads.h"
#include "SensorTest.h"

// Reports on many threads at once, while the phone on another requests, stops, closes and opens.

namespace test {
namespace {

constexpr unsigned int THREADS = 4;
constexpr int ROUNDS = 100;

/// One report of every sensor in which every number is `value`.
void reportEverySensor(SensorSource* to, int value) {
  const int numbers[] = {value, value, value, value};
  const bool flags[] = {true, false, true, false};
  unsigned char codes[] = {0xCA, 0xFE};
  to->reportLocationData(static_cast<unsigned int>(value), value, value, true, value, true, value, true,
                         value, true, value);
  to->reportCompassData3D(value, true, value, true, value);
  to->reportSpeedData(value);
  to->reportRpmData(value);
  to->reportOdometerData(value);
  to->reportFuelData(true, value, true, value, true, true);
  to->reportParkingBrakeData(true);
  to->reportGearData(value % 7);
  to->reportDiagnosticsData(codes, sizeof codes);
  to->reportNightModeData(true);
  to->reportEnvironmentData(true, value, true, value);
  to->reportHvacData(true, value, true, value);
  to->reportDrivingStatusData(value);
  to->reportDeadReckoningData(true, value, numbers, 4);
  to->reportPassengerData(true);
  to->reportDoorData(true, true, true, true, flags, 4);
  to->reportLightData(true, 1 + value % 3, true, 1 + value % 3, true, true);
  to->reportTirePressureData(numbers, 4);
  to->reportAccelerometerData(true, value, true, value, true, value);
  to->reportGyroscopeData(true, value, true, value, true, value);
  to->reportGpsSatelliteData(value, true, 1, numbers, numbers, flags, numbers, numbers);
}

/// How many records `batch` has of each sensor: every field of a SensorBatch is one record of the field's
/// sensor.
std::map<int, int> recordsByType(const SensorBatch& batch) {
  return {{1, batch.location_data_size()},        {2, batch.compass_data_size()},
          {3, batch.speed_data_size()},           {4, batch.rpm_data_size()},
          {5, batch.odometer_data_size()},        {6, batch.fuel_data_size()},
          {7, batch.parking_brake_data_size()},   {8, batch.gear_data_size()},
          {9, batch.diagnostics_data_size()},     {10, batch.night_mode_data_size()},
          {11, batch.environment_data_size()},    {12, batch.hvac_data_size()},
          {13, batch.driving_status_data_size()}, {14, batch.dead_reckoning_data_size()},
          {15, batch.passenger_data_size()},      {16, batch.door_data_size()},
          {17, batch.light_data_size()},          {18, batch.tire_pressure_data_size()},
          {19, batch.accelerometer_data_size()},  {20, batch.gyroscope_data_size()},
          {21, batch.gps_satellite_data_size()}};
}

/// Records of which one report wrote every field. One that a request left empty counts too.
bool isWhole(const LocationData& data) {
  const int value = data.latitude_e7();
  return data.timestamp() == static_cast<unsigned int>(value) && data.longitude_e7() == value &&
         data.accuracy_e3() == static_cast<unsigned int>(value) && data.altitude_e2() == value &&
         data.speed_e3() == value && data.bearing_e6() == value;
}

bool isWhole(const CompassData& data) {
  return data.pitch_e6() == data.bearing_e6() && data.roll_e6() == data.bearing_e6();
}

bool isWhole(const FuelData& data) { return data.fuel_level() == data.range(); }

bool isWhole(const TirePressureData& data) {
  if (data.tire_pressures_e2_size() == 0) return true;
  const int value = data.tire_pressures_e2(0);
  return data.tire_pressures_e2_size() == 4 &&
         std::count(data.tire_pressures_e2().begin(), data.tire_pressures_e2().end(), value) == 4;
}

bool isWhole(const GyroscopeData& data) {
  return data.rotation_speed_y_e3() == data.rotation_speed_x_e3() &&
         data.rotation_speed_z_e3() == data.rotation_speed_x_e3();
}

template <class Values>
void expectWhole(const Values& values) {
  for (const auto& value : values) EXPECT_TRUE(isWhole(value));
}

struct SensorThreadsTest : SensorTest {
  /// The batches that were sent since the last look. Not strictly parsed: some records are empty on purpose.
  std::vector<SensorBatch> batches() {
    std::vector<SensorBatch> result;
    for (const Bytes& each : sent()) {
      if (part(each, 0, 2) != bytes("80 03")) continue;
      result.emplace_back();
      EXPECT_TRUE(result.back().ParsePartialFromArray(each.data() + 2, static_cast<int>(each.size()) - 2));
    }
    return result;
  }
};

TEST_F(SensorThreadsTest, EveryReportOfALiveSensorArrivesOnceAndInItsThreadsOrder) {
  for (int type = 1; type <= 21; ++type) makeLive(type);
  onManyThreads(
      THREADS,
      [this](unsigned int thread) {
        for (int round = 0; round < ROUNDS; ++round)
          reportEverySensor(&sensors, static_cast<int>(thread) << 16 | round);
      },
      [this] { sends(request(SENSOR_SPEED, 5)); });

  std::map<int, int> records;
  std::map<int, int> nextRound;
  int empty = 0;
  for (const SensorBatch& batch : batches()) {
    int inBatch = 0;
    for (const auto& [type, count] : recordsByType(batch)) {
      records[type] += count;
      inBatch += count;
    }
    EXPECT_LE(inBatch, 1);
    empty += inBatch == 0;
    for (const SpeedData& speed : batch.speed_data()) {
      EXPECT_EQ(speed.speed_e3() & 0xFFFF, nextRound[speed.speed_e3() >> 16]++);
    }
  }
  for (int type = 1; type <= 21; ++type) EXPECT_EQ(records[type], static_cast<int>(THREADS) * ROUNDS) << type;
  EXPECT_EQ(empty, static_cast<int>(THREADS) * ROUNDS);  // ahead of each climate report, and no others
}

TEST_F(SensorThreadsTest, NoRecordIsMixedOfTwoReportsWhileThePhoneStartsAndStopsSensors) {
  onManyThreads(
      THREADS,
      [this](unsigned int thread) {
        for (int round = 0; round < ROUNDS; ++round)
          reportEverySensor(&sensors, static_cast<int>(thread) << 16 | round);
      },
      [this] {
        for (int type = 1; type <= 21; ++type) sends(request(type, 0));
        for (int type = 1; type <= 21; ++type) sends(request(type, -1));
      });
  for (const SensorBatch& batch : batches()) {
    expectWhole(batch.location_data());
    expectWhole(batch.compass_data());
    expectWhole(batch.fuel_data());
    expectWhole(batch.tire_pressure_data());
    expectWhole(batch.gyroscope_data());
  }
}

TEST_F(SensorThreadsTest, SatellitesParkedByManyThreadsAllGoOut) {
  onManyThreads(
      THREADS,
      [this](unsigned int) {
        const int numbers[] = {1, 2, 3};
        const bool used[] = {true, true, true};
        for (int round = 0; round < ROUNDS; ++round) {
          sensors.reportGpsSatelliteData(3, true, 3, numbers, numbers, used, nullptr, nullptr);
        }
      },
      [this] { sends(request(SENSOR_SPEED, 0)); });
  sent();
  sends(request(SENSOR_GPS_SATELLITE, 0));
  const std::vector<SensorBatch> result = batches();
  ASSERT_EQ(result.size(), 1U);
  EXPECT_EQ(result[0].gps_satellite_data(0).satellites_size(), static_cast<int>(THREADS) * ROUNDS * 3);
}

TEST_F(SensorThreadsTest, ReportsSurviveAChannelThatClosesAndOpens) {
  for (int type = 1; type <= 21; ++type) makeLive(type);
  const Bytes openRequest = message(MESSAGE_CHANNEL_OPEN_REQUEST, bytes("08 00 10 07"));
  onManyThreads(
      THREADS,
      [this](unsigned int) {
        for (int round = 0; round < ROUNDS; ++round) reportEverySensor(&sensors, round);
      },
      [&] {
        close();
        link.feeds(frame(CHANNEL, ATOMIC | CONTROL | ENCRYPTED, openRequest));
      });
  sent();
  sensors.reportSpeedData(5);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 03 1A 02 08 05")));
}

}  // namespace
}  // namespace test
