#include <limits>

#include "RecordTest.h"

// The rules that hold for all records, and the numbers of the wire. What each service makes of them stands in
// the tests of that service.

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using SchemaTest = RecordTest;

// ---- Rules of the encoding ----

TEST_F(SchemaTest, AFailedParseLogsWhereItWasFound) {
  ByeByeRequest request;
  const int line = __LINE__ + 1;
  EXPECT_FALSE(readRecord(nullptr, 0, &request));
  EXPECT_THAT(log.all(),
              ElementsAre("debug [LHU] Failed to parse proto at " __FILE__ ":" + std::to_string(line)));
}

TEST_F(SchemaTest, ALengthBeyondWhatCanBeParsedIsRefused) {
  const unsigned char byte = 0;
  ByeByeResponse response;
  EXPECT_FALSE(readRecord(&byte, std::numeric_limits<unsigned int>::max(), &response));
}

TEST_F(SchemaTest, RecordsWithoutFieldsAreBodiesOfNoBytes) {
  EXPECT_TRUE(reads<ByeByeResponse>(""));
  EXPECT_TRUE(reads<ChannelCloseNotification>(""));
  EXPECT_TRUE(reads<GenericNotificationService>(""));
  EXPECT_TRUE(reads<GenericNotificationSubscribe>(""));
  EXPECT_TRUE(reads<GenericNotificationUnsubscribe>(""));
  EXPECT_TRUE(reads<MediaBrowserService>(""));
  EXPECT_TRUE(reads<MediaPlaybackStatusService>(""));
  EXPECT_TRUE(reads<NavigationStatusStart>(""));
  EXPECT_TRUE(reads<NavigationStatusStop>(""));
  EXPECT_TRUE(reads<PhoneStatusService>(""));
  EXPECT_TRUE(reads<RadioStationInfoRequest>(""));
  EXPECT_TRUE(reads<Stop>(""));
  EXPECT_TRUE(reads<VantryVerificationBugReportRequest>(""));
  EXPECT_TRUE(reads<VantryVerificationDisplayInformationRequest>(""));
  EXPECT_TRUE(reads<VantryVerificationScreenCaptureRequest>(""));
  EXPECT_EQ(written(ByeByeResponse()), Bytes());
}

TEST_F(SchemaTest, ASkippedFieldIsForgotten) {
  const auto unknown = receive<PingResponse>("08 00 10 05");
  EXPECT_EQ(written(unknown), bytes("08 00"));
  EXPECT_EQ(written(receive<AuthResponse>("08 00 10 05")), bytes("08 00"));
  const auto wrongWireType = receive<NavFocusRequestNotification>("0A 01 41");
  EXPECT_FALSE(wrongWireType.has_focus_type());
  EXPECT_EQ(written(wrongWireType), Bytes());
  EXPECT_THAT(log.all(), IsEmpty());
}

TEST_F(SchemaTest, ASkippedFieldIsForgottenInsideOtherRecords) {
  EXPECT_EQ(written(receive<PhoneStatus>("0A 07 08 01 10 00 F8 01 2A F8 01 2A")), bytes("0A 04 08 01 10 00"));
  EXPECT_EQ(written(receive<MediaRootNode>("0A 00 12 07 0A 00 12 00 F8 01 2A F8 01 2A")),
            bytes("0A 00 12 04 0A 00 12 00"));
  EXPECT_EQ(
      written(receive<MediaSourceNode>("0A 07 0A 00 12 00 F8 01 2A 22 07 0A 00 10 01 F8 01 2A F8 01 2A")),
      bytes("0A 04 0A 00 12 00 22 04 0A 00 10 01"));
  EXPECT_EQ(written(receive<MediaListNode>("0A 07 0A 00 10 01 F8 01 2A 22 07 0A 00 12 00 F8 01 2A F8 01 2A")),
            bytes("0A 04 0A 00 10 01 22 04 0A 00 12 00"));
  EXPECT_EQ(written(receive<MediaSongNode>("0A 07 0A 00 12 00 F8 01 2A F8 01 2A")),
            bytes("0A 04 0A 00 12 00"));
}

TEST_F(SchemaTest, AMissingRequiredFieldFailsTheRecordAndAllAroundIt) {
  EXPECT_FALSE(reads<AuthResponse>(""));
  EXPECT_FALSE(reads<PhoneStatusInput>("0A 00"));
  EXPECT_FALSE(reads<SensorBatch>("0A 02 08 01"));
}

TEST_F(SchemaTest, SendingDoesNotLookForRequiredFields) { EXPECT_EQ(written(AuthResponse()), Bytes()); }

TEST_F(SchemaTest, AnInvalidElementOfARepeatedEnumerationIsLostAlone) {
  const auto packed = read<BluetoothService>("0A 00 12 03 01 05 03");
  EXPECT_THAT(packed.supported_pairing_methods(), ElementsAre(1, 3));
  const auto unpacked = read<BluetoothService>("0A 00 10 01 10 05 10 03");
  EXPECT_THAT(unpacked.supported_pairing_methods(), ElementsAre(1, 3));
}

TEST_F(SchemaTest, ThreeRepeatedScalarsAreWrittenPackedAndReadInBothForms) {
  EXPECT_THAT(read<InputSourceService>("08 01 08 02").keycodes_supported(), ElementsAre(1, 2));
  EXPECT_EQ(written(read<InputSourceService>("0A 02 01 02")), bytes("0A 02 01 02"));
  EXPECT_EQ(written(read<InputSourceService>("08 01 08 02")), bytes("0A 02 01 02"));
  EXPECT_EQ(written(read<KeyBindingRequest>("08 01 08 02")), bytes("0A 02 01 02"));
  EXPECT_EQ(written(read<BluetoothService>("0A 00 10 01 10 02")), bytes("0A 00 12 02 01 02"));
}

TEST_F(SchemaTest, FiveRepeatedScalarsAreWrittenUnpackedAndReadInBothForms) {
  EXPECT_EQ(written(read<Config>("08 02 1A 02 01 02")), bytes("08 02 18 01 18 02"));
  EXPECT_EQ(written(read<DeadReckoningData>("12 02 01 02")), bytes("10 01 10 02"));
  EXPECT_EQ(written(read<DoorData>("1A 02 01 00")), bytes("18 01 18 00"));
  EXPECT_EQ(written(read<TirePressureData>("0A 02 01 02")), bytes("08 01 08 02"));
  EXPECT_EQ(written(read<CorvaneDiagnosticsBugReportResponse>("12 02 01 02")), bytes("10 01 10 02"));
}

TEST_F(SchemaTest, SixtyFourBitsPassWhole) {
  // The largest unsigned number, and the least signed one.
  const char* const unsignedOnes = "08 FF FF FF FF FF FF FF FF FF 01";
  const char* const signedLeast = "08 80 80 80 80 80 80 80 80 80 01";
  EXPECT_EQ(read<InputReport>(unsignedOnes).timestamp(), UINT64_MAX);
  EXPECT_EQ(read<LocationData>("08 FF FF FF FF FF FF FF FF FF 01 10 00 18 00").timestamp(), UINT64_MAX);
  EXPECT_EQ(read<PingRequest>(signedLeast).timestamp(), INT64_MIN);
  EXPECT_EQ(read<PingResponse>(signedLeast).timestamp(), INT64_MIN);
  EXPECT_EQ(read<SensorRequest>("08 01 10 80 80 80 80 80 80 80 80 80 01").min_update_period(), INT64_MIN);
}

// ---- Control messages ----

TEST_F(SchemaTest, AServiceWithOnlyAnIdNamesNoKind) {
  const auto service = read<Service>("08 07");
  EXPECT_EQ(service.id(), 7);
  EXPECT_EQ(written(service), bytes("08 07"));
}

TEST_F(SchemaTest, AServiceWithoutAnIdFailsTheWholeResponse) {
  EXPECT_TRUE(reads<ServiceDiscoveryResponse>("0A 02 08 07 12 01 41"));
  EXPECT_FALSE(reads<ServiceDiscoveryResponse>("0A 02 08 07 0A 00 12 01 41"));
}

TEST_F(SchemaTest, AnInvalidRequiredStatusFailsTheRecord) {
  EXPECT_FALSE(reads<ChannelOpenResponse>("08 84 FE FF FF FF FF FF FF FF 01"));  // -252
  EXPECT_TRUE(reads<ChannelOpenResponse>("08 85 FE FF FF FF FF FF FF FF 01"));   // -251
  EXPECT_FALSE(reads<ByeByeRequest>("08 00"));
  EXPECT_TRUE(reads<ByeByeRequest>("08 01"));
}

TEST_F(SchemaTest, AnInvalidOptionalFocusReadsAsTheDefault) {
  const auto notification = read<NavFocusRequestNotification>("08 03");
  EXPECT_FALSE(notification.has_focus_type());
  EXPECT_EQ(notification.focus_type(), NAV_FOCUS_1);
}

TEST_F(SchemaTest, OnlyThePriorityIsZigZag) {
  ChannelOpenRequest request;
  request.set_priority(-1);
  request.set_service_id(-1);
  EXPECT_EQ(written(request), bytes("08 01"                                // priority -1
                                    "10 FF FF FF FF FF FF FF FF FF 01"));  // service_id -1
  EXPECT_EQ(read<ChannelOpenRequest>("08 03 10 07").priority(), -2);
}

TEST_F(SchemaTest, StatusesAreTheseNumbers) {
  for (int status = -300; status <= 10; ++status) {
    const bool valid = (status <= 0 && status >= -20) || status == -251 || (status <= -253 && status >= -255);
    EXPECT_EQ(MessageStatus_IsValid(status), valid) << status;
  }
}

TEST_F(SchemaTest, ControlMessageTypesAreTheseNumbers) {
  for (int type = -1; type <= 65536; ++type) {
    const bool valid = (type >= 1 && type <= 19 && type != 10) || type == 255 || type == 65535;
    EXPECT_EQ(ControlMessageType_IsValid(type), valid) << type;
  }
}

TEST_F(SchemaTest, KeyCodesAreTheseNumbers) {
  for (int code = -1; code <= 65541; ++code) {
    const bool valid = (code >= 0 && code <= 224) || (code >= 65535 && code <= 65540);
    EXPECT_EQ(KeyCode_IsValid(code), valid) << code;
  }
  EXPECT_EQ(KEYCODE_224, 224);
  EXPECT_EQ(KEYCODE_65540, 65540);
}

TEST_F(SchemaTest, EnumerationsOfNoFieldAreTheseNumbers) {
  for (int value = -1; value <= 40000; ++value) {
    EXPECT_EQ(VantryConstants_IsValid(value), value == 0 || value == 1 || value == 30515) << value;
    EXPECT_EQ(FragInfo_IsValid(value), value >= 0 && value <= 3) << value;
    const bool status = value == 0 || value == 1 || value == 2 || value == 4 || value == 8 || value == 16;
    EXPECT_EQ(DrivingStatus_IsValid(value), status) << value;
  }
  EXPECT_EQ(VANTRY_CONSTANT_30515, 30515);
  EXPECT_EQ(FRAME_MIDDLE, 0);
  EXPECT_EQ(FRAME_FIRST, 1);
  EXPECT_EQ(FRAME_LAST, 2);
  EXPECT_EQ(FRAME_ATOMIC, 3);
  EXPECT_EQ(DRIVING_STATUS_16, 16);
}

TEST_F(SchemaTest, VerificationMessageNumbersAreConsecutive) {
  for (int type = 0x7FFF; type <= 0x800D; ++type) {
    EXPECT_EQ(VantryVerificationVendorExtensionMessageId_IsValid(type), type >= 0x8001 && type <= 0x800B)
        << type;
  }
  for (int type = 0; type <= 3; ++type) {
    EXPECT_EQ(CorvaneDiagnosticsVendorExtensionMessageId_IsValid(type), type == 1 || type == 2) << type;
  }
}

using SchemaDeathTest = SchemaTest;

TEST_F(SchemaDeathTest, SettingAnInvalidEnumerationValueEndsTheProcess) {
  ChannelOpenResponse response;
  EXPECT_DEATH(response.set_status(static_cast<MessageStatus>(-252)), "::MessageStatus_IsValid\\(value\\)");
}

}  // namespace
}  // namespace test
