#include <gmock/gmock.h>

#include "LogCapture.h"
#include "Message.h"
#include "Wire.h"

// Single records as the library reads them: bytes by hand on the one side, fields on the other. The rules
// that hold for all records stand in Schema_test.cpp, and what each service makes of them in the tests of
// that service.

namespace test {
namespace {

using testing::ElementsAre;

struct RecordsTest : testing::Test {
  LogCapture log;

  /// Reads a record as the library does.
  template <class Record>
  bool reads(const Bytes& body, Record* record) {
    return readRecord(body.data(), static_cast<unsigned int>(body.size()), record);
  }

  template <class Record>
  bool reads(const char* hex) {
    Record record;
    return reads(bytes(hex), &record);
  }

  /// The record in `hex`, which must be one.
  template <class Record>
  Record read(const char* hex) {
    Record record;
    EXPECT_TRUE(reads(bytes(hex), &record)) << hex;
    return record;
  }
};

Bytes written(const google::protobuf::MessageLite& record) {
  const std::string serialized = record.SerializePartialAsString();
  return Bytes(serialized.data(), serialized.size());
}

// ---- Of all records ----

TEST_F(RecordsTest, AFailedParseLogsWhereItWasFound) {
  AuthResponse response;
  const int line = __LINE__ + 1;
  EXPECT_FALSE(readRecord(nullptr, 0, &response));
  EXPECT_THAT(log.all(),
              ElementsAre("debug [LHU] Failed to parse proto at " __FILE__ ":" + std::to_string(line)));
}

TEST_F(RecordsTest, ASkippedFieldIsForgottenInsideOtherRecords) {
  EXPECT_EQ(written(read<PhoneStatus>("0A 07 08 01 10 00 F8 01 2A F8 01 2A")), bytes("0A 04 08 01 10 00"));
  EXPECT_EQ(written(read<MediaRootNode>("0A 00 12 07 0A 00 12 00 F8 01 2A F8 01 2A")),
            bytes("0A 00 12 04 0A 00 12 00"));
  EXPECT_EQ(written(read<MediaSourceNode>("0A 07 0A 00 12 00 F8 01 2A 22 07 0A 00 10 01 F8 01 2A F8 01 2A")),
            bytes("0A 04 0A 00 12 00 22 04 0A 00 10 01"));
  EXPECT_EQ(written(read<MediaListNode>("0A 07 0A 00 10 01 F8 01 2A 22 07 0A 00 12 00 F8 01 2A F8 01 2A")),
            bytes("0A 04 0A 00 10 01 22 04 0A 00 12 00"));
  EXPECT_EQ(written(read<MediaSongNode>("0A 07 0A 00 12 00 F8 01 2A F8 01 2A")), bytes("0A 04 0A 00 12 00"));
}

TEST_F(RecordsTest, AMissingRequiredFieldFailsTheRecordAndAllAroundIt) {
  EXPECT_FALSE(reads<AuthResponse>(""));
  EXPECT_FALSE(reads<PhoneStatusInput>("0A 00"));
  EXPECT_FALSE(reads<SensorBatch>("0A 02 08 01"));
}

TEST_F(RecordsTest, SendingDoesNotLookForRequiredFields) { EXPECT_EQ(written(AuthResponse()), Bytes()); }

TEST_F(RecordsTest, FiveRepeatedScalarsAreWrittenUnpackedAndReadInBothForms) {
  EXPECT_EQ(written(read<Config>("08 02 1A 02 01 02")), bytes("08 02 18 01 18 02"));
  EXPECT_EQ(written(read<DeadReckoningData>("12 02 01 02")), bytes("10 01 10 02"));
  EXPECT_EQ(written(read<DoorData>("1A 02 01 00")), bytes("18 01 18 00"));
  EXPECT_EQ(written(read<TirePressureData>("0A 02 01 02")), bytes("08 01 08 02"));
  EXPECT_EQ(written(read<CorvaneDiagnosticsBugReportResponse>("12 02 01 02")), bytes("10 01 10 02"));
}

TEST_F(RecordsTest, SixtyFourBitsPassWhole) {
  // The largest unsigned number, and the least signed one.
  const char* const unsignedOnes = "08 FF FF FF FF FF FF FF FF FF 01";
  const char* const signedLeast = "08 80 80 80 80 80 80 80 80 80 01";
  EXPECT_EQ(read<InputReport>(unsignedOnes).timestamp(), UINT64_MAX);
  EXPECT_EQ(read<LocationData>("08 FF FF FF FF FF FF FF FF FF 01 10 00 18 00").timestamp(), UINT64_MAX);
  EXPECT_EQ(read<PingRequest>(signedLeast).timestamp(), INT64_MIN);
  EXPECT_EQ(read<PingResponse>(signedLeast).timestamp(), INT64_MIN);
  EXPECT_EQ(read<SensorRequest>("08 01 10 80 80 80 80 80 80 80 80 80 01").min_update_period(), INT64_MIN);
}

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

TEST_F(RecordsTest, KeyCodesAreTheseNumbers) {
  for (int code = -1; code <= 65541; ++code) {
    const bool valid = (code >= 0 && code <= 224) || (code >= 65535 && code <= 65540);
    EXPECT_EQ(KeyCode_IsValid(code), valid) << code;
  }
  EXPECT_EQ(KEYCODE_224, 224);
  EXPECT_EQ(KEYCODE_65540, 65540);
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

TEST_F(RecordsTest, VerificationMessageNumbersAreConsecutive) {
  for (int type = 0x7FFF; type <= 0x800D; ++type) {
    EXPECT_EQ(VantryVerificationVendorExtensionMessageId_IsValid(type), type >= 0x8001 && type <= 0x800B)
        << type;
  }
  for (int type = 0; type <= 3; ++type) {
    EXPECT_EQ(CorvaneDiagnosticsVendorExtensionMessageId_IsValid(type), type == 1 || type == 2) << type;
  }
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

using RecordsDeathTest = RecordsTest;

TEST_F(RecordsDeathTest, SettingAnInvalidEnumerationValueEndsTheProcess) {
  ChannelOpenResponse response;
  EXPECT_DEATH(response.set_status(static_cast<MessageStatus>(-252)), "::MessageStatus_IsValid\\(value\\)");
}

}  // namespace
}  // namespace test
