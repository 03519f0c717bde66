#include "PhoneStatusEndpoint.h"

#include "InstrumentCluster.h"
#include "Message.h"

namespace {

void copyCall(const PhoneStatus_Call& call, PhoneCallStruct* copy) {
  copy->phoneState = call.phone_state();
  copy->callDurationSeconds = call.call_duration_seconds();
  if (call.has_caller_number()) copy->callerNumber = call.caller_number();
  if (call.has_caller_id()) copy->callerId = call.caller_id();
  if (call.has_caller_number_type()) copy->callerNumberType = call.caller_number_type();
  if (call.has_caller_thumbnail()) copy->callerThumbnail = call.caller_thumbnail();
}

}  // namespace

PhoneStatusEndpoint::PhoneStatusEndpoint(int id, MessageRouter* messageRouter,
                                         const shared_ptr<IPhoneStatusCallbacks>& phoneCallbacks)
    : ProtocolEndpointBase(id, messageRouter, false), callbacks(phoneCallbacks) {}

PhoneStatusEndpoint::~PhoneStatusEndpoint() = default;

int PhoneStatusEndpoint::routeMessage(unsigned char, unsigned short type,
                                      const shared_ptr<IoBuffer>& message) {
  switch (type) {
    case MESSAGE_PHONE_STATUS: return handleRecord(this, message, &PhoneStatusEndpoint::handlePhoneStatus);
  }
  return STATUS_UNEXPECTED_MESSAGE;
}

void PhoneStatusEndpoint::addDiscoveryInfo(ServiceDiscoveryResponse* response) {
  Service* const service = response->add_services();
  service->set_id(serviceId);
  service->mutable_phone_status_service();
}

int PhoneStatusEndpoint::handlePhoneStatus(const PhoneStatus& status) {
  if (!callbacks) return STATUS_SUCCESS;
  PhoneStatusStruct copy;
  copy.callCount = status.calls_size();
  copy.calls = new PhoneCallStruct[static_cast<unsigned int>(copy.callCount)];
  for (int i = 0; i < copy.callCount; ++i) copyCall(status.calls(i), &copy.calls[i]);
  if (status.has_signal_strength()) copy.signalStrength = status.signal_strength();
  callbacks->phoneStatus(copy);  // which takes the array over
  return STATUS_SUCCESS;
}

int PhoneStatusEndpoint::reportAction(const std::string& callerNumber, const std::string& callerId,
                                      unsigned int action) {
  if (!isInstrumentClusterAction(action)) return STATUS_INVALID_INPUT;
  PhoneStatusInput message;
  if (!callerNumber.empty()) message.set_caller_number(callerNumber);
  if (!callerId.empty()) message.set_caller_id(callerId);
  setInstrumentClusterAction(action, message.mutable_input());
  sendRecord(MESSAGE_PHONE_STATUS_INPUT, message);
  return STATUS_SUCCESS;
}
