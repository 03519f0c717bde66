#include "BluetoothEndpoint.h"

#include "Message.h"

BluetoothEndpoint::BluetoothEndpoint(int id, MessageRouter* messageRouter,
                                     const shared_ptr<IBluetoothCallbacks>& bluetoothCallbacks)
    : ProtocolEndpointBase(id, messageRouter, false), callbacks(bluetoothCallbacks) {}

BluetoothEndpoint::~BluetoothEndpoint() = default;

int BluetoothEndpoint::routeMessage(unsigned char, unsigned short type, const shared_ptr<IoBuffer>& message) {
  switch (type) {
    case MESSAGE_BLUETOOTH_PAIRING_REQUEST:
      return handleRecord(this, message, &BluetoothEndpoint::handlePairingRequest);
  }
  return STATUS_UNEXPECTED_MESSAGE;
}

void BluetoothEndpoint::addDiscoveryInfo(ServiceDiscoveryResponse* response) {
  Service* const service = response->add_services();
  service->set_id(serviceId);
  BluetoothService* const bluetooth = service->mutable_bluetooth_service();
  bluetooth->set_car_address(carBluetoothAddress);
  for (const BluetoothPairingMethod method : supportedPairingMethods)
    bluetooth->add_supported_pairing_methods(method);
}

int BluetoothEndpoint::handlePairingRequest(BluetoothPairingRequest const& request) {
  if (callbacks) callbacks->pairingRequest(request.phone_address(), request.pairing_method());
  return STATUS_SUCCESS;
}

void BluetoothEndpoint::sendPairingResponse(int status, bool alreadyPaired) {
  BluetoothPairingResponse response;
  response.set_status(static_cast<MessageStatus>(status));
  response.set_already_paired(alreadyPaired);
  sendRecord(MESSAGE_BLUETOOTH_PAIRING_RESPONSE, response);
}

void BluetoothEndpoint::sendAuthData(std::string const& authData) {
  BluetoothAuthenticationData data;
  data.set_auth_data(authData);
  sendRecord(MESSAGE_BLUETOOTH_AUTHENTICATION_DATA, data);
}
