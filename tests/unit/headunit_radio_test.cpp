#include "headunit/services/RadioService.h"

#include "headunit_services.h"

namespace headunit {
namespace {

constexpr int STATION_HZ = 88'000'000;

struct HeadunitRadio : ServicesTest {
  TunerEndpoint radio{SERVICE, context,
                      std::vector<Station>{{STATION_HZ, "ONE", "D001", "News", {"first", "then"}, true, 0}}};
  HeadunitRadio() { open(&radio); }

  void tunesTo(int hertz) {
    RadioSetStationRequest request;
    request.set_frequency_hz(hertz);
    sends(MESSAGE_RADIO_SET_STATION_REQUEST, request);
  }
  void scans(bool forward) {
    RadioScanRequest request;
    request.set_forward(forward);
    sends(MESSAGE_RADIO_SCAN_REQUEST, request);
  }
  void letPass(std::chrono::milliseconds time) {
    const TimePoint end = now + time;
    while (now < end) now = radio.host().tuner()->act(now);
  }
};

/// What stands in a RadioStationInfoNotification of the one station while it sends `text`.
Bytes stationSending(const std::string& text) {
  return bytes("12 04") + test::text("D001") + bytes("1A 03") + test::text("ONE") + bytes("22 04") +
         test::text("News") + bytes("2A") + Bytes{static_cast<std::uint8_t>(text.size())} + test::text(text) +
         bytes(
             "30 01"    // stereo
             "38 00");  // not HD, and said so
}

TEST_F(HeadunitRadio, OffersItsBand) {
  ServiceDiscoveryResponse response;
  radio.addDiscoveryInfo(&response);
  const auto& offered = response.services(0).radio_service();
  EXPECT_EQ(offered.start_frequency_hz(), 87'500'000);
  EXPECT_EQ(offered.end_frequency_hz(), 108'000'000);
  EXPECT_EQ(offered.channel_spacing_hz(), 100'000);
}

TEST_F(HeadunitRadio, TunesForThePhoneAndTellsOfTheStation) {
  tunesTo(STATION_HZ);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 06 08 00 12 1C") + stationSending("first")));
  EXPECT_EQ(view().tuner.station, "ONE");
  EXPECT_TRUE(view().tuner.on);
  EXPECT_EQ(tally.totals().radioCommands, 1U);
}

TEST_F(HeadunitRadio, TellsOfNoStationWhereThereIsNone) {
  tunesTo(STATION_HZ + Tuner::SPACING_HZ);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 06 08 00")));
}

TEST_F(HeadunitRadio, RefusesWhatIsNoChannelAndTellsWhereTheTunerStands) {
  tunesTo(STATION_HZ);
  sent();
  tunesTo(1);
  EXPECT_THAT(sent(),
              ElementsAre(bytes("80 06 08 ED FF FF FF FF FF FF FF FF 01 12 1C") + stationSending("first")));
  EXPECT_EQ(view().tuner.frequencyHz, STATION_HZ);
}

TEST_F(HeadunitRadio, SwitchesOffForThePhone) {
  tunesTo(STATION_HZ);
  RadioSetStationRequest request;
  request.set_power_off(true);
  sends(MESSAGE_RADIO_SET_STATION_REQUEST, request);
  EXPECT_FALSE(view().tuner.on);
}

TEST_F(HeadunitRadio, TellsOfTheStationOnRequest) {
  tunesTo(STATION_HZ);
  sent();
  sends(MESSAGE_RADIO_STATION_INFO_REQUEST, RadioStationInfoRequest());
  EXPECT_THAT(sent(), ElementsAre(bytes("80 04") + stationSending("first")));
}

TEST_F(HeadunitRadio, AnswersARequestForAStationWithNothingWhileItIsOff) {
  sends(MESSAGE_RADIO_STATION_INFO_REQUEST, RadioStationInfoRequest());
  EXPECT_THAT(sent(), ElementsAre(bytes("80 04")));
}

TEST_F(HeadunitRadio, TellsOfTheEndOfAScan) {
  tunesTo(STATION_HZ - 2 * Tuner::SPACING_HZ);
  sent();
  scans(true);
  EXPECT_THAT(sent(), IsEmpty());
  EXPECT_TRUE(view().tuner.scanning);
  letPass(milliseconds(40));
  EXPECT_THAT(sent(), ElementsAre(bytes("80 02"           // MESSAGE_RADIO_SCAN_COMPLETE_NOTIFICATION
                                        "08 00"           // found
                                        "10 80 8C FB 29"  // 88000000 Hz
                                        "1A 1C") +        // station_data
                                  stationSending("first")));
  EXPECT_FALSE(view().tuner.scanning);
  EXPECT_EQ(tally.totals().radioScans, 1U);
}

TEST_F(HeadunitRadio, TellsOfAScanThatWasCutShort) {
  scans(true);
  sent();
  RadioSetStationRequest request;
  request.set_power_off(true);
  sends(MESSAGE_RADIO_SET_STATION_REQUEST, request);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 02 08 ED FF FF FF FF FF FF FF FF 01 10 80 8C FB 29"),
                                  bytes("80 06 08 00")));
}

TEST_F(HeadunitRadio, TellsOfANewTextUnasked) {
  tunesTo(STATION_HZ);
  sent();
  letPass(milliseconds(5100));
  EXPECT_THAT(sent(), ElementsAre(bytes("80 04") + stationSending("then")));
  EXPECT_EQ(view().tuner.text, "then");
}

TEST_F(HeadunitRadio, IsSwitchedOnAndOffByTheUser) {
  radio.host().toggle();
  EXPECT_TRUE(view().tuner.on);
  radio.host().toggle();
  EXPECT_FALSE(view().tuner.on);
  EXPECT_THAT(sent(), IsEmpty());
}

}  // namespace
}  // namespace headunit
