#pragma once

#include <atomic>
#include <string>

#include "INotificationCallbacks.h"
#include "ProtocolEndpointBase.h"
#include "VantryExport.h"

/// The service that carries short notifications both ways, each answered by an acknowledgement that names it.
/// Whether the head unit may send is the phone's decision, by subscribing and unsubscribing; what it receives
/// reaches the host in any case. A closed channel leaves the subscription as it was.
class VANTRY_EXPORT NotificationEndpoint : public ProtocolEndpointBase {
 public:
  /// `id`: 1 to 254. `messageRouter`: VantryReceiver::messageRouter(). Keeps a reference to
  /// `notificationCallbacks`, which must point to an object, until destruction.
  NotificationEndpoint(int id, MessageRouter* messageRouter,
                       const shared_ptr<INotificationCallbacks>& notificationCallbacks);
  ~NotificationEndpoint() override;

  /// Any thread: notifies the phone. `id` counts only if `hasId`; `icon`, an encoded image of `iconLength`
  /// bytes, only if `hasIcon`, and may be null only if `iconLength` is 0. All is copied before the call
  /// returns. STATUS_INVALID_CHANNEL, and nothing sent, unless the phone is subscribed; otherwise
  /// STATUS_SUCCESS, also if no channel is open, which drops the message.
  ///
  /// With an icon it is easily longer than 16128 bytes. No other message of this service may be sent
  /// meanwhile, and the library answers what it does not understand on the reader thread: a smaller icon is
  /// safe, or to send from a callback. See ProtocolEndpointBase.
  int sendNotification(const std::string& text, bool hasId, const std::string& id, bool hasIcon,
                       unsigned char* icon, unsigned int iconLength);

  /// Any thread: acknowledges the phone's notification `id`. Results as those of `sendNotification`.
  int ackNotification(const std::string& id);

  int routeMessage(unsigned char channel, unsigned short type, const shared_ptr<IoBuffer>& message) override;
  void addDiscoveryInfo(ServiceDiscoveryResponse* response) override;

 private:
  int handleSubscription(bool isSubscribed);
  int handleNotification(const GenericNotificationMessage& message);
  int handleNotificationAck(const GenericNotificationAck& acknowledgement);

  shared_ptr<INotificationCallbacks> callbacks;
  std::atomic<bool> subscribed{false};
};
