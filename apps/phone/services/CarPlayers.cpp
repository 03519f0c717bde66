#include "phone/services/CarPlayers.h"

#include <algorithm>
#include <utility>

#include "phone/services/TurnImage.h"

namespace phone {

namespace {

constexpr Micros second = 1'000'000;
constexpr Micros scanInterval = 8 * second;
}  // namespace

// ---- Bluetooth ----

void BluetoothPlayer::ask() {
  BluetoothPairingRequest request;
  request.set_phone_address("02:00:00:5e:77:01");
  request.set_pairing_method(service_.supported_pairing_methods_size() > 0
                                 ? service_.supported_pairing_methods(0)
                                 : BLUETOOTH_PAIRING_METHOD_1);
  send(MESSAGE_BLUETOOTH_PAIRING_REQUEST, request);
}

void BluetoothPlayer::onMessage(const Message& message) {
  if (message.type() != MESSAGE_BLUETOOTH_PAIRING_RESPONSE) return;
  const auto answer = message.as<BluetoothPairingResponse>();
  if (!answer) return;
  paired_ = answer->status() == STATUS_SUCCESS;
  if (answer->status() == STATUS_PAIRING_DELAYED) {
    wake(second);
  } else {
    rest();  // that was the answer, whatever has been asked again meanwhile
  }
}

// ---- Radio ----

void RadioPlayer::tune(int frequency) {
  RadioSetStationRequest request;
  request.set_frequency_hz(frequency);
  send(MESSAGE_RADIO_SET_STATION_REQUEST, request);
  send(MESSAGE_RADIO_STATION_INFO_REQUEST, RadioStationInfoRequest());
}

void RadioPlayer::onOpened() {
  const int middle = service_.start_frequency_hz() / 2 + service_.end_frequency_hz() / 2;
  const int spacing = std::max(service_.channel_spacing_hz(), 1);
  tune(service_.start_frequency_hz() + (middle - service_.start_frequency_hz()) / spacing * spacing);
  wake(scanInterval);
}

void RadioPlayer::onTime() {
  RadioScanRequest request;
  request.set_forward(true);
  send(MESSAGE_RADIO_SCAN_REQUEST, request);
}

void RadioPlayer::onMessage(const Message& message) {
  if (message.type() != MESSAGE_RADIO_SCAN_COMPLETE_NOTIFICATION) return;
  const auto end = message.as<RadioScanCompleteNotification>();
  if (end && end->has_frequency_hz()) tune(end->frequency_hz());
  wake(scanInterval);
}

// ---- Navigation ----

RoutePlayer::RoutePlayer(PhoneLink* link, Timers* timers, const NavigationStatusService& service,
                         RouteClock clock)
    : ServicePlayer(link, timers), service_(service), clock_(std::move(clock)), began_(now()) {}

void RoutePlayer::onMessage(const Message& message) {
  NavigationStatus status;
  if (message.type() == MESSAGE_NAVIGATION_STATUS_START) {
    status.set_status(NavigationStatus_NavigationStatusEnum_ACTIVE);
    send(MESSAGE_NAVIGATION_STATUS, status);
    leg_.reset();
    onTime();
  } else if (message.type() == MESSAGE_NAVIGATION_STATUS_STOP) {
    status.set_status(NavigationStatus_NavigationStatusEnum_INACTIVE);
    send(MESSAGE_NAVIGATION_STATUS, status);
    rest();
  }
}

void RoutePlayer::onTime() {
  const Route::Place place = route_.placeAt(clock_ ? clock_() : now() - began_);
  if (leg_ != place.leg) tellTurn(place.leg);
  leg_ = place.leg;
  tellDistance(place);
  wake(std::max<Micros>(service_.minimum_interval_ms() * Micros{1000}, second / 2));
}

void RoutePlayer::tellTurn(std::size_t leg) {
  const int angle = Route::turnsRight(leg) ? 90 : -90;
  NavigationNextTurnEvent record;
  record.set_road(Route::roadBehind(leg));
  record.set_turn_side(angle > 0 ? NavigationNextTurnEvent::RIGHT : NavigationNextTurnEvent::LEFT);
  record.set_event(NavigationNextTurnEvent::TURN);
  record.set_turn_angle((angle + 360) % 360);
  if (service_.type() == NavigationStatusService_InstrumentClusterType_IMAGE) {
    const auto& size = service_.image_options();
    const Bytes png = drawTurn(angle, size.width(), size.height());
    record.set_image(png.data(), png.size());
  }
  send(MESSAGE_NAVIGATION_NEXT_TURN_EVENT, record);
}

void RoutePlayer::tellDistance(const Route::Place& place) {
  NavigationNextTurnDistanceEvent record;
  record.set_distance_meters(static_cast<int>(place.metres));
  record.set_time_to_turn_seconds(static_cast<int>(place.secondsLeft));
  send(MESSAGE_NAVIGATION_NEXT_TURN_DISTANCE_EVENT, record);
}

}  // namespace phone
