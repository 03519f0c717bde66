#include "ProtocolEndpointBase.h"

#include "MessageRouter.h"

ProtocolEndpointBase::ProtocolEndpointBase(int id, MessageRouter* messageRouter, bool raw)
    : router(messageRouter), serviceId(id), rawMessages(raw) {}

ProtocolEndpointBase::~ProtocolEndpointBase() = default;

bool ProtocolEndpointBase::onChannelClosed(unsigned char) { return channelOpened.exchange(false); }

bool ProtocolEndpointBase::mayOpenChannel(unsigned char) { return !channelOpened; }

void ProtocolEndpointBase::onChannelOpened(unsigned char channel) {
  channelId = channel;
  channelOpened = true;
}

int ProtocolEndpointBase::routeMessage(unsigned char, unsigned short, const shared_ptr<IoBuffer>&) {
  return STATUS_NO_SUCH_SERVICE;
}

int ProtocolEndpointBase::handleRawMessage(unsigned char, const shared_ptr<IoBuffer>&) {
  return STATUS_NO_SUCH_SERVICE;
}

int ProtocolEndpointBase::sendRecord(unsigned short type, const google::protobuf::MessageLite& record) {
  IoBuffer message;
  MessageRouter::marshallProto(type, record, &message);
  return sendMessage(message.content(), message.size());
}

int ProtocolEndpointBase::sendMessage(void* data, unsigned int length) {
  if (!channelOpened) return STATUS_SUCCESS;
  return router->queueOutgoing(channelId, data, length);
}
