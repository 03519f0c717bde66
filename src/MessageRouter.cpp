#include "MessageRouter.h"

#include <cassert>
#include <climits>

#include "BigEndian.h"
#include "ChannelManager.h"
#include "Controller.h"
#include "Log.h"
#include "Message.h"
#include "ProtocolEndpointBase.h"

// The services, and the way of a whole message to and from them. Opening and closing of channels is in
// ChannelControl.cpp.

MessageRouter::MessageRouter() { init(nullptr); }

bool MessageRouter::init(ChannelManager* manager) {
  channelManager = manager;
  for (std::atomic<unsigned char>& service : channelToService) service = UNMAPPED;
  for (ProtocolEndpointBase*& endpoint : services) endpoint = nullptr;
  return true;
}

void MessageRouter::shutdown() { channelManager = nullptr; }

void MessageRouter::setupMapping(unsigned char service, unsigned char channel) {
  channelToService[channel] = service;
}

bool MessageRouter::registerService(ProtocolEndpointBase* endpoint) {
  const auto id = static_cast<unsigned char>(endpoint->serviceId);
  if (id == UNMAPPED || services[id] != nullptr) return false;
  services[id] = endpoint;
  return true;
}

ProtocolEndpointBase* MessageRouter::endpointOf(unsigned char service) const {
  return service == UNMAPPED ? nullptr : services[service];
}

unsigned short MessageRouter::extractType(unsigned char* data) { return readBigEndian16(data); }

void MessageRouter::marshallProto(unsigned short type, const google::protobuf::MessageLite& message,
                                  IoBuffer* out) {
  const std::size_t size = message.ByteSizeLong();
  if (size > INT_MAX - MESSAGE_TYPE_SIZE) {  // no message can be that long
    out->resize(0);
    return;
  }
  out->resize(static_cast<unsigned int>(size) + MESSAGE_TYPE_SIZE);
  writeBigEndian16(out->data, type);
  // Partial: the strict form ends the process when a required field is missing.
  const bool serialized =
      message.SerializePartialToArray(out->data + MESSAGE_TYPE_SIZE, static_cast<int>(size));
  assert(serialized);
  static_cast<void>(serialized);
}

int MessageRouter::routeMessage(unsigned char channel, const shared_ptr<IoBuffer>& message) {
  const unsigned char service = channelToService[channel];
  if (service == UNMAPPED) return STATUS_INVALID_CHANNEL;
  ProtocolEndpointBase* const endpoint = services[service];
  if (endpoint == nullptr) return STATUS_NO_SUCH_SERVICE;

  int status = STATUS_UNEXPECTED_MESSAGE;
  if (endpoint->rawMessages) {
    status = endpoint->handleRawMessage(channel, message);
  } else if (isLongEnough(message->size(), MESSAGE_TYPE_SIZE)) {
    status = endpoint->routeMessage(channel, extractType(message->content()), message);
  }
  return status == STATUS_UNEXPECTED_MESSAGE ? sendUnexpectedMessage(channel) : status;
}

int MessageRouter::sendUnexpectedMessage(unsigned char channel) {
  print_critical_i("[LHU] Sending unexpected message on channel %d", channel);
  unsigned char message[MESSAGE_TYPE_SIZE];
  writeBigEndian16(message, MESSAGE_UNEXPECTED_MESSAGE);
  return queueOutgoing(channel, message, sizeof message);
}

int MessageRouter::queueOutgoing(unsigned char channel, void* data, unsigned int length) {
  ChannelManager* const target = channelManager;
  return target == nullptr ? STATUS_INVALID_CHANNEL : target->queueOutgoing(channel, false, data, length);
}

int MessageRouter::queueOutgoingUnencrypted(unsigned char channel, void* data, unsigned int length) {
  ChannelManager* const target = channelManager;
  return target == nullptr ? STATUS_INVALID_CHANNEL
                           : target->queueOutgoingUnencrypted(channel, false, data, length);
}

void MessageRouter::populateServiceDiscoveryResponse(ServiceDiscoveryResponse* response) {
  for (ProtocolEndpointBase* const endpoint : services) {
    if (endpoint != nullptr) endpoint->addDiscoveryInfo(response);
  }
}

void MessageRouter::unrecoverableError() {
  if (services[0] == nullptr) return;
  static_cast<Controller*>(services[0])->unrecoverableError();  // service 0 is always the controller
}
