// Controller's half that brings the link up: version, TLS handshake, its result, discovery.

#include "BigEndian.h"
#include "ChannelManager.h"
#include "Controller.h"
#include "Log.h"
#include "Message.h"
#include "MessageRouter.h"
#include "Version.h"

namespace {

constexpr unsigned short MAJOR_VERSION = 1;
constexpr unsigned short MINOR_VERSION = 0;
constexpr unsigned int VERSION_RESPONSE_SIZE = 5;  // major, minor, verdict
constexpr unsigned char VERSION_ACCEPTED = 0;

}  // namespace

bool Controller::setClientCreds(const std::string& rootCertificate, const std::string& clientCertificate,
                                const std::string& privateKey) {
  return wrapper.init(rootCertificate, clientCertificate, privateKey);
}

int Controller::start() {
  sendVersionRequest();
  return STATUS_SUCCESS;
}

void Controller::sendPlain(void* data, unsigned int length) {
  if (channelOpened) router->queueOutgoingUnencrypted(channelId, data, length);
}

void Controller::sendVersionRequest() {
  unsigned char message[6];
  writeBigEndian16(message, MESSAGE_VERSION_REQUEST);
  writeBigEndian16(message + 2, MAJOR_VERSION);
  writeBigEndian16(message + 4, MINOR_VERSION);
  sendPlain(message, sizeof message);
  print_critical_i("[LHU] sendVersionRequest() :: Starting link, car major=%hu minor=%hu", MAJOR_VERSION,
                   MINOR_VERSION);
}

int Controller::handleVersionResponse(void* data, unsigned int length) {
  if (!isLongEnough(length, VERSION_RESPONSE_SIZE)) return STATUS_UNEXPECTED_MESSAGE;
  const auto* const body = static_cast<const unsigned char*>(data);
  const unsigned short major = readBigEndian16(body);
  const unsigned short minor = readBigEndian16(body + 2);
  print_critical_i("[LHU] handleVersionResponse() :: Phone reported version major=%hu minor=%hu", major,
                   minor);
  versionAccepted = body[4] == VERSION_ACCEPTED;  // the phone decides; no numbers are compared here
  if (!versionAccepted) return STATUS_SUCCESS;
  callbacks->versionResponse(major, minor);
  startAuthentication();
  return STATUS_SUCCESS;
}

int Controller::startAuthentication() {
  IoBuffer out;
  if (wrapper.handshake(nullptr, 0, &out) >= 0) return STATUS_INVALID_STATE;
  sendPlain(out.content(), out.size());
  return STATUS_SUCCESS;
}

int Controller::handleHandshake(void* data, unsigned int length) {
  IoBuffer out;
  const int result = wrapper.handshake(data, length, &out);
  if (result < 0 && out.size() > 0) {
    sendPlain(out.content(), out.size());
  } else if (result == 1 && wrapper.verifyPeer()) {
    completeAuthentication();
  } else {
    // Also where OpenSSL wants more input: the phone delivers each of its flights in one message.
    failAuthentication();
  }
  return STATUS_SUCCESS;
}

void Controller::completeAuthentication() {
  if (ChannelManager* const manager = router->manager()) manager->setSslWrapper(&wrapper);
  sendAuthResponse(STATUS_SUCCESS);
}

void Controller::failAuthentication() {
  sendAuthResponse(STATUS_AUTHENTICATION_FAILURE);
  print_critical_i("[LHU] Shutting down connection due to authentication failure.");
  unrecoverableError();
}

void Controller::sendAuthResponse(int status) {
  print_critical_i("[LHU] VTP Version : %s", VTP_VERSION);
  callbacks->authenticationCompleted(status);
  AuthResponse response;
  response.set_status(status);
  IoBuffer message;
  MessageRouter::marshallProto(MESSAGE_AUTH_RESPONSE, response, &message);
  sendPlain(message.content(), message.size());
}

int Controller::handleServiceDiscoveryRequest(const ServiceDiscoveryRequest& request) {
  if (!versionAccepted) return STATUS_UNEXPECTED_MESSAGE;
  callbacks->serviceDiscoveryRequest(request.small_icon(), request.medium_icon(), request.large_icon(),
                                     request.label_text());
  sendServiceDiscoveryResponse();
  return STATUS_SUCCESS;
}

void Controller::sendServiceDiscoveryResponse() {
  ServiceDiscoveryResponse response;
  response.set_make(make);
  response.set_model(model);
  response.set_year(year);
  response.set_vehicle_id(vehicleId);
  response.set_driver_position(driverPosition);
  response.set_head_unit_make(headUnitMake);
  response.set_head_unit_model(headUnitModel);
  response.set_head_unit_software_build(headUnitSoftwareBuild);
  response.set_head_unit_software_version(headUnitSoftwareVersion);
  router->populateServiceDiscoveryResponse(&response);

  IoBuffer message;
  MessageRouter::marshallProto(MESSAGE_SERVICE_DISCOVERY_RESPONSE, response, &message);
  if (message.size() == 479) {
    print_critical_i("[LHU] MESSAGE_SERVICE_DISCOVERY_RESPONSE buf.size() is 479 bytes");
  }
  sendMessage(message.content(), message.size());
}
