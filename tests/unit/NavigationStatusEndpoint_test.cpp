#include "NavigationStatusEndpoint.h"

#include "ServiceTest.h"

namespace test {
namespace {

struct MockNavigationStatusCallbacks : INavigationStatusCallbacks {
  MOCK_METHOD(void, navigationStatus, (int), (override));
  MOCK_METHOD(void, navigationNextTurn, (const std::string&, int, int, const std::string&, int, int),
              (override));
  MOCK_METHOD(void, navigationNextTurnDistance, (int, int), (override));
};

struct NavigationStatusEndpointTest : ServiceTest {
  shared_ptr<INavigationStatusCallbacks> held;
  MockNavigationStatusCallbacks& host = strict<MockNavigationStatusCallbacks>(&held);
  NavigationStatusEndpoint navigation{SERVICE, link.router(), held};
  NavigationStatusEndpointTest() { open(&navigation); }
};

const Bytes MAIN_STREET = bytes(
                              "80 04"  // MESSAGE_NAVIGATION_NEXT_TURN_EVENT
                              "0A 04") +
                          text("Main");  // road

TEST_F(NavigationStatusEndpointTest, StartsAndStopsTheFlow) {
  navigation.start();
  navigation.stop();
  EXPECT_THAT(sent(), ElementsAre(bytes("80 01"),    // MESSAGE_NAVIGATION_STATUS_START, empty
                                  bytes("80 02")));  // MESSAGE_NAVIGATION_STATUS_STOP, empty
}

TEST_F(NavigationStatusEndpointTest, StartsAndStopsAsOftenAsAsked) {
  navigation.stop();
  navigation.start();
  navigation.start();
  EXPECT_THAT(sent(), ElementsAre(bytes("80 02"), bytes("80 01"), bytes("80 01")));
}

TEST_F(NavigationStatusEndpointTest, DropsStartAndStopOnAClosedChannelForGood) {
  close();
  navigation.start();
  navigation.stop();
  link.opens(CHANNEL, SERVICE);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(NavigationStatusEndpointTest, HandsOverTheStatusWithoutAStart) {
  EXPECT_CALL(host, navigationStatus(1)).Times(2);
  sends(
      bytes("80 03"     // MESSAGE_NAVIGATION_STATUS
            "08 01"));  // status: active
  EXPECT_EQ(routed(bytes("80 03 08 01")), STATUS_SUCCESS);
}

TEST_F(NavigationStatusEndpointTest, HandsOverTheNextTurnWithTheAngleAheadOfTheNumber) {
  EXPECT_CALL(host, navigationNextTurn("Main", 2, 13, "PNG", 90, 3));
  EXPECT_EQ(routed(MAIN_STREET +
                   bytes("10 02"  // turn_side: right
                         "18 0D"  // event: roundabout enter and exit
                         "22 03") +
                   text("PNG") +     // image
                   bytes("28 03"     // turn_number 3
                         "30 5A")),  // turn_angle 90
            STATUS_SUCCESS);
}

TEST_F(NavigationStatusEndpointTest, MarksWhatTheNextTurnLeavesOut) {
  EXPECT_CALL(host, navigationNextTurn("Main", 0, 4, "", -1, -1));
  sends(MAIN_STREET + bytes("18 04"));  // event: turn
}

TEST_F(NavigationStatusEndpointTest, AnAbsentEventReadsAsUnknown) {
  EXPECT_CALL(host, navigationNextTurn("Main", 0, 0, "", -1, -1));
  sends(MAIN_STREET);
}

TEST_F(NavigationStatusEndpointTest, MarksAnAbsentAngleBesideAPresentNumber) {
  EXPECT_CALL(host, navigationNextTurn("Main", 0, 0, "", -1, 2));
  sends(MAIN_STREET + bytes("28 02"));  // turn_number 2
}

TEST_F(NavigationStatusEndpointTest, MarksAnAbsentNumberBesideAPresentAngle) {
  EXPECT_CALL(host, navigationNextTurn("Main", 0, 0, "", 0, -1));
  sends(MAIN_STREET + bytes("30 00"));  // turn_angle 0
}

TEST_F(NavigationStatusEndpointTest, HandsOverAnImageWithZeroBytesWhole) {
  EXPECT_CALL(host, navigationNextTurn("Main", 0, 0, std::string("\0A\0\0", 4), -1, -1));
  sends(MAIN_STREET + bytes("22 04 00 41 00 00"));
}

TEST_F(NavigationStatusEndpointTest, HandsOverALargeImageThatEndsInTransparency) {
  constexpr unsigned int SIZE = 1U << 21;
  EXPECT_CALL(host, navigationNextTurn("Main", 0, 0, std::string(SIZE, '\0'), -1, -1));
  sends(MAIN_STREET + bytes("22 80 80 80 01") + filled(SIZE, 0));  // image, 2 MiB
}

TEST_F(NavigationStatusEndpointTest, DropsValuesOutsideTheEnumerations) {
  EXPECT_CALL(host, navigationNextTurn("Main", 0, 0, "", -1, -1));
  sends(MAIN_STREET + bytes("10 04"     // turn_side 4
                            "18 0F"));  // event 15
}

TEST_F(NavigationStatusEndpointTest, HandsOverTheDistance) {
  EXPECT_CALL(host, navigationNextTurnDistance(300, -1)).Times(2);
  const Bytes event = bytes(
      "80 05"                               // MESSAGE_NAVIGATION_NEXT_TURN_DISTANCE_EVENT
      "08 AC 02"                            // distance_meters 300
      "10 FF FF FF FF FF FF FF FF FF 01");  // time_to_turn_seconds -1, unchecked
  sends(event);
  EXPECT_EQ(routed(event), STATUS_SUCCESS);
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(NavigationStatusEndpointTest, AdvertisesTheImagesOfAClusterThatDraws) {
  navigation.setMinimumIntervalMs(500);
  navigation.setImageHeight(64);
  navigation.setImageWidth(128);
  navigation.setImageColourDepthBits(32);
  navigation.setInstrumentClusterType(NavigationStatusService_InstrumentClusterType_IMAGE);
  EXPECT_EQ(advertised(), bytes("0A 12"     // services
                                "08 07"     // id
                                "42 0E"     // navigation_status_service
                                "08 F4 03"  // minimum_interval_ms 500
                                "10 01"     // type: image
                                "1A 07"     // image_options
                                "08 40"     // height 64
                                "10 80 01"  // width 128
                                "18 20"));  // colour_depth_bits 32
}

TEST_F(NavigationStatusEndpointTest, AdvertisesNoImagesForAClusterOfSymbols) {
  navigation.setImageHeight(64);
  navigation.setImageWidth(128);
  navigation.setImageColourDepthBits(32);
  navigation.setInstrumentClusterType(NavigationStatusService_InstrumentClusterType_ENUM);
  EXPECT_EQ(advertised(), bytes("0A 08 08 07"
                                "42 04"
                                "08 00"     // minimum_interval_ms: zero, and said so
                                "10 02"));  // type: enum
}

TEST_F(NavigationStatusEndpointTest, RefusesWhatDoesNotParse) {
  expectUnparsable(bytes("80 03"), "NavigationStatusEndpoint");           // no status
  expectUnparsable(bytes("80 03 08 03"), "NavigationStatusEndpoint");     // no such status
  expectUnparsable(bytes("80 04 18 04"), "NavigationStatusEndpoint");     // no road
  expectUnparsable(bytes("80 04 0A 04 4D"), "NavigationStatusEndpoint");  // cut off
  expectUnparsable(bytes("80 05 08 01"), "NavigationStatusEndpoint");     // no time_to_turn_seconds
  expectUnparsable(bytes("80 05 10 01"), "NavigationStatusEndpoint");     // no distance_meters
}

TEST_F(NavigationStatusEndpointTest, RefusesEveryOtherType) {
  expectUnknownTypes({0x8000, 0x8001, 0x8002, 0x8006, 0, 255, 0xFFFF});
}

using NavigationStatusEndpointDeathTest = NavigationStatusEndpointTest;

TEST_F(NavigationStatusEndpointDeathTest, ATypeOutsideTheEnumerationEndsTheProcessAtDiscovery) {
  for (const int type : {0, 3}) {
    navigation.setInstrumentClusterType(type);
    EXPECT_DEATH(advertised(), "::NavigationStatusService_InstrumentClusterType_IsValid\\(value\\)");
  }
}

}  // namespace
}  // namespace test
