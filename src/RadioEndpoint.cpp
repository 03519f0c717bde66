#include "RadioEndpoint.h"

#include "Message.h"

namespace {

// RdsData's three-valued flags: 0 is not known, and anything but this is false.
constexpr int KNOWN_TRUE = 2;

}  // namespace

RadioEndpoint::RadioEndpoint(int id, MessageRouter* messageRouter,
                             const shared_ptr<IRadioCallbacks>& radioCallbacks)
    : ProtocolEndpointBase(id, messageRouter, false), callbacks(radioCallbacks) {}

RadioEndpoint::~RadioEndpoint() = default;

int RadioEndpoint::routeMessage(unsigned char, unsigned short type, const shared_ptr<IoBuffer>& message) {
  switch (type) {
    case MESSAGE_RADIO_SCAN_REQUEST: return handleRecord(this, message, &RadioEndpoint::handleScanRequest);
    case MESSAGE_RADIO_STATION_INFO_REQUEST: {
      RadioStationInfoRequest request;
      return readRecord(message, &request) ? handleRadioStationInfoRequest() : STATUS_UNEXPECTED_MESSAGE;
    }
    case MESSAGE_RADIO_SET_STATION_REQUEST:
      return handleRecord(this, message, &RadioEndpoint::handleSetStationRequest);
  }
  return STATUS_UNEXPECTED_MESSAGE;
}

void RadioEndpoint::addDiscoveryInfo(ServiceDiscoveryResponse* response) {
  Service* const service = response->add_services();
  service->set_id(serviceId);
  RadioService* const radio = service->mutable_radio_service();
  radio->set_radio_type(radioType);
  radio->set_start_frequency_hz(startFrequencyHz);
  radio->set_end_frequency_hz(endFrequencyHz);
  radio->set_channel_spacing_hz(channelSpacingHz);
}

int RadioEndpoint::handleScanRequest(RadioScanRequest const& request) {
  callbacks->scan(request.forward());
  return STATUS_SUCCESS;
}

int RadioEndpoint::handleRadioStationInfoRequest() {
  callbacks->stationInfoRequest();
  return STATUS_SUCCESS;
}

int RadioEndpoint::handleSetStationRequest(RadioSetStationRequest const& request) {
  RdsData data;
  bool hasRdsData = false;
  int status = STATUS_SUCCESS;
  if (request.power_off()) {
    callbacks->powerOff();
  } else if (!callbacks->setStation(request.frequency_hz(), &hasRdsData, &data)) {
    status = STATUS_INVALID_STATION;
  }
  RadioSetStationResponse response;
  response.set_status(status);
  if (hasRdsData)
    populateRdsData(data, response.mutable_station_data());  // also where the station was refused
  sendRecord(MESSAGE_RADIO_SET_STATION_RESPONSE, response);
  return status;
}

int RadioEndpoint::sendRdsData(RdsData const& data) {
  RadioStationInfoNotification notification;
  populateRdsData(data, &notification);
  sendRecord(MESSAGE_RADIO_STATION_INFO_NOTIFICATION, notification);
  return STATUS_SUCCESS;
}

int RadioEndpoint::notifyScanComplete(int status, int frequencyHz, RdsData const* data) {
  RadioScanCompleteNotification notification;
  notification.set_status(status);
  notification.set_frequency_hz(frequencyHz);
  if (data != nullptr) populateRdsData(*data, notification.mutable_station_data());
  sendRecord(MESSAGE_RADIO_SCAN_COMPLETE_NOTIFICATION, notification);
  return STATUS_SUCCESS;
}

void RadioEndpoint::populateRdsData(RdsData const& data, RadioStationInfoNotification* notification) {
  if (data.alternativeFrequencyHz > 0)
    notification->set_alternative_frequency_hz(data.alternativeFrequencyHz);
  if (!data.programIdentification.empty())
    notification->set_program_identification(data.programIdentification);
  if (!data.programService.empty()) notification->set_program_service(data.programService);
  if (!data.programType.empty()) notification->set_program_type(data.programType);
  if (!data.radioText.empty()) notification->set_radio_text(data.radioText);
  if (data.hd != 0) notification->set_hd(data.hd == KNOWN_TRUE);
  if (data.stereo != 0) notification->set_stereo(data.stereo == KNOWN_TRUE);
}
