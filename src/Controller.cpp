#include "Controller.h"

#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/wire_format_lite.h>

#include "Log.h"
#include "Message.h"
#include "MessageRouter.h"

using google::protobuf::internal::WireFormatLite;

// Messages of channel 0, both ways. The link's bring-up is in LinkStart.cpp.

namespace {

/// Reads AudioFocusRequestNotification.request as the number that it is on the wire. The parser sets an
/// unknown value of an enumeration aside; here the host is to hear of it all the same.
bool readAudioFocusRequest(const void* body, unsigned int size, AudioFocusRequestType* request) {
  AudioFocusRequestNotification notification;
  if (!parseFields(body, size, &notification)) return false;
  if (notification.has_request()) {
    *request = notification.request();
    return true;
  }
  const std::string& setAside = notification.unknown_fields();
  google::protobuf::io::CodedInputStream fields(
      reinterpret_cast<const google::protobuf::uint8*>(setAside.data()), static_cast<int>(setAside.size()));
  constexpr google::protobuf::uint32 REQUEST_TAG = AudioFocusRequestNotification::kRequestFieldNumber << 3;
  bool found = false;
  while (const google::protobuf::uint32 tag = fields.ReadTag()) {
    google::protobuf::uint64 value = 0;
    if (tag == REQUEST_TAG && fields.ReadVarint64(&value)) {
      *request = static_cast<AudioFocusRequestType>(value);
      found = true;
    } else if (!WireFormatLite::SkipField(&fields, tag)) {
      return false;
    }
  }
  return found;
}

}  // namespace

Controller::Controller(MessageRouter* messageRouter) : ProtocolEndpointBase(0, messageRouter, false) {}

void Controller::addDiscoveryInfo(ServiceDiscoveryResponse*) {}

void Controller::unrecoverableError() {
  if (callbacks) callbacks->unrecoverableError();
}

int Controller::routeMessage(unsigned char, unsigned short type, const shared_ptr<IoBuffer>& message) {
  switch (type) {
    case MESSAGE_VERSION_RESPONSE:
      return handleVersionResponse(messageBody(message), messageBodySize(message));
    case MESSAGE_SSL_HANDSHAKE: return handleHandshake(messageBody(message), messageBodySize(message));
    case MESSAGE_SERVICE_DISCOVERY_REQUEST:
      return handleRecord(this, message, &Controller::handleServiceDiscoveryRequest);
    case MESSAGE_PING_REQUEST: return handleRecord(this, message, &Controller::handlePingRequest);
    case MESSAGE_PING_RESPONSE: return handleRecord(this, message, &Controller::handlePingResponse);
    case MESSAGE_NAV_FOCUS_REQUEST_NOTIFICATION:
      return handleRecord(this, message, &Controller::handleNavFocusRequest);
    case MESSAGE_BYE_BYE_REQUEST: return handleRecord(this, message, &Controller::handleByeByeRequest);
    case MESSAGE_BYE_BYE_RESPONSE: return handleRecord(this, message, &Controller::handleByeByeResponse);
    case MESSAGE_VOICE_SESSION_NOTIFICATION:
      return handleRecord(this, message, &Controller::handleVoiceSession);
    case MESSAGE_AUDIO_FOCUS_REQUEST_NOTIFICATION: return handleAudioFocusRequest(message);
  }
  return STATUS_UNEXPECTED_MESSAGE;
}

int Controller::handlePingRequest(const PingRequest& request) {
  callbacks->pingRequest(request.timestamp(), request.bug_report());
  PingResponse response;
  response.set_timestamp(request.timestamp());
  sendRecord(MESSAGE_PING_RESPONSE, response);
  return STATUS_SUCCESS;
}

int Controller::handlePingResponse(const PingResponse& response) {
  callbacks->pingResponse(response.timestamp());
  return STATUS_SUCCESS;
}

int Controller::handleNavFocusRequest(const NavFocusRequestNotification& notification) {
  callbacks->navigationFocusRequest(notification.focus_type());
  return STATUS_SUCCESS;
}

int Controller::handleByeByeRequest(const ByeByeRequest& request) {
  callbacks->byeByeRequest(request.reason());
  return STATUS_SUCCESS;
}

int Controller::handleByeByeResponse(const ByeByeResponse&) {
  callbacks->byeByeResponse();
  return STATUS_SUCCESS;
}

int Controller::handleVoiceSession(const VoiceSessionNotification& notification) {
  callbacks->voiceSessionNotification(notification.status());
  return STATUS_SUCCESS;
}

int Controller::handleAudioFocusRequest(const shared_ptr<IoBuffer>& message) {
  AudioFocusRequestType request;
  if (!readAudioFocusRequest(messageBody(message), messageBodySize(message), &request)) {
    logParseFailure(__FILE__, __LINE__);
    return STATUS_UNEXPECTED_MESSAGE;
  }
  print_critical_i("[LHU] NOTIFY : %s", Log::getAudioFocusRequestTypeString(request));
  callbacks->audioFocusRequest(request);
  return STATUS_SUCCESS;
}

void Controller::sendPingRequest(long long timestamp, bool bugReport) {
  PingRequest request;
  request.set_timestamp(timestamp);
  request.set_bug_report(bugReport);
  sendRecord(MESSAGE_PING_REQUEST, request);
}

void Controller::setAudioFocus(AudioFocusStateType state, bool unsolicited) {
  AudioFocusNotification notification;
  notification.set_focus_state(state);
  notification.set_unsolicited(unsolicited);
  sendRecord(MESSAGE_AUDIO_FOCUS_NOTIFICATION, notification);
}

void Controller::setNavigationFocus(NavFocusType type) {
  NavFocusNotification notification;
  notification.set_focus_type(type);
  sendRecord(MESSAGE_NAV_FOCUS_NOTIFICATION, notification);
}

void Controller::sendByeByeRequest(ByeByeReason reason) {
  ByeByeRequest request;
  request.set_reason(reason);
  sendRecord(MESSAGE_BYE_BYE_REQUEST, request);
}

void Controller::sendByeByeResponse() { sendRecord(MESSAGE_BYE_BYE_RESPONSE, ByeByeResponse()); }
