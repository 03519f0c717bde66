#include "headunit/services/NotificationService.h"

#include <spdlog/spdlog.h>

#include "headunit/Shortened.h"
#include "headunit/services/GreetingIcon.h"

namespace headunit {
namespace {

constexpr std::chrono::seconds SHOWN_FOR(5);
constexpr char GREETING[] = "Connected to your car";
constexpr char GREETING_ID[] = "greeting";

}  // namespace

bool NotificationService::dismiss() {
  bool dismissed = false;
  context_.cluster->change([&](ClusterView& view) {
    dismissed = view.notice && view.notice->until > context_.now();
    view.notice.reset();
  });
  if (dismissed) context_.tally->count(&ServiceTotals::notificationsDismissed);
  return dismissed;
}

void NotificationService::subscriptionChanged(bool subscribed) {
  spdlog::debug("The phone wants {} notifications.", subscribed ? "our" : "none of our");
  if (!subscribed || greeted_) return;
  greeted_ = true;
  std::string icon(reinterpret_cast<const char*>(GREETING_ICON), sizeof GREETING_ICON);
  const int status = endpoint_->sendNotification(GREETING, true, GREETING_ID, true,
                                                 reinterpret_cast<unsigned char*>(&icon[0]),
                                                 static_cast<unsigned int>(icon.size()));
  if (status == STATUS_SUCCESS) context_.tally->count(&ServiceTotals::notificationsSent);
}

// A received icon's length is not told, so no byte of it may be read.
void NotificationService::notification(const std::string& text, bool hasId, const std::string& id, bool,
                                       unsigned char*, unsigned int) {
  const NoticeView notice{shortened(text), context_.now() + SHOWN_FOR};
  context_.cluster->change([&notice](ClusterView& view) { view.notice = notice; });
  context_.tally->count(&ServiceTotals::notificationsShown);
  if (hasId) endpoint_->ackNotification(id);
}

void NotificationService::notificationAck(const std::string& id) {
  if (id == GREETING_ID) context_.tally->count(&ServiceTotals::notificationsAcknowledged);
}

}  // namespace headunit
