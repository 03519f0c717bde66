// MessageRouter's half that carries out the opening and closing of channels.

#include <cassert>

#include "BigEndian.h"
#include "ChannelManager.h"
#include "Log.h"
#include "Message.h"
#include "MessageRouter.h"
#include "ProtocolEndpointBase.h"

int MessageRouter::routeChannelControlMsg(const shared_ptr<Frame>& frame, void* message,
                                          unsigned int length) {
  if (!isLongEnough(length, MESSAGE_TYPE_SIZE)) return STATUS_INVALID_CHANNEL;
  const unsigned char channel = frame->channelId;
  auto* const bytes = static_cast<unsigned char*>(message);
  void* const body = bytes + MESSAGE_TYPE_SIZE;
  const unsigned int bodyLength = length - MESSAGE_TYPE_SIZE;
  switch (extractType(bytes)) {
    case MESSAGE_CHANNEL_OPEN_REQUEST: return openChannel(channel, body, bodyLength);
    case MESSAGE_CHANNEL_CLOSE_NOTIFICATION: return channelClosedByPhone(channel, body, bodyLength);
  }
  const int status = sendUnexpectedMessage(channel);
  assert(status == STATUS_SUCCESS);
  return status;
}

int MessageRouter::openChannel(unsigned char channel, void* body, unsigned int length) {
  ChannelOpenRequest request;
  if (!readRecord(body, length, &request)) return STATUS_INVALID_CHANNEL;
  int status = handleChannelOpenReq(channel, request);
  if (status == STATUS_FRAMING_ERROR) return status;
  if (status == STATUS_SUCCESS) {
    status = channelManager.load()->registerChannel(channel, static_cast<signed char>(request.priority()));
  }
  sendChannelOpenResp(channel, status);
  if (status == STATUS_SUCCESS) notifyChannelOpened(channel, request);
  return status;
}

int MessageRouter::channelClosedByPhone(unsigned char channel, void* body, unsigned int length) {
  ChannelCloseNotification notification;
  if (!readRecord(body, length, &notification)) return STATUS_INVALID_CHANNEL;
  const int status = handleChannelCloseNotif(channel, notification);
  return status == STATUS_SUCCESS ? channelManager.load()->unregisterChannel(channel) : status;
}

int MessageRouter::handleChannelOpenReq(unsigned char channel, const ChannelOpenRequest& request) {
  if (channelToService[channel] != UNMAPPED) return STATUS_INVALID_CHANNEL;
  const auto service = static_cast<unsigned char>(request.service_id());
  ProtocolEndpointBase* const endpoint = endpointOf(service);
  if (endpoint == nullptr) return STATUS_NO_SUCH_SERVICE;
  if (!endpoint->mayOpenChannel(channel)) return STATUS_CHANNEL_REFUSED;
  setupMapping(service, channel);
  return STATUS_SUCCESS;
}

void MessageRouter::notifyChannelOpened(unsigned char channel, const ChannelOpenRequest& request) {
  const auto service = static_cast<unsigned char>(request.service_id());
  if (service == UNMAPPED) {
    print_critical_i("[LHU] Failed to notify channel open channel:%d service:%d", channel, service);
    return;
  }
  if (services[service] != nullptr) services[service]->onChannelOpened(channel);
}

int MessageRouter::handleChannelCloseNotif(unsigned char channel, const ChannelCloseNotification&) {
  const unsigned char service = channelToService[channel];
  if (service == UNMAPPED) return STATUS_INVALID_CHANNEL;
  ProtocolEndpointBase* const endpoint = services[service];
  if (endpoint == nullptr) return STATUS_NO_SUCH_SERVICE;
  if (!endpoint->onChannelClosed(channel)) return STATUS_INVALID_STATE;
  channelToService[channel] = UNMAPPED;
  return STATUS_SUCCESS;
}

int MessageRouter::sendControl(unsigned char channel, unsigned short type,
                               const google::protobuf::MessageLite& record) {
  IoBuffer message;
  marshallProto(type, record, &message);
  ChannelManager* const target = channelManager;
  if (target == nullptr) return STATUS_INVALID_CHANNEL;
  return target->queueOutgoing(channel, true, message.content(), message.size());
}

int MessageRouter::sendChannelOpenResp(unsigned char channel, int status) {
  ChannelOpenResponse response;
  response.set_status(static_cast<MessageStatus>(status));
  return sendControl(channel, MESSAGE_CHANNEL_OPEN_RESPONSE, response);
}

bool MessageRouter::closeChannel(unsigned char channel) {
  unsigned char service = channelToService[channel];
  if (service == UNMAPPED) return false;
  sendControl(channel, MESSAGE_CHANNEL_CLOSE_NOTIFICATION, ChannelCloseNotification());
  // By now the phone may have closed the channel and opened it anew, to another service: that mapping stays.
  // One to the same service cannot be told from the old.
  channelToService[channel].compare_exchange_strong(service, UNMAPPED);
  return true;
}
