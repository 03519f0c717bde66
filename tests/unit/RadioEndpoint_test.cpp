#include "RadioEndpoint.h"

#include "ServiceTest.h"

namespace test {
namespace {

using testing::DoAll;
using testing::NotNull;
using testing::SetArgPointee;

struct MockRadioCallbacks : IRadioCallbacks {
  MOCK_METHOD(bool, setStation, (int, bool*, RdsData*), (override));
  MOCK_METHOD(void, powerOff, (), (override));
  MOCK_METHOD(void, scan, (bool), (override));
  MOCK_METHOD(void, stationInfoRequest, (), (override));
};

struct RadioEndpointTest : ServiceTest {
  shared_ptr<IRadioCallbacks> held;
  MockRadioCallbacks& host = strict<MockRadioCallbacks>(&held);
  RadioEndpoint radio{SERVICE, link.router(), held};
  RadioEndpointTest() { open(&radio); }

  /// What stands behind the type in the notification of `data`.
  Bytes notificationOf(const RdsData& data) {
    EXPECT_EQ(radio.sendRdsData(data), 0);
    const std::vector<Bytes> messages = sent();
    EXPECT_EQ(messages.size(), 1U);
    EXPECT_EQ(part(messages[0], 0, 2), bytes("80 04"));  // MESSAGE_RADIO_STATION_INFO_NOTIFICATION
    return part(messages[0], 2);
  }
};

RdsData everything() {
  RdsData data;
  data.alternativeFrequencyHz = 300;
  data.programIdentification = "PI";
  data.programService = "PS";
  data.programType = "PT";
  data.radioText = "RT";
  data.hd = 1;
  data.stereo = 2;
  return data;
}

const Bytes EVERYTHING = bytes("08 AC 02") +            // alternative_frequency_hz 300
                         bytes("12 02") + text("PI") +  // program_identification
                         bytes("1A 02") + text("PS") +  // program_service
                         bytes("22 02") + text("PT") +  // program_type
                         bytes("2A 02") + text("RT") +  // radio_text
                         bytes(
                             "30 01"    // stereo
                             "38 00");  // hd: false, and said so

const Bytes SET_STATION = bytes(
    "80 05"       // MESSAGE_RADIO_SET_STATION_REQUEST
    "08 AC 02");  // frequency_hz 300

const Bytes TUNED = bytes(
    "80 06"    // MESSAGE_RADIO_SET_STATION_RESPONSE
    "08 00");  // status: success

const Bytes NOT_TUNED = bytes(
    "80 06"
    "08 ED FF FF FF FF FF FF FF FF 01");  // status -19: invalid station

TEST_F(RadioEndpointTest, StartsAScanInTheDirectionAskedFor) {
  InSequence order;
  EXPECT_CALL(host, scan(true));
  EXPECT_CALL(host, scan(false));
  sends(bytes("80 01 08 01"));  // MESSAGE_RADIO_SCAN_REQUEST, forward
  EXPECT_EQ(routed(bytes("80 01 08 00")), 0);
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(RadioEndpointTest, ASecondScanRequestDuringAScanCallsScanAgain) {
  EXPECT_CALL(host, scan(true)).Times(2);
  sends(bytes("80 01 08 01"));
  sends(bytes("80 01 08 01"));
}

TEST_F(RadioEndpointTest, PassesTheStationInfoRequestOn) {
  EXPECT_CALL(host, stationInfoRequest()).Times(2);
  sends(bytes("80 03"));  // MESSAGE_RADIO_STATION_INFO_REQUEST
  EXPECT_EQ(routed(bytes("80 03 08 01")), 0);
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(RadioEndpointTest, AnswersSetStationAtOnce) {
  EXPECT_CALL(host, setStation(300, NotNull(), NotNull())).Times(2).WillRepeatedly(Return(true));
  sends(SET_STATION);
  EXPECT_THAT(sent(), ElementsAre(TUNED));
  EXPECT_EQ(routed(SET_STATION), STATUS_SUCCESS);
}

TEST_F(RadioEndpointTest, ReportsAStationThatCouldNotBeTuned) {
  EXPECT_CALL(host, setStation(300, _, _)).Times(2).WillRepeatedly(Return(false));
  sends(SET_STATION);
  EXPECT_THAT(sent(), ElementsAre(NOT_TUNED));  // and no MESSAGE_UNEXPECTED_MESSAGE
  EXPECT_EQ(routed(SET_STATION), STATUS_INVALID_STATION);
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(RadioEndpointTest, PreparesTheStationDataEmpty) {
  EXPECT_CALL(host, setStation).WillOnce([](int, bool* hasRdsData, RdsData* data) {
    EXPECT_FALSE(*hasRdsData);
    EXPECT_EQ(data->alternativeFrequencyHz, 0);
    EXPECT_EQ(data->programIdentification + data->programService + data->programType + data->radioText, "");
    EXPECT_EQ(data->hd, 0);
    EXPECT_EQ(data->stereo, 0);
    return true;
  });
  sends(SET_STATION);
}

TEST_F(RadioEndpointTest, SendsTheStationDataThatTheHostFlags) {
  EXPECT_CALL(host, setStation)
      .WillOnce(DoAll(SetArgPointee<1>(true), SetArgPointee<2>(everything()), Return(true)));
  sends(SET_STATION);
  EXPECT_THAT(sent(), ElementsAre(TUNED + bytes("12 17") + EVERYTHING));  // station_data
}

TEST_F(RadioEndpointTest, LeavesStationDataOutUnlessTheHostFlagsIt) {
  EXPECT_CALL(host, setStation).WillOnce(DoAll(SetArgPointee<2>(everything()), Return(true)));
  sends(SET_STATION);
  EXPECT_THAT(sent(), ElementsAre(TUNED));
}

TEST_F(RadioEndpointTest, SendsFlaggedStationDataThatIsEmpty) {
  EXPECT_CALL(host, setStation).WillOnce(DoAll(SetArgPointee<1>(true), Return(true)));
  sends(SET_STATION);
  EXPECT_THAT(sent(), ElementsAre(TUNED + bytes("12 00")));
}

TEST_F(RadioEndpointTest, SendsStationDataWithARefusalToo) {
  EXPECT_CALL(host, setStation)
      .WillOnce(DoAll(SetArgPointee<1>(true), SetArgPointee<2>(everything()), Return(false)));
  sends(SET_STATION);
  EXPECT_THAT(sent(), ElementsAre(NOT_TUNED + bytes("12 17") + EVERYTHING));
}

TEST_F(RadioEndpointTest, PowerOffTrueSwitchesOffAndIgnoresTheFrequency) {
  EXPECT_CALL(host, powerOff());
  sends(SET_STATION + bytes("10 01"));  // power_off
  EXPECT_THAT(sent(), ElementsAre(TUNED));
}

TEST_F(RadioEndpointTest, PowerOffFalseTunes) {
  EXPECT_CALL(host, setStation(300, _, _)).WillOnce(Return(true));
  sends(SET_STATION + bytes("10 00"));
}

TEST_F(RadioEndpointTest, ARequestWithoutFieldsTunesToZero) {
  EXPECT_CALL(host, setStation(0, _, _)).WillOnce(Return(true));
  sends(bytes("80 05"));
}

TEST_F(RadioEndpointTest, SendsAllStationData) { EXPECT_EQ(notificationOf(everything()), EVERYTHING); }

TEST_F(RadioEndpointTest, SendsANotificationWithNoFieldsForEmptyData) {
  EXPECT_EQ(notificationOf(RdsData()), Bytes());
}

TEST_F(RadioEndpointTest, LeavesOutAnAlternativeFrequencyOfZeroOrBelow) {
  RdsData data;
  for (const int frequency : {0, -1, INT32_MIN}) {
    data.alternativeFrequencyHz = frequency;
    EXPECT_EQ(notificationOf(data), Bytes());
  }
  data.alternativeFrequencyHz = 1;
  EXPECT_EQ(notificationOf(data), bytes("08 01"));
}

TEST_F(RadioEndpointTest, ThreeValuedFlagsAreTrueFalseOrUnknown) {
  RdsData data;
  for (const int isFalse : {1, 3, -1}) {
    data.stereo = data.hd = isFalse;
    EXPECT_EQ(notificationOf(data), bytes("30 00 38 00"));
  }
  data.stereo = 2;
  data.hd = 0;
  EXPECT_EQ(notificationOf(data), bytes("30 01"));
  data.stereo = 0;
  data.hd = 2;
  EXPECT_EQ(notificationOf(data), bytes("38 01"));
}

TEST_F(RadioEndpointTest, TellsOfTheEndOfAScan) {
  const RdsData data = everything();
  EXPECT_EQ(radio.notifyScanComplete(5, 300, &data), 0);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 02"     // MESSAGE_RADIO_SCAN_COMPLETE_NOTIFICATION
                                        "08 05"     // status, whatever it stands for
                                        "10 AC 02"  // frequency_hz 300
                                        "1A 17") +
                                  EVERYTHING));  // station_data
}

TEST_F(RadioEndpointTest, TellsOfTheEndOfAScanWithoutStationData) {
  EXPECT_EQ(radio.notifyScanComplete(0, 0, nullptr), 0);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 02"
                                        "08 00"      // status
                                        "10 00")));  // frequency_hz
}

TEST_F(RadioEndpointTest, SendsNothingOnAClosedChannelAndReportsSuccess) {
  close();
  EXPECT_EQ(radio.sendRdsData(everything()), 0);
  EXPECT_EQ(radio.notifyScanComplete(0, 300, nullptr), 0);
  EXPECT_THAT(link.sentFrames(), IsEmpty());
}

TEST_F(RadioEndpointTest, AdvertisesTheTuner) {
  radio.setRadioType(RADIO_TYPE_2);
  radio.setStartFrequencyHz(87500000);
  radio.setEndFrequencyHz(108000000);
  radio.setChannelSpacingHz(100000);
  EXPECT_EQ(advertised(), bytes("0A 14"           // services
                                "08 07"           // id
                                "3A 10"           // radio_service
                                "08 02"           // radio_type 2
                                "10 E0 C9 DC 29"  // start_frequency_hz 87500000
                                "18 80 E6 BF 33"  // end_frequency_hz 108000000
                                "20 A0 8D 06"));  // channel_spacing_hz 100000
}

TEST_F(RadioEndpointTest, AdvertisesATunerThatWasNotDescribed) {
  EXPECT_EQ(advertised(), bytes("0A 0C 08 07"
                                "3A 08"
                                "08 01"                 // radio_type 1
                                "10 00 18 00 20 00"));  // all said, as zeros
}

TEST_F(RadioEndpointTest, RefusesWhatDoesNotParse) {
  expectUnparsable(bytes("80 01"), "RadioEndpoint");        // no forward
  expectUnparsable(bytes("80 01 08"), "RadioEndpoint");     // cut off
  expectUnparsable(bytes("80 03 08"), "RadioEndpoint");     // cut off, though nothing in it counts
  expectUnparsable(bytes("80 05 08 80"), "RadioEndpoint");  // cut off
}

TEST_F(RadioEndpointTest, RefusesEveryOtherType) {
  expectUnknownTypes({0x8000, 0x8002, 0x8004, 0x8006, 0x8007, 0, 255, 0xFFFF});
}

using RadioEndpointDeathTest = RadioEndpointTest;

TEST_F(RadioEndpointDeathTest, ATypeOutsideTheEnumerationEndsTheProcessAtDiscovery) {
  for (const int type : {0, 3, -1}) {
    radio.setRadioType(static_cast<RadioType>(type));
    EXPECT_DEATH(advertised(), "::RadioType_IsValid\\(value\\)") << type;
  }
}

}  // namespace
}  // namespace test
