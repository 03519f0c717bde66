#include "SensorSource.h"

#include "FailingCalls.h"
#include "SensorTest.h"

// What the phone requests, and what becomes of a value that it has not requested. Each report's own bytes are
// in SensorReports_test.cpp.

namespace test {
namespace {

struct SensorSourceTest : SensorTest {};

/// A head unit without any sensor, so far.
struct FewSensorsTest : ServiceTest {
  struct Source : SensorSource {
    using SensorSource::sendSensorResponse;
    using SensorSource::SensorSource;
  };
  Source sensors{SERVICE, link.router()};
  FewSensorsTest() { open(&sensors); }
};

const Bytes INVALID_SENSOR = bytes(
    "80 02"                               // MESSAGE_SENSOR_RESPONSE
    "08 F7 FF FF FF FF FF FF FF FF 01");  // status -9

// ---- Discovery ----

TEST_F(FewSensorsTest, AreDiscoveredOncePerTypeInAscendingOrder) {
  for (const int type : {21, 3, 21, 1}) sensors.registerSensor(type);
  EXPECT_EQ(advertised(), bytes("0A 10"           // services
                                "08 07"           // id 7
                                "12 0C"           // sensor_source_service
                                "0A 02 08 01"     // sensors: location
                                "0A 02 08 03"     // speed
                                "0A 02 08 15"));  // GPS satellites
}

TEST_F(FewSensorsTest, AreDiscoveredAsAnEmptyServiceIfThereIsNone) {
  EXPECT_EQ(advertised(), bytes("0A 04 08 07 12 00"));
}

TEST_F(FewSensorsTest, EndTheProcessAtDiscoveryWithATypeThatDoesNotExist) {
  sensors.registerSensor(22);
  EXPECT_DEATH(advertised(), "::SensorType_IsValid\\(value\\)");
}

TEST_F(FewSensorsTest, EndTheProcessAtDiscoveryWithTypeZero) {
  sensors.registerSensor(0);
  EXPECT_DEATH(advertised(), "::SensorType_IsValid\\(value\\)");
}

// ---- Requests ----

TEST_F(SensorSourceTest, GrantsARequestForASensorThatWasNeverReportedWithTheAnswerAlone) {
  sends(
      bytes("80 01"                                  // MESSAGE_SENSOR_REQUEST
            "08 03"                                  // type: speed
            "10 00"));                               // min_update_period 0
  EXPECT_THAT(sent(), ElementsAre(bytes("80 02"      // MESSAGE_SENSOR_RESPONSE
                                        "08 00")));  // status: success
}

TEST_F(SensorSourceTest, AnswersFirstAndSendsTheParkedValueSecond) {
  sensors.reportSpeedData(5);
  EXPECT_EQ(routed(request(SENSOR_SPEED, 1000)), STATUS_SUCCESS);
  EXPECT_THAT(sent(), ElementsAre(granted(), bytes("80 03 1A 02 08 05")));
}

TEST_F(SensorSourceTest, IsLiveBeforeThePhoneCanHaveTheAnswer) {
  const EventAtPost answered([&] { sensors.reportSpeedData(9); });
  sends(request(SENSOR_SPEED, 0));
  EXPECT_THAT(sent(), ElementsAre(granted(), bytes("80 03 1A 02 08 09")));
}

TEST_F(SensorSourceTest, IsParkedBeforeThePhoneCanHaveTheAnswerToAStop) {
  makeLive(SENSOR_SPEED);
  const EventAtPost answered([&] { sensors.reportSpeedData(9); });
  sends(request(SENSOR_SPEED, -1));
  EXPECT_THAT(sent(), ElementsAre(granted()));
  sends(request(SENSOR_SPEED, 0));
  EXPECT_THAT(sent(), ElementsAre(granted(), bytes("80 03 1A 02 08 09"))) << "it was reported, and parked";
}

TEST_F(SensorSourceTest, GrantsEveryTypeAndNoneOnBehalfOfAnother) {
  sensors.reportParkingBrakeData(true);
  for (int type = 1; type <= 21; ++type) {
    sends(request(type, 0));
    EXPECT_EQ(sent().size(), type == SENSOR_PARKING_BRAKE ? 2U : 1U) << type;
  }
}

TEST_F(SensorSourceTest, MakesASensorLiveByAnyPeriodButMinusOne) {
  for (const long long period : {0LL, 1LL, -2LL, 0x7FFFFFFFFFFFFFFFLL, 0xFFFFFFFFLL}) {
    sends(request(SENSOR_RPM, -1));
    sends(request(SENSOR_RPM, period));
    sent();
    sensors.reportRpmData(1);
    EXPECT_THAT(sent(), ElementsAre(bytes("80 03 22 02 08 01"))) << period;
  }
}

TEST_F(SensorSourceTest, HoldsNothingBackHoweverLongThePeriod) {
  sends(request(SENSOR_RPM, 0x7FFFFFFFFFFFFFFF));
  sent();
  for (int i = 0; i < 100; ++i) sensors.reportRpmData(i);
  EXPECT_EQ(sent().size(), 100U);
}

TEST_F(SensorSourceTest, SendsAnEmptyRecordOnTheSecondOfTwoRequestsInARow) {
  sensors.reportSpeedData(5);
  sends(request(SENSOR_SPEED, 0));
  sends(request(SENSOR_SPEED, 0));
  EXPECT_THAT(sent(), ElementsAre(granted(), bytes("80 03 1A 02 08 05"),  //
                                  granted(), bytes("80 03 1A 00")));      // not even the required field
}

TEST_F(SensorSourceTest, DoesNotParkWhatItSendsAtOnce) {
  sensors.reportSpeedData(5);
  makeLive(SENSOR_SPEED);
  sensors.reportSpeedData(6);
  sent();
  sends(request(SENSOR_SPEED, 0));
  EXPECT_THAT(sent(), ElementsAre(granted(), bytes("80 03 1A 00")));
}

TEST_F(SensorSourceTest, FillsTheEmptyRecordThatTheRequestLeftWithTheNextParkedReport) {
  sensors.reportCompassData3D(1, true, 2, true, 3);
  makeLive(SENSOR_COMPASS);
  sends(request(SENSOR_COMPASS, -1));
  sent();
  sensors.reportCompassData(4);
  sends(request(SENSOR_COMPASS, 0));
  EXPECT_THAT(sent(), ElementsAre(granted(), bytes("80 03 12 02 08 04")));  // pitch and roll have gone
}

TEST_F(SensorSourceTest, StopsASensorWithoutSendingTheValueThatWaits) {
  sensors.reportSpeedData(5);
  sends(request(SENSOR_SPEED, -1));
  EXPECT_THAT(sent(), ElementsAre(granted()));
  sensors.reportSpeedData(6);
  EXPECT_THAT(sent(), IsEmpty());
  sends(request(SENSOR_SPEED, 0));
  EXPECT_THAT(sent(), ElementsAre(granted(), bytes("80 03 1A 02 08 06")));
}

TEST_F(SensorSourceTest, ParksALiveSensorByAPeriodOfMinusOne) {
  makeLive(SENSOR_SPEED);
  sends(request(SENSOR_SPEED, -1));
  EXPECT_THAT(sent(), ElementsAre(granted()));
  EXPECT_EQ(sensors.reportSpeedData(7), STATUS_SUCCESS);
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(FewSensorsTest, RefuseARequestForATypeThatIsNotThereAndKeepItParked) {
  sensors.registerSensor(SENSOR_RPM);
  const Bytes request = bytes("80 01 08 03 10 00");
  EXPECT_EQ(routed(request), STATUS_INVALID_SENSOR);
  EXPECT_THAT(sent(), ElementsAre(INVALID_SENSOR));
  sensors.reportSpeedData(1);
  EXPECT_THAT(sent(), IsEmpty());
  sends(request);
  EXPECT_THAT(sent(), ElementsAre(INVALID_SENSOR));
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(FewSensorsTest, DoNotRecogniseATypeThatDoesNotExistEvenIfItIsRegistered) {
  for (const int type : {0, 22}) sensors.registerSensor(type);
  expectUnparsable(bytes("80 01 08 00 10 00"), "SensorSource");
  expectUnparsable(bytes("80 01 08 16 10 00"), "SensorSource");
}

TEST_F(SensorSourceTest, RefusesARequestThatLacksAField) {
  expectUnparsable(bytes("80 01 08 03"), "SensorSource");
  expectUnparsable(bytes("80 01 10 00"), "SensorSource");
  expectUnparsable(bytes("80 01"), "SensorSource");
  expectUnparsable(bytes("80 01 08"), "SensorSource");
}

TEST_F(SensorSourceTest, AnswersAnyOtherMessageAsUnexpectedWithoutALineOfItsOwn) {
  expectUnknownTypes({0, 1, 0x8000, MESSAGE_SENSOR_RESPONSE, MESSAGE_SENSOR_BATCH, 0x8004, 0xFFFF});
}

TEST_F(FewSensorsTest, EndTheProcessForAStatusThatDoesNotExist) {
  EXPECT_DEATH(sensors.sendSensorResponse(1), "::MessageStatus_IsValid\\(value\\)");
  EXPECT_DEATH(sensors.sendSensorResponse(-252), "::MessageStatus_IsValid\\(value\\)");
}

// ---- Parked values ----

TEST_F(SensorSourceTest, SendsNothingForAReportBeforeAnyRequest) {
  EXPECT_EQ(sensors.reportSpeedData(5), STATUS_SUCCESS);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(SensorSourceTest, KeepsTheLatestParkedReportOnly) {
  sensors.reportSpeedData(5);
  sensors.reportSpeedData(6);
  sends(request(SENSOR_SPEED, 0));
  EXPECT_THAT(sent(), ElementsAre(granted(), bytes("80 03 1A 02 08 06")));
}

TEST_F(SensorSourceTest, KeepsPitchAndRollBehindAParkedReportOfTheBearingAlone) {
  sensors.reportCompassData3D(1, true, 2, true, 3);
  sensors.reportCompassData(4);
  sends(request(SENSOR_COMPASS, 0));
  EXPECT_THAT(sent(), ElementsAre(granted(), bytes("80 03 12 06 08 04 10 02 18 03")));
}

TEST_F(SensorSourceTest, MergesTheParkedReportsOfEverySensorButTwo) {
  sensors.reportEnvironmentData(true, 1, false, 9);
  sensors.reportEnvironmentData(false, 9, true, 2);
  sensors.reportHvacData(true, 3, false, 9);
  sensors.reportHvacData(false, 9, true, 4);
  sensors.reportLightData(true, 2, false, 9, true, true);
  sensors.reportLightData(false, 9, true, 3, false, false);
  sensors.reportAccelerometerData(true, 5, true, 6, false, 9);
  sensors.reportAccelerometerData(false, 9, true, 7, true, 8);
  sensors.reportGyroscopeData(true, 5, false, 9, false, 9);
  sensors.reportGyroscopeData(false, 9, false, 9, true, 8);
  for (const int type : {11, 12, 17, 19, 20}) sends(request(type, 0));
  EXPECT_THAT(sent(), ElementsAre(granted(), batch(bytes("5A 04 08 01 10 02")),           //
                                  granted(), batch(bytes("62 04 08 03 10 04")),           //
                                  granted(), batch(bytes("8A 01 06 08 02 10 03 18 01")),  //
                                  granted(), batch(bytes("9A 01 06 08 05 10 07 18 08")),  //
                                  granted(), batch(bytes("A2 01 04 08 05 18 08"))));
}

TEST_F(SensorSourceTest, ReplacesAParkedLocation) {
  sensors.reportLocationData(1, 2, 3, true, 4, true, 5, true, 6, true, 7);
  sensors.reportLocationData(8, 9, 10, false, 0, false, 0, false, 0, false, 0);
  sends(request(SENSOR_LOCATION, 0));
  EXPECT_THAT(sent(), ElementsAre(granted(), bytes("80 03 0A 06 08 08 10 09 18 0A")));
}

TEST_F(SensorSourceTest, ReplacesAParkedFuelState) {
  sensors.reportFuelData(true, 1, true, 2, true, true);
  sensors.reportFuelData(false, 0, true, 3, false, false);
  sends(request(SENSOR_FUEL, 0));
  EXPECT_THAT(sent(), ElementsAre(granted(), bytes("80 03 32 02 10 03")));
}

TEST_F(SensorSourceTest, ReplacesAParkedListWhole) {
  const int four[] = {1, 2, 3, 4}, two[] = {5, 6};
  const bool doors[] = {true, true, false}, oneDoor[] = {false};
  sensors.reportDeadReckoningData(true, 9, four, 4);
  sensors.reportDeadReckoningData(false, 0, two, 2);
  sensors.reportTirePressureData(four, 4);
  sensors.reportTirePressureData(two, 2);
  sensors.reportDoorData(true, true, false, false, doors, 3);
  sensors.reportDoorData(false, false, true, true, oneDoor, 1);
  for (const int type : {14, 18, 16}) sends(request(type, 0));
  EXPECT_THAT(sent(), ElementsAre(granted(), batch(bytes("72 06 08 09 10 05 10 06")),  //
                                  granted(), batch(bytes("92 01 04 08 05 08 06")),     //
                                  granted(), batch(bytes("82 01 06 08 01 10 01 18 00"))));
}

TEST_F(SensorSourceTest, LeavesAParkedListAsItIsForAReportWithoutArrayOrCount) {
  const int list[] = {1, 2};
  const bool doors[] = {true, false};
  sensors.reportTirePressureData(list, 2);
  sensors.reportTirePressureData(nullptr, 4);
  sensors.reportTirePressureData(list, 0);
  sensors.reportDeadReckoningData(false, 0, list, 2);
  sensors.reportDeadReckoningData(true, 7, nullptr, 4);
  sensors.reportDeadReckoningData(false, 0, list, -1);
  sensors.reportDoorData(false, false, false, false, doors, 2);
  sensors.reportDoorData(true, true, false, false, nullptr, 4);
  sensors.reportDoorData(false, false, false, false, doors, 0);
  for (const int type : {18, 14, 16}) sends(request(type, 0));
  EXPECT_THAT(sent(), ElementsAre(granted(), batch(bytes("92 01 04 08 01 08 02")),     //
                                  granted(), batch(bytes("72 06 08 07 10 01 10 02")),  //
                                  granted(), batch(bytes("82 01 06 08 01 18 01 18 00"))));
}

TEST_F(SensorSourceTest, GathersParkedSatellitesOfEveryReportUntilTheRequest) {
  const bool used[] = {true, true, true, true};
  for (int report = 1; report <= 3; ++report) {
    const int prns[] = {report * 10, report * 10 + 1, report * 10 + 2, report * 10 + 3};
    sensors.reportGpsSatelliteData(report, true, 4, prns, prns, used, prns, prns);
  }
  sends(request(SENSOR_GPS_SATELLITE, 0));
  const std::vector<Bytes> messages = sent();
  ASSERT_EQ(messages.size(), 2U);
  SensorBatch received;
  ASSERT_TRUE(received.ParseFromArray(messages[1].data() + 2, static_cast<int>(messages[1].size()) - 2));
  ASSERT_EQ(received.gps_satellite_data_size(), 1);
  EXPECT_EQ(received.gps_satellite_data(0).number_in_use(), 3);
  EXPECT_EQ(received.gps_satellite_data(0).number_in_view(), 4);
  std::vector<int> prns;
  for (const GpsSatellite& satellite : received.gps_satellite_data(0).satellites())
    prns.push_back(satellite.prn());
  EXPECT_THAT(prns, ElementsAre(10, 11, 12, 13, 20, 21, 22, 23, 30, 31, 32, 33));

  sends(request(SENSOR_GPS_SATELLITE, 0));
  EXPECT_THAT(sent(), ElementsAre(granted(), bytes("80 03 AA 01 00")));  // and none is left
}

TEST_F(SensorSourceTest, KeepsParkedSatellitesBehindAReportWithoutThem) {
  const int numbers[] = {5};
  const bool used[] = {true};
  sensors.reportGpsSatelliteData(1, true, 1, numbers, numbers, used, nullptr, nullptr);
  sensors.reportGpsSatelliteData(2, false, 9, numbers, numbers, used, nullptr, nullptr);
  sends(request(SENSOR_GPS_SATELLITE, 0));
  EXPECT_THAT(sent(), ElementsAre(granted(), batch(bytes("AA 01 0C 08 02 10 01"
                                                         "1A 06 08 05 10 05 18 01"))));
}

// ---- Channels ----

TEST_F(SensorSourceTest, StaysLiveThroughACloseAndAnOpen) {
  makeLive(SENSOR_SPEED);
  close();
  EXPECT_EQ(sensors.reportSpeedData(1), STATUS_SUCCESS);
  link.opens(CHANNEL, SERVICE);
  EXPECT_THAT(sent(), IsEmpty());
  sensors.reportSpeedData(2);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 03 1A 02 08 02")));
}

TEST_F(SensorSourceTest, SendsNoParkedValueForTheOpeningOfAChannel) {
  close();
  sensors.reportSpeedData(1);
  link.opens(CHANNEL, SERVICE);
  EXPECT_THAT(sent(), IsEmpty());
  sends(request(SENSOR_SPEED, 0));
  EXPECT_THAT(sent(), ElementsAre(granted(), bytes("80 03 1A 02 08 01")));
}

TEST_F(SensorSourceTest, SendsABatchOfTheHostsOwnAsItIsWhateverWasRequested) {
  SensorBatch batch;
  batch.add_speed_data();
  batch.add_night_mode_data()->set_night_mode(true);
  sensors.sendSensorBatch(batch);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 03 1A 00 52 02 08 01")));
  close();
  sensors.sendSensorBatch(batch);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(SensorSourceTest, HasNoTimer) {
  sensors.reportSpeedData(1);
  makeLive(SENSOR_RPM);
  for (const unsigned long long now : {0ULL, 1ULL, 0xFFFFFFFFFFFFFFFFULL}) sensors.tick(now);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

}  // namespace
}  // namespace test
