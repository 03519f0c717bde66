#include "NumberedRecords.h"

#include "FullHeadUnit.h"
#include "phone/Message.h"

namespace test {
namespace {

bool isOdd(Number n) { return n % 2 != 0; }
int whole(Number n) { return static_cast<int>(n); }
std::uint32_t unsignedOf(Number n) { return static_cast<std::uint32_t>(n); }

std::string image(Number n) {
  const Bytes content = numberedContent(n);
  return std::string(content.begin(), content.end());
}

void fillList(MediaList* list, Number n) {
  list->set_path(numberedText(n));
  list->set_type(static_cast<MediaList_Type>(1 + n % 5));
  list->set_name(numberedText(n + 1));
}

void fillSong(MediaSong* song, Number n) {
  song->set_path(numberedText(n));
  song->set_name(numberedText(n + 1));
  song->set_artist(numberedText(n + 2));
}

}  // namespace

namespace told {

BluetoothPairingRequest pairing(Number n) {
  BluetoothPairingRequest request;
  request.set_phone_address(numberedText(n));
  request.set_pairing_method(BLUETOOTH_PAIRING_METHOD_2);
  return request;
}

RadioSetStationRequest station(Number n) {
  RadioSetStationRequest request;
  request.set_frequency_hz(whole(n));
  return request;
}

RadioScanRequest scan(Number n) {
  RadioScanRequest request;
  request.set_forward(isOdd(n));
  return request;
}

NavigationStatus navigation(Number n) {
  NavigationStatus status;
  status.set_status(static_cast<NavigationStatus_NavigationStatusEnum>(n % 3));
  return status;
}

NavigationNextTurnEvent turn(Number n) {
  NavigationNextTurnEvent event;
  event.set_road(numberedText(n));
  event.set_turn_side(isOdd(n) ? NavigationNextTurnEvent::LEFT : NavigationNextTurnEvent::RIGHT);
  event.set_event(NavigationNextTurnEvent::TURN);
  event.set_image(image(n));
  event.set_turn_angle(whole(n % 360));
  event.set_turn_number(whole(n));
  return event;
}

NavigationNextTurnDistanceEvent distance(Number n) {
  NavigationNextTurnDistanceEvent event;
  event.set_distance_meters(whole(n));
  event.set_time_to_turn_seconds(whole(n + 1));
  return event;
}

MediaPlaybackStatus playback(Number n) {
  MediaPlaybackStatus status;
  status.set_state(static_cast<MediaPlaybackStatus_State>(1 + n % 3));
  status.set_media_source(numberedText(n));
  status.set_playback_seconds(unsignedOf(n));
  status.set_shuffle(isOdd(n));
  return status;
}

MediaPlaybackMetadata song(Number n) {
  MediaPlaybackMetadata metadata;
  metadata.set_song(numberedText(n));
  metadata.set_album_art(image(n));
  metadata.set_duration_seconds(unsignedOf(n));
  return metadata;
}

PhoneStatus calls(Number n) {
  PhoneStatus status;
  for (Number i = 0; i < n % 3; ++i) {
    PhoneStatus_Call* const call = status.add_calls();
    call->set_phone_state(PhoneStatus::IN_CALL);
    call->set_call_duration_seconds(unsignedOf(n + i));
    call->set_caller_number(numberedText(n + i));
  }
  status.set_signal_strength(unsignedOf(n));
  return status;
}

MediaRootNode rootNode(Number n) {
  MediaRootNode node;
  node.set_path(numberedText(n));
  for (Number i = 0; i < n % 3; ++i) {
    MediaSource* const source = node.add_media_sources();
    source->set_path(numberedText(n + i));
    source->set_name(numberedText(n + i + 1));
  }
  return node;
}

MediaSourceNode sourceNode(Number n) {
  MediaSourceNode node;
  node.mutable_source()->set_path(numberedText(n));
  node.mutable_source()->set_name(numberedText(n + 1));
  node.set_start(whole(n));
  node.set_total(whole(n + 10));
  for (Number i = 0; i < n % 4; ++i) fillList(node.add_lists(), n + i);
  return node;
}

MediaListNode listNode(Number n) {
  MediaListNode node;
  fillList(node.mutable_list(), n);
  node.set_start(whole(n));
  node.set_total(whole(n + 10));
  for (Number i = 0; i < n % 5; ++i) fillSong(node.add_songs(), n + i);
  return node;
}

MediaSongNode songNode(Number n) {
  MediaSongNode node;
  fillSong(node.mutable_song(), n);
  node.set_album_art(image(n));
  node.set_duration_seconds(unsignedOf(n));
  return node;
}

GenericNotificationMessage notification(Number n) {
  GenericNotificationMessage message;
  message.set_id(numberedText(n));
  message.set_text(numberedText(n + 1));
  return message;
}

GenericNotificationAck notificationAck(Number n) {
  GenericNotificationAck ack;
  ack.set_id(numberedText(n));
  return ack;
}

VantryVerificationSetSensor setSensor(Number n) {
  VantryVerificationSetSensor message;
  message.mutable_sensors()->add_speed_data()->set_speed_e3(whole(n));
  return message;
}

VantryVerificationVideoFocus videoFocus(Number n) {
  VantryVerificationVideoFocus message;
  message.set_video_focus_mode(isOdd(n) ? VIDEO_FOCUS_MODE_1 : VIDEO_FOCUS_MODE_2);
  message.set_unsolicited(isOdd(n / 2));
  return message;
}

VantryVerificationAudioFocus audioFocus(Number n) {
  VantryVerificationAudioFocus message;
  message.set_audio_focus_state(static_cast<AudioFocusStateType>(1 + n % 7));
  message.set_channel(whole(n));
  return message;
}

VantryVerificationInjectInput injectInput(Number n) {
  VantryVerificationInjectInput message;
  *message.mutable_input() = touchReport(n);
  return message;
}

}  // namespace told

RdsData stationData(Number n) {
  RdsData data;
  data.alternativeFrequencyHz = whole(n + 1);
  data.radioText = numberedText(n);
  return data;
}

bool tunesTo(Number n) { return n % 5 != 4; }

unsigned int clusterKey(Number n) { return 1 + unsignedOf(n % 7); }

namespace {

RadioStationInfoNotification stationInfo(Number n) {
  RadioStationInfoNotification info;
  info.set_alternative_frequency_hz(whole(n + 1));
  info.set_radio_text(numberedText(n));
  return info;
}

BluetoothPairingResponse pairingAnswer(Number n) {
  BluetoothPairingResponse response;
  response.set_status(STATUS_SUCCESS);
  response.set_already_paired(isOdd(n));
  return response;
}

BluetoothAuthenticationData pairingCode(Number n) {
  BluetoothAuthenticationData data;
  data.set_auth_data(numberedText(n));
  return data;
}

RadioSetStationResponse stationAnswer(Number n) {
  RadioSetStationResponse response;
  response.set_status(tunesTo(n) ? STATUS_SUCCESS : STATUS_INVALID_STATION);
  *response.mutable_station_data() = stationInfo(n);
  return response;
}

RadioScanCompleteNotification scanEnd(Number n) {
  RadioScanCompleteNotification notification;
  notification.set_status(STATUS_SUCCESS);
  notification.set_frequency_hz(whole(n));
  *notification.mutable_station_data() = stationInfo(n);
  return notification;
}

InstrumentClusterInput key(Number n) {
  InstrumentClusterInput input;
  input.set_action(static_cast<InstrumentClusterInput_InstrumentClusterAction>(clusterKey(n)));
  return input;
}

PhoneStatusInput callKey(Number n) {
  PhoneStatusInput input;
  *input.mutable_input() = key(n);
  input.set_caller_number(numberedText(n));
  input.set_caller_id(numberedText(n + 1));
  return input;
}

MediaGetNode nodeRequest(Number n) {
  MediaGetNode request;
  request.set_path(numberedText(n));
  request.set_start(whole(n));
  request.set_get_album_art(isOdd(n));
  return request;
}

MediaBrowserInput browserKey(Number n) {
  MediaBrowserInput input;
  *input.mutable_input() = key(n);
  input.set_path(numberedText(n));
  return input;
}

VantryVerificationScreenCaptureResponse screen(Number n) {
  VantryVerificationScreenCaptureResponse response;
  response.set_screen_capture(image(n));
  return response;
}

VantryVerificationDisplayInformationResponse display(Number n) {
  VantryVerificationDisplayInformationResponse response;
  response.set_native_width(whole(n));
  response.set_native_height(whole(n + 1));
  return response;
}

template <class Record>
Record emptyRecord(Number) {
  return Record();
}

template <class Record>
MessageKind kind(int service, int type, Record (*record)(Number)) {
  const auto number = static_cast<std::uint16_t>(type);
  return {service, number, [=](Number n) { return Bytes(phone::messageBytes(number, record(n))); }};
}

}  // namespace

const std::vector<MessageKind>& toldByThePhone() {
  using namespace told;
  static const std::vector<MessageKind> kinds = {
      kind(BLUETOOTH, MESSAGE_BLUETOOTH_PAIRING_REQUEST, pairing),
      kind(RADIO, MESSAGE_RADIO_SET_STATION_REQUEST, station),
      kind(RADIO, MESSAGE_RADIO_SCAN_REQUEST, scan),
      kind(RADIO, MESSAGE_RADIO_STATION_INFO_REQUEST, emptyRecord<RadioStationInfoRequest>),
      kind(NAVIGATION, MESSAGE_NAVIGATION_STATUS, navigation),
      kind(NAVIGATION, MESSAGE_NAVIGATION_NEXT_TURN_EVENT, turn),
      kind(NAVIGATION, MESSAGE_NAVIGATION_NEXT_TURN_DISTANCE_EVENT, distance),
      kind(PLAYBACK, MESSAGE_MEDIA_PLAYBACK_STATUS, playback),
      kind(PLAYBACK, MESSAGE_MEDIA_PLAYBACK_METADATA, song),
      kind(PHONE, MESSAGE_PHONE_STATUS, calls),
      kind(BROWSER, MESSAGE_MEDIA_ROOT_NODE, rootNode),
      kind(BROWSER, MESSAGE_MEDIA_SOURCE_NODE, sourceNode),
      kind(BROWSER, MESSAGE_MEDIA_LIST_NODE, listNode),
      kind(BROWSER, MESSAGE_MEDIA_SONG_NODE, songNode),
      kind(NOTIFICATIONS, MESSAGE_GENERIC_NOTIFICATION_MESSAGE, notification),
      kind(NOTIFICATIONS, MESSAGE_GENERIC_NOTIFICATION_ACK, notificationAck),
      {EXTENSION, 0, numberedContent},
      kind(VERIFICATION, MESSAGE_VANTRY_VERIFICATION_SET_SENSOR, setSensor),
      kind(VERIFICATION, MESSAGE_VANTRY_VERIFICATION_VIDEO_FOCUS, videoFocus),
      kind(VERIFICATION, MESSAGE_VANTRY_VERIFICATION_AUDIO_FOCUS, audioFocus),
      kind(VERIFICATION, MESSAGE_VANTRY_VERIFICATION_INJECT_INPUT, injectInput),
      kind(VERIFICATION, MESSAGE_VANTRY_VERIFICATION_SCREEN_CAPTURE_REQUEST,
           emptyRecord<VantryVerificationScreenCaptureRequest>),
      kind(VERIFICATION, MESSAGE_VANTRY_VERIFICATION_DISPLAY_INFORMATION_REQUEST,
           emptyRecord<VantryVerificationDisplayInformationRequest>),
  };
  return kinds;
}

const std::vector<MessageKind>& heardByThePhone() {
  static const std::vector<MessageKind> kinds = {
      kind(BLUETOOTH, MESSAGE_BLUETOOTH_PAIRING_RESPONSE, pairingAnswer),
      kind(BLUETOOTH, MESSAGE_BLUETOOTH_AUTHENTICATION_DATA, pairingCode),
      kind(RADIO, MESSAGE_RADIO_SET_STATION_RESPONSE, stationAnswer),
      kind(RADIO, MESSAGE_RADIO_SCAN_COMPLETE_NOTIFICATION, scanEnd),
      kind(RADIO, MESSAGE_RADIO_STATION_INFO_NOTIFICATION, stationInfo),
      kind(NAVIGATION, MESSAGE_NAVIGATION_STATUS_START, emptyRecord<NavigationStatusStart>),
      kind(NAVIGATION, MESSAGE_NAVIGATION_STATUS_STOP, emptyRecord<NavigationStatusStop>),
      kind(PLAYBACK, MESSAGE_INSTRUMENT_CLUSTER_INPUT, key),
      kind(PHONE, MESSAGE_PHONE_STATUS_INPUT, callKey),
      kind(BROWSER, MESSAGE_MEDIA_GET_NODE, nodeRequest),
      kind(BROWSER, MESSAGE_MEDIA_BROWSER_INPUT, browserKey),
      kind(NOTIFICATIONS, MESSAGE_GENERIC_NOTIFICATION_MESSAGE, told::notification),
      kind(NOTIFICATIONS, MESSAGE_GENERIC_NOTIFICATION_ACK, told::notificationAck),
      {EXTENSION, 0, numberedContent},
      kind(VERIFICATION, MESSAGE_VANTRY_VERIFICATION_SCREEN_CAPTURE_RESPONSE, screen),
      kind(VERIFICATION, MESSAGE_VANTRY_VERIFICATION_DISPLAY_INFORMATION_RESPONSE, display),
  };
  return kinds;
}

}  // namespace test
