#include "phone/SensorReader.h"

#include <gmock/gmock.h>

#include "phone/Discovery.h"
#include "phone_head_unit.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

constexpr int channel = 2;

struct BatchCollector : phone::CarListener {
  std::vector<SensorBatch> batches;
  void onSensorBatch(const SensorBatch& batch) override { batches.push_back(batch); }
};

struct PhoneSensorReader : testing::Test {
  phone::PhoneLink link{linkOptions()};
  HandMadeHeadUnit headUnit{&link};
  BatchCollector listener;
  phone::SensorReader sensors{&link, &listener};
  Service service;

  PhoneSensorReader() {
    headUnit.bringsUp();
    service.set_id(1);
    for (const SensorType type : {SENSOR_SPEED, SENSOR_GEAR, SENSOR_GPS_SATELLITE}) {
      service.mutable_sensor_source_service()->add_sensors()->set_sensor_type(type);
    }
  }
  void opens() {
    sensors.open(channel, service);
    headUnit.hears();
    headUnit.answersOpen(channel);
  }
};

TEST_F(PhoneSensorReader, OpensItsChannel) {
  sensors.open(channel, service);
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(bytes("00 07 08 00 10 01")));
}

TEST_F(PhoneSensorReader, RequestsEverySensorThatIsListed) {
  opens();
  EXPECT_THAT(headUnit.hearsMessages(), ElementsAre(bytes("80 01 08 03 10 00"), bytes("80 01 08 08 10 00"),
                                                    bytes("80 01 08 15 10 00")));
  EXPECT_EQ(sensors.stats().requested, 3U);
}

TEST_F(PhoneSensorReader, CountsAnswers) {
  opens();
  headUnit.sends(channel, bytes("80 02 08 00"));
  headUnit.sends(channel, bytes("80 02 08 00"));
  headUnit.sends(channel, bytes("80 02 08 F7 FF FF FF FF FF FF FF FF 01"));  // STATUS_INVALID_SENSOR
  headUnit.sends(channel, bytes("80 02"));
  EXPECT_EQ(sensors.stats().granted, 2U);
  EXPECT_EQ(sensors.stats().refused, 1U);
  EXPECT_EQ(sensors.stats().damaged, 1U);
}

TEST_F(PhoneSensorReader, HandsOnAndCountsEachBatch) {
  opens();
  headUnit.sends(channel, bytes("80 03 1A 03 08 90 4E"));           // speed 10000
  headUnit.sends(channel, bytes("80 03 1A 02 08 05 42 02 08 04"));  // speed 5 and gear 4
  ASSERT_THAT(listener.batches, SizeIs(2));
  EXPECT_EQ(listener.batches[0].speed_data(0).speed_e3(), 10000);
  EXPECT_EQ(listener.batches[1].gear_data(0).gear(), GEAR_4);
  EXPECT_EQ(sensors.stats().batches, 2U);
  EXPECT_THAT(sensors.stats().messages,
              ElementsAre(Pair(SENSOR_SPEED, 2), Pair(SENSOR_GEAR, 1), Pair(SENSOR_GPS_SATELLITE, 0)));
}

TEST_F(PhoneSensorReader, KnowsTheFieldOfEverySensor) {
  opens();
  for (int type = 1; type <= 21; ++type) {
    // An empty record in the field whose number is the sensor's; from 16 up its tag has two bytes.
    const auto tag = static_cast<unsigned>(type) << 3 | 2U;
    Bytes body = tag < 0x80
                     ? Bytes{static_cast<std::uint8_t>(tag), 0}
                     : Bytes{static_cast<std::uint8_t>(tag | 0x80U), static_cast<std::uint8_t>(tag >> 7), 0};
    headUnit.sends(channel, message(MESSAGE_SENSOR_BATCH, body));
  }
  ASSERT_THAT(sensors.stats().messages, SizeIs(21));
  for (const auto& [type, count] : sensors.stats().messages) EXPECT_EQ(count, 1U) << phone::nameOf(type);
}

TEST_F(PhoneSensorReader, AnEmptyBatchIsABatch) {
  opens();
  headUnit.sends(channel, bytes("80 03"));
  EXPECT_EQ(sensors.stats().batches, 1U);
  EXPECT_EQ(sensors.stats().damaged, 0U);
}

TEST_F(PhoneSensorReader, ADamagedBatchReachesNobody) {
  opens();
  headUnit.sends(channel, bytes("80 03 1A 09 08"));
  EXPECT_THAT(listener.batches, IsEmpty());
  EXPECT_EQ(sensors.stats().damaged, 1U);
}

TEST(PhoneSensorNames, EveryTypeHasItsOwn) {
  EXPECT_STREQ(phone::nameOf(SENSOR_LOCATION), "location");
  EXPECT_STREQ(phone::nameOf(SENSOR_ENVIRONMENT), "environment");
  EXPECT_STREQ(phone::nameOf(SENSOR_GPS_SATELLITE), "gps_satellite");
  EXPECT_STREQ(phone::nameOf(static_cast<SensorType>(22)), "unknown");
}

}  // namespace
}  // namespace test
