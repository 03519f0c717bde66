// Pairing, the tuner, and guidance on the cluster.
#include "phone/verify/Probe.h"

namespace phone::verify {

namespace {

// ---- Bluetooth ----

std::uint8_t openBluetooth(Probe& probe) {
  return probe.open(probe.find([](const Service& one) { return one.has_bluetooth_service(); }, "Bluetooth"));
}

Bytes pairingRequest(BluetoothPairingMethod method) {
  BluetoothPairingRequest request;
  request.set_phone_address("02:00:00:00:5e:77");
  request.set_pairing_method(method);
  return messageBytes(MESSAGE_BLUETOOTH_PAIRING_REQUEST, request);
}

void answersPairing(Probe& probe) {
  const Service service =
      probe.find([](const Service& one) { return one.has_bluetooth_service(); }, "Bluetooth");
  const std::uint8_t channel = probe.open(service);
  const auto& methods = service.bluetooth_service().supported_pairing_methods();
  const int method = methods.empty() ? BLUETOOTH_PAIRING_METHOD_1 : methods.Get(0);
  probe.link().sendMessage(channel, pairingRequest(static_cast<BluetoothPairingMethod>(method)));
  const auto answer = probe.await<BluetoothPairingResponse>(
      channel, MESSAGE_BLUETOOTH_PAIRING_RESPONSE, "a BluetoothPairingResponse with both fields", 3'000'000);
  Probe::expect(answer.status() != STATUS_PAIRING_DELAYED || !answer.already_paired(),
                "already_paired false while pairing is delayed", "true");
  probe.close(channel);
}

void refusesOnBluetooth(Probe& probe) {
  const std::uint8_t channel = openBluetooth(probe);
  probe.expectRefused(channel, messageBytes(MESSAGE_BLUETOOTH_PAIRING_REQUEST),
                      "an empty BluetoothPairingRequest");
  probe.expectRefused(channel, messageBytes(MESSAGE_BLUETOOTH_PAIRING_REQUEST, Bytes{0x0a, 0x00, 0x10, 0x05}),
                      "a pairing method that is none");
  probe.expectRefused(channel, messageBytes(MESSAGE_BLUETOOTH_PAIRING_RESPONSE),
                      "a BluetoothPairingResponse");
  probe.expectRefused(channel, messageBytes(MESSAGE_BLUETOOTH_AUTHENTICATION_DATA),
                      "BluetoothAuthenticationData");
  probe.close(channel);
}

// ---- Radio ----

Service radio(Probe& probe) {
  return probe.find([](const Service& one) { return one.has_radio_service(); }, "a radio");
}

RadioSetStationResponse tune(Probe& probe, std::uint8_t channel, int frequency, bool powerOff = false) {
  RadioSetStationRequest request;
  request.set_frequency_hz(frequency);
  if (powerOff) request.set_power_off(true);
  probe.link().send(channel, MESSAGE_RADIO_SET_STATION_REQUEST, request);
  return probe.await<RadioSetStationResponse>(channel, MESSAGE_RADIO_SET_STATION_RESPONSE,
                                              "a RadioSetStationResponse");
}

void expectNoFrequency(const RadioStationInfoNotification& station) {
  Probe::expect(!station.has_current_frequency_hz(), "current_frequency_hz left out", "it is present");
}

void tunes(Probe& probe) {
  const Service service = radio(probe);
  const std::uint8_t channel = probe.open(service);
  const auto answer = tune(probe, channel, service.radio_service().start_frequency_hz());
  Probe::expect(answer.status() == 0, "status 0 at the lower end of the band",
                std::to_string(answer.status()));
  expectNoFrequency(answer.station_data());
  probe.close(channel);
}

void refusesToTune(Probe& probe) {
  const Service service = radio(probe);
  const std::uint8_t channel = probe.open(service);
  const auto answer = tune(probe, channel, 1);
  Probe::expect(answer.status() == STATUS_INVALID_STATION, "status -19 for 1 Hz",
                std::to_string(answer.status()));
  probe.close(channel);
}

void switchesOff(Probe& probe) {
  const Service service = radio(probe);
  const std::uint8_t channel = probe.open(service);
  const auto answer = tune(probe, channel, service.radio_service().start_frequency_hz(), true);
  Probe::expect(answer.status() == 0, "status 0", std::to_string(answer.status()));
  Probe::expect(!answer.has_station_data(), "no station when the tuner is switched off", "station_data");
  tune(probe, channel, service.radio_service().start_frequency_hz());
  probe.close(channel);
}

void scans(Probe& probe) {
  const Service service = radio(probe);
  const std::uint8_t channel = probe.open(service);
  for (const bool forward : {true, false}) {
    RadioScanRequest request;
    request.set_forward(forward);
    probe.link().send(channel, MESSAGE_RADIO_SCAN_REQUEST, request);
    const auto end = probe.await<RadioScanCompleteNotification>(
        channel, MESSAGE_RADIO_SCAN_COMPLETE_NOTIFICATION, "the end of the scan", 4'000'000);
    Probe::expect(end.has_frequency_hz(), "frequency_hz told", "it is absent");
    expectNoFrequency(end.station_data());
  }
  probe.close(channel);
}

void tellsStation(Probe& probe) {
  const std::uint8_t channel = probe.open(radio(probe));
  probe.link().send(channel, MESSAGE_RADIO_STATION_INFO_REQUEST, RadioStationInfoRequest());
  expectNoFrequency(probe.await<RadioStationInfoNotification>(
      channel, MESSAGE_RADIO_STATION_INFO_NOTIFICATION, "a RadioStationInfoNotification"));
  probe.close(channel);
}

void refusesOnRadio(Probe& probe) {
  const std::uint8_t channel = probe.open(radio(probe));
  probe.expectRefused(channel, messageBytes(MESSAGE_RADIO_SCAN_REQUEST),
                      "a RadioScanRequest without a direction");
  for (const RadioMessageId type :
       {MESSAGE_RADIO_SCAN_COMPLETE_NOTIFICATION, MESSAGE_RADIO_STATION_INFO_NOTIFICATION,
        MESSAGE_RADIO_SET_STATION_RESPONSE}) {
    probe.expectRefused(channel, messageBytes(static_cast<std::uint16_t>(type)),
                        "type " + hex(type) + ", which only a head unit sends");
  }
  probe.expectRefused(channel, messageBytes(0x8007), "an unknown type");
  probe.close(channel);
}

// ---- Navigation ----

std::uint8_t openNavigation(Probe& probe) {
  return probe.open(
      probe.find([](const Service& one) { return one.has_navigation_status_service(); }, "navigation"));
}

void takesGuidance(Probe& probe) {
  const std::uint8_t channel = openNavigation(probe);
  NavigationStatus status;
  status.set_status(NavigationStatus_NavigationStatusEnum_ACTIVE);
  probe.expectTaken(channel, messageBytes(MESSAGE_NAVIGATION_STATUS, status), "a NavigationStatus");
  NavigationNextTurnEvent turn;
  turn.set_road("Long Lane");
  probe.expectTaken(channel, messageBytes(MESSAGE_NAVIGATION_NEXT_TURN_EVENT, turn),
                    "a turn of which only the road is told");
  turn.set_turn_side(NavigationNextTurnEvent_TurnSide_LEFT);
  turn.set_event(NavigationNextTurnEvent_NextTurnEnum_ROUNDABOUT_ENTER_AND_EXIT);
  turn.set_turn_number(3);
  turn.set_turn_angle(120);
  turn.set_image(std::string(20'000, '\0'));
  probe.expectTaken(channel, messageBytes(MESSAGE_NAVIGATION_NEXT_TURN_EVENT, turn),
                    "a turn with everything told");
  NavigationNextTurnDistanceEvent distance;
  distance.set_distance_meters(250);
  distance.set_time_to_turn_seconds(18);
  probe.expectTaken(channel, messageBytes(MESSAGE_NAVIGATION_NEXT_TURN_DISTANCE_EVENT, distance),
                    "a distance");
  status.set_status(NavigationStatus_NavigationStatusEnum_INACTIVE);
  probe.expectTaken(channel, messageBytes(MESSAGE_NAVIGATION_STATUS, status), "the end of guidance");
  probe.close(channel);
}

void refusesOnNavigation(Probe& probe) {
  const std::uint8_t channel = openNavigation(probe);
  probe.expectRefused(channel, messageBytes(MESSAGE_NAVIGATION_STATUS),
                      "a NavigationStatus without a status");
  probe.expectRefused(channel, messageBytes(MESSAGE_NAVIGATION_NEXT_TURN_EVENT), "a turn without a road");
  probe.expectRefused(channel, messageBytes(MESSAGE_NAVIGATION_NEXT_TURN_DISTANCE_EVENT, Bytes{0x08, 0x01}),
                      "a distance without a time");
  probe.expectRefused(channel, messageBytes(MESSAGE_NAVIGATION_STATUS_START), "a NavigationStatusStart");
  probe.expectRefused(channel, messageBytes(MESSAGE_NAVIGATION_STATUS_STOP), "a NavigationStatusStop");
  probe.close(channel);
}

}  // namespace

Checks carServiceChecks() {
  return {
      {"bluetooth.pairing", "A pairing request is answered, with both fields.", answersPairing},
      {"bluetooth.refused", "Damaged and unknown messages are refused.", refusesOnBluetooth},
      {"radio.tune", "A frequency inside the band is tuned to.", tunes},
      {"radio.out-of-band", "A frequency far outside it is refused with status -19.", refusesToTune},
      {"radio.power-off", "Switching off succeeds, and tells no station.", switchesOff},
      {"radio.scan", "A scan, up or down, ends with a frequency.", scans},
      {"radio.station", "The station's data come when asked for.", tellsStation},
      {"radio.refused", "Damaged and unknown messages are refused.", refusesOnRadio},
      {"navigation.taken", "Status, turns and distances are taken in silence.", takesGuidance},
      {"navigation.refused", "Damaged and unknown messages are refused.", refusesOnNavigation},
  };
}

}  // namespace phone::verify
