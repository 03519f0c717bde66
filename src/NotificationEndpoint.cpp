#include "NotificationEndpoint.h"

#include "Message.h"

NotificationEndpoint::NotificationEndpoint(int id, MessageRouter* messageRouter,
                                           const shared_ptr<INotificationCallbacks>& notificationCallbacks)
    : ProtocolEndpointBase(id, messageRouter, false), callbacks(notificationCallbacks) {}

NotificationEndpoint::~NotificationEndpoint() = default;

int NotificationEndpoint::routeMessage(unsigned char, unsigned short type,
                                       const shared_ptr<IoBuffer>& message) {
  using Self = NotificationEndpoint;
  switch (type) {
    case MESSAGE_GENERIC_NOTIFICATION_SUBSCRIBE: return handleSubscription(true);  // whatever the body holds
    case MESSAGE_GENERIC_NOTIFICATION_UNSUBSCRIBE: return handleSubscription(false);
    case MESSAGE_GENERIC_NOTIFICATION_MESSAGE: return handleRecord(this, message, &Self::handleNotification);
    case MESSAGE_GENERIC_NOTIFICATION_ACK: return handleRecord(this, message, &Self::handleNotificationAck);
  }
  return STATUS_UNEXPECTED_MESSAGE;
}

void NotificationEndpoint::addDiscoveryInfo(ServiceDiscoveryResponse* response) {
  Service* const service = response->add_services();
  service->set_id(serviceId);
  service->mutable_generic_notification_service();
}

int NotificationEndpoint::handleSubscription(bool isSubscribed) {
  subscribed = isSubscribed;
  callbacks->subscriptionChanged(isSubscribed);
  return STATUS_SUCCESS;
}

int NotificationEndpoint::handleNotification(const GenericNotificationMessage& message) {
  char* const icon = message.has_icon() ? const_cast<char*>(message.icon().data()) : nullptr;
  callbacks->notification(message.text(), message.has_id(), message.id(), message.has_icon(),
                          reinterpret_cast<unsigned char*>(icon), 0);
  return STATUS_SUCCESS;
}

int NotificationEndpoint::handleNotificationAck(const GenericNotificationAck& acknowledgement) {
  callbacks->notificationAck(acknowledgement.id());
  return STATUS_SUCCESS;
}

int NotificationEndpoint::sendNotification(const std::string& text, bool hasId, const std::string& id,
                                           bool hasIcon, unsigned char* icon, unsigned int iconLength) {
  if (!subscribed) return STATUS_INVALID_CHANNEL;
  GenericNotificationMessage message;
  message.set_text(text);
  if (hasId) message.set_id(id);
  if (hasIcon) message.set_icon(icon, iconLength);
  sendRecord(MESSAGE_GENERIC_NOTIFICATION_MESSAGE, message);
  return STATUS_SUCCESS;
}

int NotificationEndpoint::ackNotification(const std::string& id) {
  if (!subscribed) return STATUS_INVALID_CHANNEL;
  GenericNotificationAck acknowledgement;
  acknowledgement.set_id(id);
  sendRecord(MESSAGE_GENERIC_NOTIFICATION_ACK, acknowledgement);
  return STATUS_SUCCESS;
}
