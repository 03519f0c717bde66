#pragma once

#include <NotificationEndpoint.h>

#include "headunit/services/Hosted.h"

namespace headunit {

/// Shows the texts of the phone's notifications for a few seconds each, the newest at a time, and
/// acknowledges what has been shown. A phone that wants the head unit's own is greeted by one.
class NotificationService : public INotificationCallbacks {
 public:
  using Interface = INotificationCallbacks;

  explicit NotificationService(const ServiceContext& context) : context_(context) {}
  void answerThrough(NotificationEndpoint* endpoint) { endpoint_ = endpoint; }
  void opened() { context_.tally->count(&ServiceTotals::notificationOpened); }
  void closed() {}

  /// Any thread: the user has seen enough of what is shown. False if nothing is.
  bool dismiss();

  void subscriptionChanged(bool subscribed) override;
  void notification(const std::string& text, bool hasId, const std::string& id, bool hasIcon,
                    unsigned char* icon, unsigned int iconLength) override;
  void notificationAck(const std::string& id) override;

 private:
  const ServiceContext context_;
  NotificationEndpoint* endpoint_ = nullptr;
  bool greeted_ = false;  // reader thread
};

using NoticeEndpoint = Hosted<NotificationEndpoint, NotificationService>;

}  // namespace headunit
