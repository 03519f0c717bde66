#include "phone/services/CarPlayers.h"

#include <algorithm>
#include <iterator>

#include "phone/services/TurnImage.h"

namespace phone {

namespace {

constexpr Micros second = 1'000'000;
constexpr Micros scanInterval = 8 * second;
constexpr int metresPerSecond = 14;

struct Turn {
  const char* road;
  NavigationNextTurnEvent_NextTurnEnum event;
  NavigationNextTurnEvent_TurnSide side;
  int angle;   ///< Degrees to the right of straight on.
  int number;  ///< The exit of a roundabout; 0 if it has none.
  int metres;  ///< From the turn before.
};

using Event = NavigationNextTurnEvent;
const Turn route[] = {
    {"Harbour Street", Event::DEPART, Event::UNSPECIFIED, 0, 0, 60},
    {"Mill Lane", Event::TURN, Event::RIGHT, 90, 0, 180},
    {"Orchard Road", Event::SLIGHT_TURN, Event::LEFT, -40, 0, 240},
    {"Ring Road", Event::ROUNDABOUT_ENTER_AND_EXIT, Event::RIGHT, 60, 2, 320},
    {"Station Square", Event::SHARP_TURN, Event::LEFT, -130, 0, 200},
    {"Quay Side", Event::DESTINATION, Event::RIGHT, 0, 0, 150},
};

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
  if (answer->status() == STATUS_PAIRING_DELAYED) wake(second);
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

void RoutePlayer::onMessage(const Message& message) {
  NavigationStatus status;
  if (message.type() == MESSAGE_NAVIGATION_STATUS_START) {
    status.set_status(NavigationStatus_NavigationStatusEnum_ACTIVE);
    send(MESSAGE_NAVIGATION_STATUS, status);
    tellTurn();
    onTime();
  } else if (message.type() == MESSAGE_NAVIGATION_STATUS_STOP) {
    status.set_status(NavigationStatus_NavigationStatusEnum_INACTIVE);
    send(MESSAGE_NAVIGATION_STATUS, status);
    rest();
  }
}

void RoutePlayer::onTime() {
  const Micros interval = std::max<Micros>(service_.minimum_interval_ms() * Micros{1000}, second / 2);
  tellDistance();
  wake(interval);
  metres_ -= static_cast<int>(metresPerSecond * interval / second);
  if (metres_ > 0) return;
  turn_ = (turn_ + 1) % std::size(route);
  tellTurn();
}

void RoutePlayer::tellTurn() {
  const Turn& next = route[turn_];
  metres_ = next.metres;
  NavigationNextTurnEvent record;
  record.set_road(next.road);
  record.set_turn_side(next.side);
  record.set_event(next.event);
  if (next.number > 0) record.set_turn_number(next.number);
  record.set_turn_angle((next.angle + 360) % 360);
  if (service_.type() == NavigationStatusService_InstrumentClusterType_IMAGE) {
    const auto& size = service_.image_options();
    const Bytes png = drawTurn(next.angle, next.number > 0, size.width(), size.height());
    record.set_image(png.data(), png.size());
  }
  send(MESSAGE_NAVIGATION_NEXT_TURN_EVENT, record);
}

void RoutePlayer::tellDistance() {
  NavigationNextTurnDistanceEvent record;
  record.set_distance_meters(std::max(metres_, 0));
  record.set_time_to_turn_seconds(std::max(metres_, 0) / metresPerSecond);
  send(MESSAGE_NAVIGATION_NEXT_TURN_DISTANCE_EVENT, record);
}

}  // namespace phone
