#include "RecordTest.h"
#include "record_table.h"

// What every single record needs. A record that lacks any of it does not parse, and says of itself that it is
// incomplete.

namespace test {
namespace {

struct RecordKind {
  std::string name;
  NewRecord make;
  std::vector<const char*> required;  // the bytes of each required field
};

void PrintTo(const RecordKind& kind, std::ostream* out) { *out << kind.name; }

template <class Record>
RecordKind needs(const std::vector<const char*>& required) {
  return {Record().GetTypeName(), newRecord<Record>, required};
}

template <class... Records>
std::vector<RecordKind> needNothing() {
  return {needs<Records>({})...};
}

struct RequiredFields : testing::TestWithParam<RecordKind> {
  const std::vector<const char*>& required = GetParam().required;

  Bytes allBut(std::size_t missing) const {
    Bytes body;
    for (std::size_t i = 0; i < required.size(); ++i) {
      if (i != missing) body = body + bytes(required[i]);
    }
    return body;
  }
  static void expectComplete(bool complete, const Bytes& body) {
    const auto record = GetParam().make();
    EXPECT_EQ(parseRecord(body.data(), static_cast<unsigned int>(body.size()), record.get()), complete);
    EXPECT_EQ(record->IsInitialized(), complete);
  }
};

TEST_P(RequiredFields, AreEnough) { expectComplete(true, allBut(required.size())); }

TEST_P(RequiredFields, AreAllMissedInARecordWithoutFields) { expectComplete(required.empty(), {}); }

TEST_P(RequiredFields, AreMissedOneByOne) {
  for (std::size_t missing = 0; missing < required.size(); ++missing) {
    SCOPED_TRACE(required[missing]);
    expectComplete(false, allBut(missing));
  }
}

const RecordKind CONTROL[] = {
    needs<AuthResponse>({"08 00"}),           needs<ChannelOpenRequest>({"08 00", "10 07"}),
    needs<ChannelOpenResponse>({"08 00"}),    needs<PingRequest>({"08 00"}),
    needs<PingResponse>({"08 00"}),           needs<ByeByeRequest>({"08 01"}),
    needs<NavFocusNotification>({"08 01"}),   needs<AudioFocusRequestNotification>({"08 01"}),
    needs<AudioFocusNotification>({"08 01"}),
};

const RecordKind DISCOVERY[] = {
    needs<Service>({"08 07"}),
    needs<SensorSourceService::Sensor>({"08 01"}),
    needs<InputSourceService::TouchScreen>({"08 01", "10 02"}),
    needs<InputSourceService::TouchPad>({"08 01", "10 02"}),
    needs<AudioConfiguration>({"08 40", "10 10", "18 02"}),
    needs<BluetoothService>({"0A 01 41"}),
    needs<RadioService>({"08 01", "10 02", "18 03", "20 04"}),
    needs<NavigationStatusService>({"08 01", "10 02"}),
    needs<NavigationStatusService::ImageOptions>({"08 01", "10 02", "18 03"}),
    needs<VendorExtensionService>({"0A 01 41"}),
};

const RecordKind STREAMS[] = {
    needs<Setup>({"08 03"}), needs<Start>({"08 01", "10 00"}),    needs<Config>({"08 02"}),
    needs<Ack>({"08 01"}),   needs<MicrophoneRequest>({"08 01"}), needs<MicrophoneResponse>({"08 00"}),
};

const RecordKind SENSORS[] = {
    needs<SensorRequest>({"08 01", "10 00"}),
    needs<SensorResponse>({"08 00"}),
    needs<LocationData>({"08 01", "10 02", "18 03"}),
    needs<CompassData>({"08 01"}),
    needs<SpeedData>({"08 01"}),
    needs<RpmData>({"08 01"}),
    needs<OdometerData>({"08 01"}),
    needs<ParkingBrakeData>({"08 01"}),
    needs<GearData>({"08 01"}),
    needs<DrivingStatusData>({"08 01"}),
    needs<GpsSatelliteData>({"08 01"}),
    needs<GpsSatellite>({"08 01", "10 02", "18 01"}),
};

const RecordKind INPUT[] = {
    needs<InputReport>({"08 01"}),
    needs<TouchEvent::Pointer>({"08 01", "10 02", "18 03"}),
    needs<KeyEvent::Key>({"08 01", "10 01", "18 00"}),
    needs<AbsoluteEvent::Abs>({"08 01", "10 02"}),
    needs<RelativeEvent::Rel>({"08 01", "10 02"}),
    needs<KeyBindingResponse>({"08 00"}),
};

const RecordKind SERVICES[] = {
    needs<BluetoothPairingRequest>({"0A 01 41", "10 01"}),
    needs<BluetoothPairingResponse>({"08 00", "10 01"}),
    needs<BluetoothAuthenticationData>({"0A 01 41"}),
    needs<RadioScanRequest>({"08 01"}),
    needs<RadioScanCompleteNotification>({"08 00"}),
    needs<RadioSetStationResponse>({"08 00"}),
    needs<NavigationStatus>({"08 01"}),
    needs<NavigationNextTurnEvent>({"0A 01 41"}),
    needs<NavigationNextTurnDistanceEvent>({"08 01", "10 02"}),
    needs<InstrumentClusterInput>({"08 01"}),
    needs<PhoneStatus::Call>({"08 01", "10 02"}),
    needs<PhoneStatusInput>({"0A 02 08 01"}),
    needs<MediaRootNode>({"0A 01 41"}),
    needs<MediaSource>({"0A 01 41", "12 01 42"}),
    needs<MediaSourceNode>({"0A 06 0A 01 41 12 01 42"}),
    needs<MediaList>({"0A 01 41", "10 01"}),
    needs<MediaListNode>({"0A 05 0A 01 41 10 01"}),
    needs<MediaSong>({"0A 01 41", "12 01 42"}),
    needs<MediaSongNode>({"0A 06 0A 01 41 12 01 42"}),
    needs<MediaGetNode>({"0A 01 41"}),
    needs<MediaBrowserInput>({"0A 02 08 01", "12 01 41"}),
};

const RecordKind EXTENSIONS[] = {
    needs<VantryVerificationMediaSinkStatus>({"08 05", "10 02"}),
    needs<VantryVerificationVideoFocus>({"08 01"}),
    needs<VantryVerificationAudioFocus>({"08 01", "10 05"}),
    needs<VantryVerificationInjectInput>({"0A 02 08 01"}),
    needs<VantryVerificationBugReportResponse>({"0A 01 41"}),
    needs<VantryVerificationScreenCaptureResponse>({"0A 01 41"}),
    needs<VantryVerificationDisplayInformationResponse>({"08 01", "10 02"}),
    needs<CorvaneDiagnosticsBugReportRequest>({"08 01"}),
};

const auto NEEDING_NOTHING = needNothing<
    ServiceDiscoveryRequest, ServiceDiscoveryResponse, ChannelCloseNotification, ByeByeResponse,
    NavFocusRequestNotification, VoiceSessionNotification, SensorSourceService, InputSourceService,
    MediaSinkService, MediaSourceService, VideoConfiguration, MediaPlaybackStatusService, PhoneStatusService,
    MediaBrowserService, GenericNotificationService, Stop, VideoFocusRequestNotification,
    VideoFocusNotification, SensorBatch, FuelData, DiagnosticsData, NightModeData, EnvironmentData, HvacData,
    DeadReckoningData, PassengerData, DoorData, LightData, TirePressureData, AccelerometerData, GyroscopeData,
    TouchEvent, KeyEvent, AbsoluteEvent, RelativeEvent, KeyBindingRequest, RadioStationInfoRequest,
    RadioStationInfoNotification, RadioSetStationRequest, NavigationStatusStart, NavigationStatusStop,
    MediaPlaybackStatus, MediaPlaybackMetadata, PhoneStatus, GenericNotificationSubscribe,
    GenericNotificationUnsubscribe, GenericNotificationMessage, GenericNotificationAck,
    VantryVerificationSetSensor, VantryVerificationBugReportRequest, VantryVerificationScreenCaptureRequest,
    VantryVerificationDisplayInformationRequest, CorvaneDiagnosticsBugReportResponse>();

constexpr auto NAME = rowName<testing::TestParamInfo<RecordKind>>;

INSTANTIATE_TEST_SUITE_P(Control, RequiredFields, testing::ValuesIn(CONTROL), NAME);
INSTANTIATE_TEST_SUITE_P(Discovery, RequiredFields, testing::ValuesIn(DISCOVERY), NAME);
INSTANTIATE_TEST_SUITE_P(Streams, RequiredFields, testing::ValuesIn(STREAMS), NAME);
INSTANTIATE_TEST_SUITE_P(Sensors, RequiredFields, testing::ValuesIn(SENSORS), NAME);
INSTANTIATE_TEST_SUITE_P(Input, RequiredFields, testing::ValuesIn(INPUT), NAME);
INSTANTIATE_TEST_SUITE_P(Services, RequiredFields, testing::ValuesIn(SERVICES), NAME);
INSTANTIATE_TEST_SUITE_P(Extensions, RequiredFields, testing::ValuesIn(EXTENSIONS), NAME);
INSTANTIATE_TEST_SUITE_P(Nothing, RequiredFields, testing::ValuesIn(NEEDING_NOTHING), NAME);

}  // namespace
}  // namespace test
