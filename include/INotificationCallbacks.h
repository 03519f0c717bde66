#pragma once

#include <string>

#include "VantryExport.h"

/// What the host hears of notifications. All operations run on the reader thread; what they are given is
/// valid during the call. A callback may send, call MessageRouter::closeChannel and Transport::requestStop;
/// it must not call Transport::waitForExit or VantryReceiver::shutdown, nor destroy the endpoint.
class VANTRY_EXPORT INotificationCallbacks {
 public:
  virtual ~INotificationCallbacks() = default;

  /// The phone wants the head unit's notifications from now on, or wants them no more. Comes with each of its
  /// messages, also if nothing changes.
  virtual void subscriptionChanged(bool subscribed) = 0;

  /// The phone notifies the head unit, subscribed or not. Texts that it left out are empty; `hasId` tells
  /// whether it gave `id`. `icon` points to the first byte of an encoded image if `hasIcon`, and is null
  /// otherwise. `iconLength` is always 0, also with an icon: its size is not told. Answer with
  /// NotificationEndpoint::ackNotification.
  virtual void notification(const std::string& text, bool hasId, const std::string& id, bool hasIcon,
                            unsigned char* icon, unsigned int iconLength) = 0;

  /// The phone acknowledges the notification `id`, which is empty if it left that out.
  virtual void notificationAck(const std::string& id) = 0;
};
