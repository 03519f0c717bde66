#pragma once

#include <type_traits>

#include "protos.pb.h"

// A field that the schema does not know is skipped and forgotten, but the parser keeps it, in every record at
// every depth. These operations drop what it kept. Without reflection each kind of record that holds others
// has its own; one with nothing but plain fields needs none, and is listed here. A kind that is neither does
// not compile, so that nobody forgets a new one. Whether the list is right, and an operation reaches all that
// is inside, no compiler sees: a record that gets a record for a field has to leave the list.

template <class Record, class... Kinds>
constexpr bool isOneOf = (std::is_same<Record, Kinds>::value || ...);

/// Of the records that the phone sends, and the AuthResponse, which a phone reads by the same rule, those
/// without others inside.
template <class Record>
constexpr bool holdsNoRecords =
    isOneOf<Record, AuthResponse, ChannelOpenRequest, ChannelCloseNotification, ServiceDiscoveryRequest,
            PingRequest, PingResponse, ByeByeRequest, ByeByeResponse, NavFocusRequestNotification,
            VoiceSessionNotification> ||
    isOneOf<Record, Setup, Start, Stop, Ack, MicrophoneRequest, VideoFocusRequestNotification, SensorRequest,
            KeyBindingRequest, BluetoothPairingRequest, RadioScanRequest, RadioStationInfoRequest,
            RadioSetStationRequest, GenericNotificationMessage, GenericNotificationAck> ||
    isOneOf<Record, NavigationStatus, NavigationNextTurnEvent, NavigationNextTurnDistanceEvent,
            MediaPlaybackStatus, MediaPlaybackMetadata, PhoneStatus_Call, MediaSource, MediaList,
            MediaSong> ||
    isOneOf<Record, VantryVerificationVideoFocus, VantryVerificationAudioFocus,
            VantryVerificationScreenCaptureRequest, VantryVerificationDisplayInformationRequest,
            TouchEvent_Pointer, KeyEvent_Key, AbsoluteEvent_Abs, RelativeEvent_Rel> ||
    isOneOf<Record, LocationData, CompassData, SpeedData, RpmData, OdometerData, FuelData, ParkingBrakeData,
            GearData, DiagnosticsData, NightModeData, EnvironmentData, HvacData, DrivingStatusData,
            DeadReckoningData, PassengerData, DoorData, LightData, TirePressureData, AccelerometerData,
            GyroscopeData, GpsSatellite>;

/// `record` alone, not those inside it.
template <class Record>
void forgetOwnUnknownFields(Record* record) {
  // Asking first: the mutable accessor allocates where there is nothing to clear.
  if (!record->unknown_fields().empty()) record->mutable_unknown_fields()->clear();
}

/// `record`, which holds no other records.
template <class Record>
void forgetUnknownFields(Record* record) {
  static_assert(holdsNoRecords<Record>, "a record that holds others needs an operation of its own");
  forgetOwnUnknownFields(record);
}

void forgetUnknownFields(PhoneStatus* status);
void forgetUnknownFields(MediaRootNode* node);
void forgetUnknownFields(MediaSourceNode* node);
void forgetUnknownFields(MediaListNode* node);
void forgetUnknownFields(MediaSongNode* node);
void forgetUnknownFields(SensorBatch* batch);
void forgetUnknownFields(GpsSatelliteData* data);
void forgetUnknownFields(InputReport* report);
void forgetUnknownFields(TouchEvent* event);
void forgetUnknownFields(KeyEvent* event);
void forgetUnknownFields(AbsoluteEvent* event);
void forgetUnknownFields(RelativeEvent* event);
void forgetUnknownFields(VantryVerificationSetSensor* message);
void forgetUnknownFields(VantryVerificationInjectInput* message);
