#include "enumerations.h"

// The enumerations of the smaller services.

namespace test {
namespace {

struct ServiceEnumerations : EnumerationTest {};

TEST_P(ServiceEnumerations, HasTheseNumbersAndNoOther) { expectTheseNumbersAndNoOther(); }

using Playback = MediaPlaybackStatus;
using Action = InstrumentClusterInput;
using Turn = NavigationNextTurnEvent;

const Enumeration VALUES[] = {
    {"BluetoothPairingMethod",
     BluetoothPairingMethod_IsValid,
     {{BLUETOOTH_PAIRING_METHOD_1, 1},
      {BLUETOOTH_PAIRING_METHOD_2, 2},
      {BLUETOOTH_PAIRING_METHOD_3, 3},
      {BLUETOOTH_PAIRING_METHOD_4, 4}}},
    {"RadioType", RadioType_IsValid, {{RADIO_TYPE_1, 1}, {RADIO_TYPE_2, 2}}},
    {"NavigationStatusEnum",
     NavigationStatus_NavigationStatusEnum_IsValid,
     {{NavigationStatus::UNAVAILABLE, 0}, {NavigationStatus::ACTIVE, 1}, {NavigationStatus::INACTIVE, 2}}},
    {"TurnSide",
     NavigationNextTurnEvent_TurnSide_IsValid,
     {{Turn::LEFT, 1}, {Turn::RIGHT, 2}, {Turn::UNSPECIFIED, 3}}},
    {"NextTurnEnum",
     NavigationNextTurnEvent_NextTurnEnum_IsValid,
     {{Turn::UNKNOWN, 0},
      {Turn::DEPART, 1},
      {Turn::NAME_CHANGE, 2},
      {Turn::SLIGHT_TURN, 3},
      {Turn::TURN, 4},
      {Turn::SHARP_TURN, 5},
      {Turn::U_TURN, 6},
      {Turn::ON_RAMP, 7},
      {Turn::OFF_RAMP, 8},
      {Turn::FORK, 9},
      {Turn::MERGE, 10},
      {Turn::ROUNDABOUT_ENTER, 11},
      {Turn::ROUNDABOUT_EXIT, 12},
      {Turn::ROUNDABOUT_ENTER_AND_EXIT, 13},
      {Turn::STRAIGHT, 14},
      {Turn::FERRY_BOAT, 16},
      {Turn::FERRY_TRAIN, 17},
      {Turn::DESTINATION, 19}}},
    {"InstrumentClusterType",
     NavigationStatusService_InstrumentClusterType_IsValid,
     {{NavigationStatusService::IMAGE, 1}, {NavigationStatusService::ENUM, 2}}},
    {"PlaybackState",
     MediaPlaybackStatus_State_IsValid,
     {{Playback::STOPPED, 1}, {Playback::PLAYING, 2}, {Playback::PAUSED, 3}}},
    {"InstrumentClusterAction",
     InstrumentClusterInput_InstrumentClusterAction_IsValid,
     {{Action::UP, 1},
      {Action::DOWN, 2},
      {Action::LEFT, 3},
      {Action::RIGHT, 4},
      {Action::ENTER, 5},
      {Action::BACK, 6},
      {Action::CALL, 7}}},
    {"PhoneState",
     PhoneStatus_State_IsValid,
     {{PhoneStatus::IN_CALL, 1},
      {PhoneStatus::ON_HOLD, 2},
      {PhoneStatus::INACTIVE, 3},
      {PhoneStatus::INCOMING, 4},
      {PhoneStatus::CONFERENCED, 5},
      {PhoneStatus::MUTED, 6}}},
    {"MediaListType",
     MediaList_Type_IsValid,
     {{MediaList::PLAYLIST, 1},
      {MediaList::ALBUM, 2},
      {MediaList::ARTIST, 3},
      {MediaList::STATION, 4},
      {MediaList::GENRE, 5}}},
};

const Enumeration MESSAGES[] = {
    {"Bluetooth",
     BluetoothMessageId_IsValid,
     {{MESSAGE_BLUETOOTH_PAIRING_REQUEST, 0x8001},
      {MESSAGE_BLUETOOTH_PAIRING_RESPONSE, 0x8002},
      {MESSAGE_BLUETOOTH_AUTHENTICATION_DATA, 0x8003}}},
    {"Radio",
     RadioMessageId_IsValid,
     {{MESSAGE_RADIO_SCAN_REQUEST, 0x8001},
      {MESSAGE_RADIO_SCAN_COMPLETE_NOTIFICATION, 0x8002},
      {MESSAGE_RADIO_STATION_INFO_REQUEST, 0x8003},
      {MESSAGE_RADIO_STATION_INFO_NOTIFICATION, 0x8004},
      {MESSAGE_RADIO_SET_STATION_REQUEST, 0x8005},
      {MESSAGE_RADIO_SET_STATION_RESPONSE, 0x8006}}},
    {"NavigationStatus",
     NavigationStatusMessageId_IsValid,
     {{MESSAGE_NAVIGATION_STATUS_START, 0x8001},
      {MESSAGE_NAVIGATION_STATUS_STOP, 0x8002},
      {MESSAGE_NAVIGATION_STATUS, 0x8003},
      {MESSAGE_NAVIGATION_NEXT_TURN_EVENT, 0x8004},
      {MESSAGE_NAVIGATION_NEXT_TURN_DISTANCE_EVENT, 0x8005}}},
    {"MediaPlaybackStatus",
     MediaPlaybackStatusMessageId_IsValid,
     {{MESSAGE_MEDIA_PLAYBACK_STATUS, 0x8001},
      {MESSAGE_INSTRUMENT_CLUSTER_INPUT, 0x8002},
      {MESSAGE_MEDIA_PLAYBACK_METADATA, 0x8003}}},
    {"PhoneStatus",
     PhoneStatusMessageId_IsValid,
     {{MESSAGE_PHONE_STATUS, 0x8001}, {MESSAGE_PHONE_STATUS_INPUT, 0x8002}}},
    {"MediaBrowser",
     MediaBrowserMessageId_IsValid,
     {{MESSAGE_MEDIA_ROOT_NODE, 0x8001},
      {MESSAGE_MEDIA_SOURCE_NODE, 0x8002},
      {MESSAGE_MEDIA_LIST_NODE, 0x8003},
      {MESSAGE_MEDIA_SONG_NODE, 0x8004},
      {MESSAGE_MEDIA_GET_NODE, 0x8005},
      {MESSAGE_MEDIA_BROWSER_INPUT, 0x8006}}},
    {"GenericNotification",
     GenericNotificationMessageId_IsValid,
     {{MESSAGE_GENERIC_NOTIFICATION_SUBSCRIBE, 0x8001},
      {MESSAGE_GENERIC_NOTIFICATION_UNSUBSCRIBE, 0x8002},
      {MESSAGE_GENERIC_NOTIFICATION_MESSAGE, 0x8003},
      {MESSAGE_GENERIC_NOTIFICATION_ACK, 0x8004}}},
};

INSTANTIATE_TEST_SUITE_P(Values, ServiceEnumerations, testing::ValuesIn(VALUES), nameOf);
INSTANTIATE_TEST_SUITE_P(Messages, ServiceEnumerations, testing::ValuesIn(MESSAGES), nameOf);

}  // namespace
}  // namespace test
