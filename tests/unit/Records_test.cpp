#include "RecordTest.h"

// Single records, of those services whose messages have rules of their own. The rules that hold for all
// records stand in Schema_test.cpp, and what each service makes of them in the tests of that service.

namespace test {
namespace {

using testing::ElementsAre;

using RecordsTest = RecordTest;

// ---- Media messages ----

TEST_F(RecordsTest, StopIsTwoBytes) { EXPECT_EQ(message(MESSAGE_STOP, Stop()), bytes("80 02")); }

TEST_F(RecordsTest, AConfigNeedsNoIndices) { EXPECT_TRUE(reads<Config>("08 02")); }

TEST_F(RecordsTest, AStartNeedsItsConfigurationIndex) {
  EXPECT_FALSE(reads<Start>("08 01"));
  EXPECT_TRUE(reads<Start>("08 01 10 00"));
}

TEST_F(RecordsTest, AnIncompleteAudioConfigurationFailsTheWholeResponse) {
  EXPECT_FALSE(
      reads<ServiceDiscoveryResponse>("0A 0A"           // services
                                      "08 07"           // id
                                      "1A 06"           // media_sink_service
                                      "1A 04"           // audio_configs
                                      "08 40 10 10"));  // and no number_of_channels
  EXPECT_TRUE(reads<ServiceDiscoveryResponse>("0A 0C 08 07 1A 08 1A 06 08 40 10 10 18 02"));
}

TEST_F(RecordsTest, AVideoConfigurationWithoutFieldsIsValid) {
  const auto response = read<ServiceDiscoveryResponse>("0A 06 08 07 1A 02 22 00");
  EXPECT_EQ(response.services(0).media_sink_service().video_configs_size(), 1);
}

TEST_F(RecordsTest, AMicrophoneRequestWithoutALimitReadsAsZero) {
  EXPECT_EQ(read<MicrophoneRequest>("08 01").max_unacked(), 0);
}

// ---- Sensor messages ----

TEST_F(RecordsTest, ARequestForAnUnknownSensorFailsToParse) {
  EXPECT_FALSE(reads<SensorRequest>("08 16 10 00"));  // 22
  EXPECT_FALSE(reads<SensorRequest>("08 00 10 00"));
  EXPECT_TRUE(reads<SensorRequest>("08 15 10 00"));  // 21
}

TEST_F(RecordsTest, ASatelliteWithoutItsUseFailsTheWholeBatch) {
  EXPECT_FALSE(reads<SensorBatch>("AA 01 08 08 01 1A 04 08 01 10 02"));
  EXPECT_TRUE(reads<SensorBatch>("AA 01 0A 08 01 1A 06 08 01 10 02 18 01"));
}

TEST_F(RecordsTest, AnEmptyBatchIsTwoBytes) {
  EXPECT_EQ(message(MESSAGE_SENSOR_BATCH, SensorBatch()), bytes("80 03"));
  EXPECT_TRUE(reads<SensorBatch>(""));
}

TEST_F(RecordsTest, LightsThatAreNotToldReadAsOne) {
  const auto lights = read<LightData>("");
  EXPECT_EQ(lights.head_light_state(), HEAD_LIGHT_STATE_1);
  EXPECT_EQ(lights.turn_indicator_state(), TURN_INDICATOR_STATE_1);
}

// ---- Input messages ----

TEST_F(RecordsTest, ABindingRequestNeedsNoKeyCodes) { EXPECT_TRUE(reads<KeyBindingRequest>("")); }

TEST_F(RecordsTest, KeyCodesArrivePackedOrNotAndMayBeNegative) {
  EXPECT_THAT(read<KeyBindingRequest>("0A 0B 04 FF FF FF FF FF FF FF FF FF 01").keycodes(),
              ElementsAre(4, -1));
  EXPECT_THAT(read<KeyBindingRequest>("08 04 08 FF FF FF FF FF FF FF FF FF 01").keycodes(),
              ElementsAre(4, -1));
  KeyBindingRequest request;
  request.add_keycodes(-1);
  EXPECT_EQ(written(request), bytes("0A 0A FF FF FF FF FF FF FF FF FF 01"));
}

TEST_F(RecordsTest, AnInputReportNeedsItsTimestamp) {
  EXPECT_FALSE(reads<InputReport>("10 01"));
  EXPECT_TRUE(reads<InputReport>("08 01"));
}

TEST_F(RecordsTest, ATouchWithAnUnknownActionLosesTheActionAlone) {
  const auto touch = read<TouchEvent>("0A 06 08 01 10 02 18 03 18 03");
  EXPECT_FALSE(touch.has_action());
  EXPECT_EQ(touch.pointer_data_size(), 1);
}

TEST_F(RecordsTest, AnUnknownKeyCodePassesThroughPlainIntegers) {
  EXPECT_FALSE(KeyCode_IsValid(999));
  EXPECT_EQ(read<KeyEvent>("0A 07 08 E7 07 10 01 18 00").keys(0).keycode(), 999U);
  EXPECT_THAT(read<KeyBindingRequest>("08 E7 07").keycodes(), ElementsAre(999));
}

// ---- Service messages ----

TEST_F(RecordsTest, AnInvalidTurnReadsAsUnknown) {
  for (const char* const turn : {"0A 00 18 0F", "0A 00 18 12"}) {  // 15 and 18
    EXPECT_EQ(read<NavigationNextTurnEvent>(turn).event(), NavigationNextTurnEvent_NextTurnEnum_UNKNOWN);
  }
}

TEST_F(RecordsTest, ATurnWithoutASideReadsAsLeft) {
  EXPECT_EQ(read<NavigationNextTurnEvent>("0A 00").turn_side(), NavigationNextTurnEvent_TurnSide_LEFT);
}

TEST_F(RecordsTest, APlayerWithoutAStateReadsAsStopped) {
  EXPECT_EQ(read<MediaPlaybackStatus>("").state(), MediaPlaybackStatus_State_STOPPED);
}

TEST_F(RecordsTest, ArtIsWantedUnlessARequestSaysOtherwise) {
  EXPECT_TRUE(read<MediaGetNode>("0A 00").get_album_art());
  EXPECT_FALSE(read<MediaGetNode>("0A 00 18 00").get_album_art());
}

TEST_F(RecordsTest, ABadActionFailsTheInputAndAllAroundIt) {
  for (const char* const action : {"08 00", "08 08", ""}) {
    EXPECT_FALSE(reads<InstrumentClusterInput>(action));
  }
  EXPECT_FALSE(reads<PhoneStatusInput>("0A 02 08 08"));
  EXPECT_FALSE(reads<MediaBrowserInput>("0A 02 08 08 12 00"));
}

TEST_F(RecordsTest, ABrowserInputNeedsAPathAndAPhoneInputNoCaller) {
  EXPECT_FALSE(reads<MediaBrowserInput>("0A 02 08 01"));
  EXPECT_TRUE(reads<MediaBrowserInput>("0A 02 08 01 12 00"));
  EXPECT_TRUE(reads<PhoneStatusInput>("0A 02 08 01"));
}

// ---- Verification messages ----

TEST_F(RecordsTest, DiagnosticsAreTheHostsToSerialize) {
  CorvaneDiagnosticsBugReportRequest request;
  request.set_token(300);
  EXPECT_EQ(message(MESSAGE_CORVANE_DIAGNOSTICS_BUG_REPORT_REQUEST, request), bytes("00 01 08 AC 02"));
  CorvaneDiagnosticsBugReportResponse report;
  report.set_bug_report("x");
  report.add_tokens(1);
  report.add_tokens(300);
  EXPECT_EQ(message(MESSAGE_CORVANE_DIAGNOSTICS_BUG_REPORT_RESPONSE, report),
            bytes("00 02"
                  "0A 01 78"           // bug_report
                  "10 01 10 AC 02"));  // tokens
}

TEST_F(RecordsTest, ARequestForDiagnosticsNeedsItsToken) {
  EXPECT_FALSE(reads<CorvaneDiagnosticsBugReportRequest>(""));
  EXPECT_EQ(read<CorvaneDiagnosticsBugReportRequest>("08 FF FF FF FF FF FF FF FF FF 01").token(), -1);
  EXPECT_TRUE(reads<CorvaneDiagnosticsBugReportResponse>(""));
}

TEST_F(RecordsTest, VerificationAnswersAreTheHostsToSerialize) {
  VantryVerificationScreenCaptureResponse picture;
  picture.set_screen_capture("PNG");
  EXPECT_EQ(message(MESSAGE_VANTRY_VERIFICATION_SCREEN_CAPTURE_RESPONSE, picture),
            bytes("80 09 0A 03 50 4E 47"));
  VantryVerificationDisplayInformationResponse size;
  size.set_native_width(800);
  size.set_native_height(480);
  EXPECT_EQ(message(MESSAGE_VANTRY_VERIFICATION_DISPLAY_INFORMATION_RESPONSE, size),
            bytes("80 0B 08 A0 06 10 E0 03"));
  VantryVerificationMediaSinkStatus status;
  status.set_channel(5);
  status.set_status(Config::STATUS_READY);
  EXPECT_EQ(message(MESSAGE_VANTRY_VERIFICATION_MEDIA_SINK_STATUS, status), bytes("80 02 08 05 10 02"));
  VantryVerificationBugReportResponse report;
  report.set_bug_report("x");
  EXPECT_EQ(message(MESSAGE_VANTRY_VERIFICATION_BUG_REPORT_RESPONSE, report), bytes("80 07 0A 01 78"));
}

}  // namespace
}  // namespace test
