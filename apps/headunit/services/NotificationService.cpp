#include "headunit/services/NotificationService.h"

#include <spdlog/spdlog.h>

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

// Of an icon whose length is not told no byte may be read: it stays away.
void NotificationService::notification(const std::string& text, bool hasId, const std::string& id,
                                       bool hasIcon, unsigned char* icon, unsigned int iconLength) {
  const std::string bytes = hasIcon ? std::string(icon, icon + iconLength) : std::string();
  NoticeView notice;
  notice.id = hasId ? id : "";
  notice.text = forScreen(text);
  notice.icon = context_.images->known(bytes);
  notice.until = context_.now() + SHOWN_FOR;
  const Newest::Ticket ticket = newestNotice_.next();
  context_.cluster->change([&notice](ClusterView& view) { view.notice = notice; });
  context_.tally->count(&ServiceTotals::notificationsShown);
  if (!notice.icon) {
    context_.images->load(bytes, ticket, [](ClusterView& view, const Image& image) {
      if (view.notice) view.notice->icon = image;
    });
  }
  if (hasId) endpoint_->ackNotification(id);
}

void NotificationService::notificationAck(const std::string& id) {
  if (id == GREETING_ID) context_.tally->count(&ServiceTotals::notificationsAcknowledged);
}

}  // namespace headunit
