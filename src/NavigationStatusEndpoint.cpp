#include "NavigationStatusEndpoint.h"

#include "Message.h"

namespace {

// What the host sees in place of a field that the phone left out.
constexpr int NO_TURN_SIDE = 0;  // outside the enumeration, unlike the field's own default
constexpr int NO_TURN_ANGLE = -1;
constexpr int NO_TURN_NUMBER = -1;

}  // namespace

NavigationStatusEndpoint::NavigationStatusEndpoint(
    int id, MessageRouter* messageRouter, const shared_ptr<INavigationStatusCallbacks>& navigationCallbacks)
    : ProtocolEndpointBase(id, messageRouter, false), callbacks(navigationCallbacks) {}

NavigationStatusEndpoint::~NavigationStatusEndpoint() = default;

int NavigationStatusEndpoint::routeMessage(unsigned char, unsigned short type,
                                           const shared_ptr<IoBuffer>& message) {
  using Self = NavigationStatusEndpoint;
  switch (type) {
    case MESSAGE_NAVIGATION_STATUS: return handleRecord(this, message, &Self::handleNavigationStatus);
    case MESSAGE_NAVIGATION_NEXT_TURN_EVENT:
      return handleRecord(this, message, &Self::handleNavigationNextTurnEvent);
    case MESSAGE_NAVIGATION_NEXT_TURN_DISTANCE_EVENT:
      return handleRecord(this, message, &Self::handleNavigationDistanceEvent);
  }
  return STATUS_UNEXPECTED_MESSAGE;
}

void NavigationStatusEndpoint::addDiscoveryInfo(ServiceDiscoveryResponse* response) {
  Service* const service = response->add_services();
  service->set_id(serviceId);
  NavigationStatusService* const navigation = service->mutable_navigation_status_service();
  navigation->set_minimum_interval_ms(minimumIntervalMs);
  navigation->set_type(static_cast<NavigationStatusService_InstrumentClusterType>(instrumentClusterType));
  if (instrumentClusterType != NavigationStatusService_InstrumentClusterType_IMAGE) return;
  NavigationStatusService_ImageOptions* const image = navigation->mutable_image_options();
  image->set_height(imageHeight);
  image->set_width(imageWidth);
  image->set_colour_depth_bits(imageColourDepthBits);
}

int NavigationStatusEndpoint::handleNavigationStatus(const NavigationStatus& status) {
  callbacks->navigationStatus(status.status());
  return STATUS_SUCCESS;
}

int NavigationStatusEndpoint::handleNavigationNextTurnEvent(const NavigationNextTurnEvent& event) {
  const std::string image = event.image();
  const int turnSide = event.has_turn_side() ? event.turn_side() : NO_TURN_SIDE;
  const int turnAngle = event.has_turn_angle() ? event.turn_angle() : NO_TURN_ANGLE;
  const int turnNumber = event.has_turn_number() ? event.turn_number() : NO_TURN_NUMBER;
  callbacks->navigationNextTurn(event.road(), turnSide, event.event(), image, turnAngle, turnNumber);
  return STATUS_SUCCESS;
}

int NavigationStatusEndpoint::handleNavigationDistanceEvent(const NavigationNextTurnDistanceEvent& event) {
  callbacks->navigationNextTurnDistance(event.distance_meters(), event.time_to_turn_seconds());
  return STATUS_SUCCESS;
}

void NavigationStatusEndpoint::start() {
  sendRecord(MESSAGE_NAVIGATION_STATUS_START, NavigationStatusStart());
}

void NavigationStatusEndpoint::stop() { sendRecord(MESSAGE_NAVIGATION_STATUS_STOP, NavigationStatusStop()); }
